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
std::string CSafeReplace::hiddenName(const std::string& name, std::string_view suffix) {
    std::string kept = name;
    if (name.size() > longestKeptName)
        kept = name.substr(0, longestKeptName) + fingerprintOf(name);
    return "." + kept + std::string(suffix);
}

void CSafeReplace::failed(int code) {
    error_ = fileError("cannot write", path_, code);
}

std::optional<COpenFile> CSafeReplace::run(std::string_view content) {
    temporary_ = folderOf(path_) + "/" + hiddenName(nameOf(path_), temporarySuffix);
    std::optional<COpenFile> file = makeTemporary();
    if (!file)
        return std::nullopt;
    if (!keepAccess(file->fd()) || !writeWhole(calls_, file->fd(), content) ||
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
            if (leftover_ == Leftover::Stale) {
                if (removeStale())
                    continue;
                return std::nullopt;
            }
            if (removeLeftover())
                continue;
            calls_.pause(std::chrono::milliseconds(20));
            continue;
        }
        if (!file) {
            failed(errno);
            if (refusedByFolder(error_.code))
                obstacle_ = Obstacle::Folder;
            return std::nullopt;
        }
        if (calls_.tryLock(file.fd(), true) == 0 || locksUnsupported(errno))
            return file;
        // Somebody took it for a leftover in the moment before the lock, and removes it.
    }
    error_ = fileError("cannot write", path_, EAGAIN);
    return std::nullopt;
}

/// A folder in which everybody removes only his own files keeps it for ever, and the name with it.
bool CSafeReplace::removeStale() {
    if (calls_.remove(temporary_) == 0 || errno == ENOENT)
        return true;
    failed(errno);
    if (refusedByFolder(error_.code))
        obstacle_ = Obstacle::Folder;
    return false;
}

/// True when the temporary name may be free now. Another user's can be asked for its lock only where it can
/// be read, and no lock for writing can be had through it.
bool CSafeReplace::removeLeftover() {
    COpenFile file(calls_, calls_.openFile(temporary_, O_RDONLY, 0));
    struct stat opened = {};
    struct stat named = {};
    if (!file)
        return errno == ENOENT ||
               (errno == EACCES && calls_.statusAt(temporary_, named) == 0 &&
                std::time(nullptr) - named.st_mtime >= leftoverAge && calls_.remove(temporary_) == 0);
    const bool locked = calls_.tryLock(file.fd(), false) == 0;
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

/// Only root gives files away; some shares take a mode without a word and leave it as it was. The mode comes
/// last: a list that is taken away leaves its bounds in the mode.
bool CSafeReplace::keepAccess(int fd) {
    if (!old_)
        return true;
    if (isCopy_)
        return shareAsCopy(fd);
    const auto sameAccess = [this](const struct stat& made) {
        return made.st_uid == old_->st_uid && made.st_gid == old_->st_gid;
    };
    struct stat made = {};
    if (calls_.statusOf(fd, made) == 0 &&
        (sameAccess(made) || calls_.setOwner(fd, old_->st_uid, old_->st_gid) == 0) &&
        calls_.copyAccessList(oldFile_, fd) == 0 && calls_.setMode(fd, old_->st_mode & 07777) == 0 &&
        calls_.statusOf(fd, made) == 0 && sameAccess(made) && made.st_mode == old_->st_mode)
        return true;
    failed(errno);
    obstacle_ = Obstacle::Access;
    return false;
}

bool CSafeReplace::shareAsCopy(int fd) {
    struct stat made = {};
    const bool sameGroup =
        calls_.statusOf(fd, made) == 0 &&
        (made.st_gid == old_->st_gid || calls_.setOwner(fd, static_cast<uid_t>(-1), old_->st_gid) == 0);
    if (!sameGroup || calls_.copyAccessList(oldFile_, fd) != 0 ||
        calls_.setMode(fd, old_->st_mode & 0777) != 0)
        return calls_.setMode(fd, 0600) == 0;
    return true;
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
    const bool moved = old_ && !isCopy_ ? calls_.rename(temporary_, path_) == 0 : takeNewName();
    if (moved)
        return true;
    const int code = errno;
    failed(code);
    if (refusedByFolder(code))
        obstacle_ = Obstacle::Folder;
    if (code == EEXIST) {
        error_.kind = FileError::Kind::Changed;
        error_.sentence = "cannot write " + path_ + ": another station has just created it";
    }
    return false;
}

} // namespace mirovane
