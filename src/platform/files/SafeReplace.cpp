#include "platform/files/SafeReplace.h"

#include "platform/files/FileErrors.h"
#include "platform/files/FilePaths.h"

#include <cerrno>
#include <ctime>
#include <fcntl.h>

namespace mirovane {

namespace {

constexpr std::string_view temporarySuffix = ".saving";
constexpr std::size_t longestKeptName = 200;
constexpr int attempts = 20;

/// On a file system without locks only its age tells a leftover from a save under way.
constexpr std::time_t leftoverAge = 60;

bool renameToNewUnknown(int code) {
    return code == EINVAL || code == ENOSYS || code == ENOTSUP;
}

bool refusedByFolder(int code) {
    return code == EACCES || code == EPERM || code == EROFS || code == EBUSY || code == EXDEV;
}

} // namespace

/// A folder takes names of 255 bytes; a longer name is told apart from its neighbours by its hash.
std::string CSafeReplace::temporaryName(const std::string& name) {
    std::string kept = name;
    if (name.size() > longestKeptName)
        kept = name.substr(0, longestKeptName) + fingerprintOf(name);
    return "." + kept + std::string(temporarySuffix);
}

void CSafeReplace::failed(int code) {
    error_ = fileError("cannot write", path_, code);
}

std::optional<COpenFile> CSafeReplace::run(std::string_view content) {
    temporary_ = folderOf(path_) + "/" + temporaryName(nameOf(path_));
    std::optional<COpenFile> file = makeTemporary();
    if (!file)
        return std::nullopt;
    if (!writeWhole(calls_, file->fd(), content) || !keepAccess(file->fd()) ||
        calls_.flush(file->fd()) != 0 || !putInPlace()) {
        if (error_.sentence.empty())
            failed(errno);
        file.reset(); // as in removeLeftover
        calls_.remove(temporary_);
        return std::nullopt;
    }
    return file;
}

std::optional<COpenFile> CSafeReplace::makeTemporary() {
    const mode_t mode = old_ ? 0600 : 0666;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        COpenFile file(calls_, calls_.openFile(temporary_, O_RDWR | O_CREAT | O_EXCL, mode));
        if (!file && errno == EEXIST) {
            if (removeLeftover())
                continue;
            calls_.pause(std::chrono::milliseconds(20));
            continue;
        }
        if (!file) {
            folderRefused_ = refusedByFolder(errno);
            failed(errno);
            return std::nullopt;
        }
        if (calls_.tryLock(file.fd(), true) == 0 || locksUnsupported(errno))
            return file;
        // Somebody took it for a leftover in the moment before the lock, and removes it.
    }
    error_ = fileError("cannot write", path_, EAGAIN);
    return std::nullopt;
}

/// True when the temporary name may be free now.
bool CSafeReplace::removeLeftover() {
    COpenFile file(calls_, calls_.openFile(temporary_, O_RDWR, 0));
    if (!file)
        return errno == ENOENT;
    struct stat opened = {};
    struct stat named = {};
    const bool locked = calls_.tryLock(file.fd(), true) == 0;
    if (!locked && !locksUnsupported(errno))
        return false;
    if (calls_.statusOf(file.fd(), opened) != 0 || calls_.statusAt(temporary_, named) != 0 ||
        !sameFile(opened, named))
        return true;
    if (!locked && std::time(nullptr) - opened.st_mtime < leftoverAge)
        return false;
    if (calls_.remove(temporary_) == 0)
        return true;
    file.close(); // some shares do not remove a file that is open
    return calls_.remove(temporary_) == 0;
}

/// The owner stays where the system lets this user give files away (root), the group where he is a member.
bool CSafeReplace::keepAccess(int fd) {
    if (!old_)
        return true;
    struct stat made = {};
    if (calls_.statusOf(fd, made) != 0)
        return false;
    if (made.st_uid != old_->st_uid || made.st_gid != old_->st_gid) {
        if (calls_.setOwner(fd, old_->st_uid, old_->st_gid) != 0)
            calls_.setOwner(fd, static_cast<uid_t>(-1), old_->st_gid);
    }
    return calls_.setMode(fd, old_->st_mode & 07777) == 0 && calls_.copyAccessList(oldFile_, fd) == 0;
}

/// Replaces nothing, as a hard link does not.
bool CSafeReplace::takeNewName() {
    if (calls_.renameToNew(temporary_, path_) == 0)
        return true;
    if (!renameToNewUnknown(errno) || calls_.link(temporary_, path_) != 0)
        return false;
    calls_.remove(temporary_);
    return true;
}

bool CSafeReplace::putInPlace() {
    const bool moved = old_ ? calls_.rename(temporary_, path_) == 0 : takeNewName();
    if (moved)
        return true;
    const int code = errno;
    folderRefused_ = refusedByFolder(code);
    failed(code);
    if (code == EEXIST) {
        error_.kind = FileError::Kind::Changed;
        error_.sentence = "cannot write " + path_ + ": another station has just created it";
    }
    return false;
}

} // namespace mirovane
