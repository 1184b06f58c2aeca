#include "platform/files/OpenFile.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <new>

namespace mirovane {

void COpenFile::close() {
    if (fd_ < 0)
        return;
    const int kept = errno;
    calls_->closeFile(fd_);
    fd_ = -1;
    errno = kept;
}

std::optional<std::string> readWhole(CFileCalls& calls, int fd) {
    struct stat status = {};
    if (calls.statusOf(fd, status) != 0)
        return std::nullopt;
    if (static_cast<std::uint64_t>(status.st_size) > largestFile) {
        errno = EFBIG;
        return std::nullopt;
    }
    std::string content;
    try {
        content.resize(static_cast<std::size_t>(status.st_size));
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return std::nullopt;
    }
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t got =
            calls.readAt(fd, content.data() + done, content.size() - done, static_cast<off_t>(done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        if (got == 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    content.resize(done);
    return content;
}

bool writeWhole(CFileCalls& calls, int fd, std::string_view content) {
    return appendWhole(calls, fd, 0, content);
}

bool appendWhole(CFileCalls& calls, int fd, off_t size, std::string_view content) {
    std::size_t done = 0;
    while (done < content.size()) {
        const ssize_t put =
            calls.writeAt(fd, content.data() + done, content.size() - done, size + static_cast<off_t>(done));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

bool flushFolder(CFileCalls& calls, const std::string& folder) {
    const COpenFile opened(calls, calls.openFile(folder, O_RDONLY | O_DIRECTORY, 0));
    if (!opened || calls.flush(opened.fd()) == 0)
        return true;
    return errno != EIO && errno != ENOSPC && errno != EDQUOT;
}

bool sameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool locksUnsupported(int code) {
    return code == EOPNOTSUPP || code == ENOSYS || code == EINVAL;
}

} // namespace mirovane
