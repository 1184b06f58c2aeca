#pragma once

#include "platform/Result.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace mirovane {

/// Answers "is this still the file that I read?". Modification time alone repeats when two stations save
/// within one time stamp granule of the share; size and inode tell those apart.
struct FileIdentity {
    std::int64_t modifiedNs = 0; ///< nanoseconds since 1970-01-01 UTC
    std::uint64_t size = 0;
    std::uint64_t inode = 0;

    bool operator==(const FileIdentity&) const = default;
};

struct FileError {
    /// Changed: another station wrote the file since this one last read or wrote it, and that cannot be read;
    /// nothing was written. NotAnswering: the share hangs, and what it was asked for may yet be done.
    enum class Kind { NotFound, Denied, Locked, NoSpace, TooLarge, Changed, NotAnswering, Other };

    Kind kind = Kind::Other;
    int code = 0;         ///< errno, 0 when the reason is not the system's
    std::string sentence; ///< "cannot write /srv/floor.mv: No space left on device"
};

enum class FileAccess { Read, Write };

/// A file that this process holds under an advisory lock that other stations respect: shared for Read,
/// exclusive for Write. The lock ends with the object. The locked file is the file at the path, even when
/// another station renamed a new one over it while this one waited.
class LockedFile {
public:
    virtual ~LockedFile() = default;

    /// False when a Write lock was taken for a path where there is no file yet.
    virtual bool exists() const = 0;

    /// As of the moment when the lock was taken, or of this object's last replace().
    virtual FileIdentity identity() const = 0;

    /// The whole content.
    virtual Result<std::string, FileError> read() = 0;

    /// Puts `content` in the file's place so that a crash, a full disk or a kill at any instant leaves the
    /// old file or the new one, whole. Mode, owner and a symbolic link's target are kept. Needs Write.
    virtual Result<FileIdentity, FileError> replace(std::string_view content) = 0;
};

/// The datafile's file system. Main thread. Every call may wait for a slow share; for a lock it waits at
/// most `patience`.
class Files {
public:
    virtual ~Files() = default;

    virtual Result<FileIdentity, FileError> status(const std::string& path) = 0;
    virtual Result<std::unique_ptr<LockedFile>, FileError> lock(const std::string& path, FileAccess access,
                                                                std::chrono::milliseconds patience) = 0;
};

/// How long a load or a save waits for another station before it is reported as failed.
constexpr std::chrono::milliseconds lockPatience{5000};

} // namespace mirovane
