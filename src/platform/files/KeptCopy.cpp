#include "platform/files/KeptCopy.h"

#include "platform/files/FileErrors.h"
#include "platform/files/FilePaths.h"
#include "platform/files/OpenFile.h"

#include <cerrno>
#include <fcntl.h>

namespace mirovane {

CKeptCopy::~CKeptCopy() {
    if (!kept_)
        forget();
}

void CKeptCopy::forget() {
    if (!copy_.empty())
        calls_.remove(copy_);
    copy_.clear();
}

std::optional<FileError> CKeptCopy::make(const std::string& path, const std::string& suffix) {
    forget();
    std::string target = path + suffix;
    for (int number = 2;; ++number) {
        // Nobody else may read it before it has the mode of the datafile, which holds passwords of agents.
        const COpenFile made(calls_, calls_.openFile(target, O_WRONLY | O_CREAT | O_EXCL, 0600));
        if (made)
            break;
        if (errno != EEXIST)
            return fileError("cannot write", target, errno);
        target = path + suffix + "-" + std::to_string(number);
    }
    copy_ = target;
    auto error = fill(path);
    if (error)
        forget();
    return error;
}

std::optional<FileError> CKeptCopy::fill(const std::string& source) {
    const COpenFile from(calls_, calls_.openFile(source, O_RDONLY, 0));
    struct stat status = {};
    if (!from || calls_.statusOf(from.fd(), status) != 0)
        return fileError("cannot read", source, errno);
    const auto content = readWhole(calls_, from.fd());
    if (!content)
        return fileError("cannot read", source, errno);
    const COpenFile to(calls_, calls_.openFile(copy_, O_RDWR, 0));
    if (!to || !writeWhole(calls_, to.fd(), *content))
        return fileError("cannot write", copy_, errno);
    if (calls_.setOwner(to.fd(), status.st_uid, status.st_gid) != 0)
        calls_.setOwner(to.fd(), static_cast<uid_t>(-1), status.st_gid);
    if (calls_.setMode(to.fd(), status.st_mode & 0777) != 0 ||
        calls_.copyAccessList(from.fd(), to.fd()) != 0 || calls_.flush(to.fd()) != 0 ||
        !flushFolder(calls_, folderOf(copy_)))
        return fileError("cannot write", copy_, errno);
    return std::nullopt;
}

} // namespace mirovane
