#include "platform/LockedPosixFile.h"

#include "platform/FileErrors.h"
#include "platform/FilePaths.h"
#include "platform/InPlaceWrite.h"
#include "platform/SafeReplace.h"

#include <cerrno>
#include <fcntl.h>
#include <utility>

namespace mirovane {

LockedPosixFile::LockedPosixFile(FileCalls& calls, std::string path, std::string target,
                                 std::string backupFolder, OpenFile file, const struct stat& status)
    : calls_(calls),
      path_(std::move(path)),
      target_(std::move(target)),
      backupFolder_(std::move(backupFolder)),
      file_(std::move(file)),
      status_(status) {}

FileIdentity LockedPosixFile::identity() const {
    return identityFrom(status_);
}

Result<std::string, FileError> LockedPosixFile::read() {
    if (!file_)
        return fileError("cannot read", path_, ENOENT);
    std::optional<std::string> content = readWhole(calls_, file_.fd());
    if (!content)
        return fileError("cannot read", path_, errno);
    return std::move(*content);
}

Result<FileIdentity, FileError> LockedPosixFile::replace(std::string_view content) {
    if (content.size() > largestFile)
        return fileError("cannot write", path_, EFBIG);
    SafeReplace replacement =
        file_ ? SafeReplace(calls_, target_, file_.fd(), status_) : SafeReplace(calls_, target_);
    std::optional<OpenFile> made = replacement.run(content);
    if (!made && file_ && replacement.folderRefused())
        return writeInPlace(content);
    if (!made && replacement.folderRefused())
        made = createDirectly(content);
    if (!made)
        return replacement.error();
    file_ = std::move(*made);
    if (calls_.statusOf(file_.fd(), status_) != 0)
        return fileError("cannot read", path_, errno);
    if (!flushFolder(calls_, folderOf(target_)))
        return fileError("cannot write", path_, errno);
    return identity();
}

/// A share that knows neither a link nor a rename that spares what is there can still make a new file under
/// its own name. Nothing is lost when that breaks off: there was no file before.
std::optional<OpenFile> LockedPosixFile::createDirectly(std::string_view content) {
    OpenFile file(calls_, calls_.openFile(target_, O_RDWR | O_CREAT | O_EXCL, 0666));
    if (!file)
        return std::nullopt;
    if (writeWhole(calls_, file.fd(), content) && calls_.flush(file.fd()) == 0)
        return file;
    file = OpenFile();
    calls_.remove(target_);
    return std::nullopt;
}

Result<FileIdentity, FileError> LockedPosixFile::writeInPlace(std::string_view content) {
    InPlaceWrite writing(calls_, backupFolder_, target_);
    const std::optional<FileError> error = writing.run(file_.fd(), content);
    if (calls_.statusOf(file_.fd(), status_) != 0)
        return fileError("cannot read", path_, errno);
    if (error)
        return *error;
    return identity();
}

} // namespace mirovane
