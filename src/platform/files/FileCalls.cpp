#include "platform/files/FileCalls.h"

#include "platform/BlockedSignals.h"

#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace mirovane {

namespace {

/// Makes a call that may go beyond the process's file size limit: then it fails instead of ending the
/// process.
template <typename Call>
auto withinSizeLimit(Call call) {
    CBlockedSignals held{SIGXFSZ};
    const auto result = call();
    held.discardPending();
    return result;
}

/// Of POSIX, of NFS and of SMB. The last is read by everybody and written by few: where the new file got the
/// same one from its folder, there is nothing to write.
constexpr std::array<const char*, 3> accessLists{"system.posix_acl_access", "system.nfs4_acl",
                                                 "system.cifs_acl"};

/// Empty where there is none; nothing, and errno, when it cannot be read.
std::optional<std::string> accessListOf(int fd, const char* name) {
    std::array<char, 65536> list;
    const ssize_t size = ::fgetxattr(fd, name, list.data(), list.size());
    if (size >= 0)
        return std::string(list.data(), static_cast<std::size_t>(size));
    if (errno == ENODATA || errno == ENOTSUP || errno == ENOSYS)
        return std::string();
    return std::nullopt;
}

struct flock lockOfByte(std::uint64_t at) {
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = static_cast<off_t>(at);
    lock.l_len = 1;
    return lock;
}

} // namespace

int CFileCalls::openFile(const std::string& path, int flags, mode_t mode) {
    return ::open(path.c_str(), flags | O_CLOEXEC, mode);
}

int CFileCalls::closeFile(int fd) {
    return ::close(fd);
}

ssize_t CFileCalls::readAt(int fd, char* to, std::size_t count, off_t offset) {
    return ::pread(fd, to, count, offset);
}

ssize_t CFileCalls::writeAt(int fd, const char* from, std::size_t count, off_t offset) {
    return withinSizeLimit([&] { return ::pwrite(fd, from, count, offset); });
}

int CFileCalls::allocate(int fd, off_t size) {
    const int code = withinSizeLimit([&] { return ::posix_fallocate(fd, 0, size); });
    errno = code;
    return code == 0 ? 0 : -1;
}

int CFileCalls::truncate(int fd, off_t size) {
    return ::ftruncate(fd, size);
}

int CFileCalls::flush(int fd) {
    return ::fsync(fd);
}

int CFileCalls::statusOf(int fd, struct stat& status) {
    return ::fstat(fd, &status);
}

int CFileCalls::statusAt(const std::string& path, struct stat& status) {
    return ::stat(path.c_str(), &status);
}

int CFileCalls::setModified(int fd, const struct timespec& time) {
    const struct timespec times[2] = {{0, UTIME_OMIT}, time};
    return ::futimens(fd, times);
}

int CFileCalls::setMode(int fd, mode_t mode) {
    return ::fchmod(fd, mode);
}

int CFileCalls::setOwner(int fd, uid_t user, gid_t group) {
    return ::fchown(fd, user, group);
}

int CFileCalls::copyAccessList(int from, int to) {
    for (const char* name : accessLists) {
        const auto wanted = accessListOf(from, name);
        const auto found = accessListOf(to, name);
        if (!wanted || !found)
            return -1;
        if (*wanted == *found)
            continue;
        const int done = wanted->empty() ? ::fremovexattr(to, name)
                                         : ::fsetxattr(to, name, wanted->data(), wanted->size(), 0);
        if (done != 0)
            return -1;
    }
    return 0;
}

int CFileCalls::makeFolder(const std::string& path, mode_t mode) {
    return ::mkdir(path.c_str(), mode);
}

int CFileCalls::rename(const std::string& from, const std::string& to) {
    return ::rename(from.c_str(), to.c_str());
}

int CFileCalls::renameToNew(const std::string& from, const std::string& to) {
    return ::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
}

int CFileCalls::link(const std::string& from, const std::string& to) {
    return ::link(from.c_str(), to.c_str());
}

int CFileCalls::remove(const std::string& path) {
    return ::unlink(path.c_str());
}

std::string CFileCalls::realPath(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : std::string();
}

std::string CFileCalls::linkTarget(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length)) : std::string();
}

int CFileCalls::tryLock(int fd, bool exclusive) {
    struct flock lock = {};
    lock.l_type = static_cast<short>(exclusive ? F_WRLCK : F_RDLCK);
    lock.l_whence = SEEK_SET;
    return ::fcntl(fd, F_OFD_SETLK, &lock);
}

int CFileCalls::tryLockByte(int fd, std::uint64_t at) {
    struct flock lock = lockOfByte(at);
    return ::fcntl(fd, F_OFD_SETLK, &lock);
}

bool CFileCalls::isByteLocked(int fd, std::uint64_t at) {
    struct flock lock = lockOfByte(at);
    return ::fcntl(fd, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

std::chrono::steady_clock::time_point CFileCalls::now() {
    return std::chrono::steady_clock::now();
}

void CFileCalls::pause(std::chrono::milliseconds span) {
    std::this_thread::sleep_for(span);
}

} // namespace mirovane
