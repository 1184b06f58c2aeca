#include "platform/FileCalls.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace mirovane {

namespace {

/// While it lives, a write beyond the process's file size limit fails instead of ending the process.
class FileSizeSignalHeld {
public:
    FileSizeSignalHeld() {
        sigemptyset(&signal_);
        sigaddset(&signal_, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &signal_, &before_);
    }
    ~FileSizeSignalHeld() {
        const int kept = errno;
        const timespec none = {};
        if (sigismember(&before_, SIGXFSZ) == 0) {
            while (sigtimedwait(&signal_, nullptr, &none) > 0) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
        errno = kept;
    }
    FileSizeSignalHeld(const FileSizeSignalHeld&) = delete;
    FileSizeSignalHeld& operator=(const FileSizeSignalHeld&) = delete;

private:
    sigset_t signal_;
    sigset_t before_;
};

/// Some file systems refuse the atomic form; a hard link refuses to replace just as well.
bool renameFormUnknown(int code) {
    return code == EINVAL || code == ENOSYS || code == ENOTSUP;
}

} // namespace

int FileCalls::openFile(const std::string& path, int flags, mode_t mode) {
    return ::open(path.c_str(), flags | O_CLOEXEC, mode);
}

int FileCalls::closeFile(int fd) {
    return ::close(fd);
}

ssize_t FileCalls::readAt(int fd, char* to, std::size_t count, off_t offset) {
    return ::pread(fd, to, count, offset);
}

ssize_t FileCalls::writeAt(int fd, const char* from, std::size_t count, off_t offset) {
    const FileSizeSignalHeld held;
    return ::pwrite(fd, from, count, offset);
}

int FileCalls::allocate(int fd, off_t size) {
    const FileSizeSignalHeld held;
    const int code = ::posix_fallocate(fd, 0, size);
    errno = code;
    return code == 0 ? 0 : -1;
}

int FileCalls::truncate(int fd, off_t size) {
    return ::ftruncate(fd, size);
}

int FileCalls::flush(int fd) {
    return ::fsync(fd);
}

int FileCalls::statusOf(int fd, struct stat& status) {
    return ::fstat(fd, &status);
}

int FileCalls::statusAt(const std::string& path, struct stat& status) {
    return ::stat(path.c_str(), &status);
}

int FileCalls::setModified(int fd, const struct timespec& time) {
    const struct timespec times[2] = {{0, UTIME_OMIT}, time};
    return ::futimens(fd, times);
}

int FileCalls::setMode(int fd, mode_t mode) {
    return ::fchmod(fd, mode);
}

int FileCalls::setOwner(int fd, uid_t user, gid_t group) {
    return ::fchown(fd, user, group);
}

int FileCalls::copyAccessList(int from, int to) {
    constexpr const char* name = "system.posix_acl_access";
    std::array<char, 65536> list;
    const ssize_t size = ::fgetxattr(from, name, list.data(), list.size());
    if (size < 0)
        return errno == ENODATA || errno == ENOTSUP || errno == ENOSYS ? 0 : -1;
    return ::fsetxattr(to, name, list.data(), static_cast<std::size_t>(size), 0);
}

int FileCalls::makeFolder(const std::string& path, mode_t mode) {
    return ::mkdir(path.c_str(), mode);
}

int FileCalls::rename(const std::string& from, const std::string& to) {
    return ::rename(from.c_str(), to.c_str());
}

int FileCalls::renameToNew(const std::string& from, const std::string& to) {
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (!renameFormUnknown(errno))
        return -1;
    if (::link(from.c_str(), to.c_str()) != 0)
        return -1;
    ::unlink(from.c_str());
    return 0;
}

int FileCalls::remove(const std::string& path) {
    return ::unlink(path.c_str());
}

std::string FileCalls::realPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : std::string();
}

std::string FileCalls::linkTarget(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : std::string();
}

int FileCalls::tryLock(int fd, bool exclusive) {
    struct flock lock = {};
    lock.l_type = static_cast<short>(exclusive ? F_WRLCK : F_RDLCK);
    lock.l_whence = SEEK_SET;
    return ::fcntl(fd, F_OFD_SETLK, &lock);
}

std::chrono::steady_clock::time_point FileCalls::now() {
    return std::chrono::steady_clock::now();
}

void FileCalls::pause(std::chrono::milliseconds span) {
    std::this_thread::sleep_for(span);
}

} // namespace mirovane
