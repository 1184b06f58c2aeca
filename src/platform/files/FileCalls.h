#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>

namespace mirovane {

/// The system calls that bring a datafile to disk, one to one: -1 and errno where they fail. They are virtual
/// so that tests can let each of them fail, or the process die, at any moment.
class CFileCalls {
public:
    virtual ~CFileCalls() = default;

    virtual int openFile(const std::string& path, int flags, mode_t mode);
    virtual int closeFile(int fd);
    virtual ssize_t readAt(int fd, char* to, std::size_t count, off_t offset);

    /// A file size limit of the process comes back as EFBIG; the signal that goes with it is taken away.
    virtual ssize_t writeAt(int fd, const char* from, std::size_t count, off_t offset);

    /// Reserves room, so that later writes within it cannot run into a full disk.
    virtual int allocate(int fd, off_t size);
    virtual int truncate(int fd, off_t size);
    virtual int flush(int fd);

    virtual int statusOf(int fd, struct stat& status);
    virtual int statusAt(const std::string& path, struct stat& status);
    virtual int setMode(int fd, mode_t mode);
    virtual int setModified(int fd, const struct timespec& time);
    virtual int setOwner(int fd, uid_t user, gid_t group);

    /// Gives `to` the access list of `from` beyond the mode, also where that means to take one away that its
    /// folder gave it; 0 also where the file system has none.
    virtual int copyAccessList(int from, int to);
    virtual int makeFolder(const std::string& path, mode_t mode);

    virtual int rename(const std::string& from, const std::string& to);

    /// Fails with EEXIST when there is something at `to`. Some file systems do not know it.
    virtual int renameToNew(const std::string& from, const std::string& to);

    /// A second name. Fails with EEXIST as well.
    virtual int link(const std::string& from, const std::string& to);
    virtual int remove(const std::string& path);

    /// The path with every symbolic link resolved; empty, and errno, when something on the way is missing.
    virtual std::string realPath(const std::string& path);

    /// What the symbolic link at `path` names; empty, and errno, when there is none.
    virtual std::string linkTarget(const std::string& path);

    /// An advisory lock of this open file, on network file systems too; EAGAIN while another station has it.
    virtual int tryLock(int fd, bool exclusive);

    /// The same of one byte, which need not be there yet.
    virtual int tryLockByte(int fd, std::uint64_t at);

    /// Through another open file, of this process or another one.
    virtual bool isByteLocked(int fd, std::uint64_t at);

    virtual std::chrono::steady_clock::time_point now();
    virtual void pause(std::chrono::milliseconds span);
};

} // namespace mirovane
