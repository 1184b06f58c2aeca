#include "platform/files/PosixFiles.h"

#include "platform/files/FileErrors.h"
#include "platform/files/FilePaths.h"
#include "platform/files/InPlaceWrite.h"
#include "platform/files/LockedPosixFile.h"
#include "platform/files/StateFolder.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <utility>

namespace mirovane {

namespace {

constexpr int mostLinks = 40;
constexpr std::chrono::milliseconds longestPause{50};

/// What `path` stands for once symbolic links are followed, also where the last one points at nothing yet.
std::string followLinks(CFileCalls& calls, const std::string& path) {
    std::string at = path;
    for (int link = 0; link < mostLinks; ++link) {
        std::string real = calls.realPath(at);
        if (!real.empty())
            return real;
        const std::string target = calls.linkTarget(at);
        if (target.empty())
            return at;
        at = target.front() == '/' ? target : folderOf(at).append("/").append(target);
    }
    return at;
}

std::string_view verbFor(FileAccess access) {
    return access == FileAccess::Write ? "cannot write" : "cannot read";
}

/// One station's attempts to get the lock, one after the other.
class CLocking {
public:
    enum class Outcome { Locked, Missing, Busy, Failed };

    CLocking(CFileCalls& calls, const std::string& path, FileAccess access, const std::string& backupFolder)
        : calls_(calls), path_(path), access_(access), backupFolder_(backupFolder) {}

    Outcome attempt() {
        target_ = followLinks(calls_, path_);
        const int flags = access_ == FileAccess::Write ? O_RDWR : O_RDONLY;
        // Not blocking: a pipe under the datafile's name must not hang the program.
        file_ = COpenFile(calls_, calls_.openFile(target_, flags | O_NOCTTY | O_NONBLOCK, 0));
        if (!file_)
            return errno == ENOENT && access_ == FileAccess::Write ? Outcome::Missing : failed(errno);
        if (calls_.statusOf(file_.fd(), status_) != 0)
            return failed(errno);
        if (!S_ISREG(status_.st_mode))
            return notAFile();
        // Only root gets here; whoever took every right to write away meant him, too.
        if (access_ == FileAccess::Write && (status_.st_mode & 0222) == 0)
            return failed(EACCES);
        locked_ = calls_.tryLock(file_.fd(), access_ == FileAccess::Write) == 0;
        if (!locked_ && !locksUnsupported(errno))
            return errno == EAGAIN || errno == EACCES ? Outcome::Busy : failed(errno);
        const Outcome outcome = stillThere();
        return outcome == Outcome::Locked ? completeCutOffWrites() : outcome;
    }

    const FileError& error() const { return error_; }
    const std::string& target() const { return target_; }
    const struct stat& status() const { return status_; }
    bool locked() const { return locked_; }
    COpenFile takeFile() { return std::move(file_); }

private:
    /// A write in place that was cut off, by this user's last end or by a colleague's, comes to its end
    /// before anybody reads what it left.
    Outcome completeCutOffWrites() {
        for (const CInPlaceWrite& writing : {CInPlaceWrite::beside(calls_, target_),
                                             CInPlaceWrite::inFolder(calls_, backupFolder_, target_)})
            if (writing.leftBehind())
                if (const Outcome outcome = complete(writing); outcome != Outcome::Locked)
                    return outcome;
        return Outcome::Locked;
    }

    /// A lock for reading is given back first; afterwards everything begins anew.
    Outcome complete(CInPlaceWrite writing) {
        if (access_ == FileAccess::Write) {
            if (auto error = writing.recover(file_.fd()))
                return failed(std::move(*error));
            return calls_.statusOf(file_.fd(), status_) == 0 ? Outcome::Locked : failed(errno);
        }
        const COpenFile writable(calls_, calls_.openFile(target_, O_RDWR | O_NOCTTY | O_NONBLOCK, 0));
        if (!writable && writing.isHalfWritten(file_.fd()))
            return failed(FileError{FileError::Kind::Denied, EACCES,
                                    "cannot read " + path_ +
                                        ": its last save was cut off, and is completed when somebody who may "
                                        "write it opens it"});
        if (!writable)
            return Outcome::Locked;
        file_.close();
        if (calls_.tryLock(writable.fd(), true) != 0 && !locksUnsupported(errno))
            return Outcome::Busy;
        if (auto error = writing.recover(writable.fd()))
            return failed(std::move(*error));
        return Outcome::Busy;
    }

    /// Another station may have renamed a new file over this one while this station waited. Opened, not asked
    /// by name: a network file system answers names from a cache, but opens afresh.
    Outcome stillThere() {
        const COpenFile named(calls_, calls_.openFile(path_, O_RDONLY | O_NOCTTY | O_NONBLOCK, 0));
        struct stat now = {};
        if (!named)
            return errno == ENOENT ? Outcome::Busy : failed(errno);
        if (calls_.statusOf(named.fd(), now) != 0 || calls_.statusOf(file_.fd(), status_) != 0)
            return failed(errno);
        return sameFile(now, status_) ? Outcome::Locked : Outcome::Busy;
    }

    Outcome failed(int code) { return failed(fileError(verbFor(access_), path_, code)); }

    Outcome failed(FileError error) {
        error_ = std::move(error);
        return Outcome::Failed;
    }

    Outcome notAFile() {
        error_ = {FileError::Kind::Other, 0,
                  std::string(verbFor(access_)) + " " + path_ + ": it is not a file"};
        return Outcome::Failed;
    }

    CFileCalls& calls_;
    const std::string& path_;
    FileAccess access_;
    const std::string& backupFolder_;
    std::string target_;
    COpenFile file_;
    bool locked_ = false;
    struct stat status_ = {};
    FileError error_;
};

} // namespace

CPosixFiles::CPosixFiles()
    : ownCalls_(std::make_unique<CFileCalls>()), calls_(*ownCalls_), backupFolder_(defaultStateFolder()) {}

CPosixFiles::CPosixFiles(CFileCalls& calls, std::string backupFolder)
    : calls_(calls), backupFolder_(std::move(backupFolder)) {}

CPosixFiles::~CPosixFiles() = default;

Result<FileIdentity, FileError> CPosixFiles::status(const std::string& path) {
    struct stat status = {};
    if (calls_.statusAt(path, status) != 0)
        return fileError("cannot read", path, errno);
    return identityFrom(status);
}

Result<std::unique_ptr<LockedFile>, FileError> CPosixFiles::lock(const std::string& path, FileAccess access,
                                                                 std::chrono::milliseconds patience) {
    const auto deadline = calls_.now() + patience;
    std::chrono::milliseconds wait{1};
    for (;;) {
        CLocking locking(calls_, path, access, backupFolder_);
        const CLocking::Outcome outcome = locking.attempt();
        if (outcome == CLocking::Outcome::Locked || outcome == CLocking::Outcome::Missing)
            return std::unique_ptr<LockedFile>(
                std::make_unique<CLockedPosixFile>(calls_, path, locking.target(), backupFolder_,
                                                   locking.takeFile(), locking.status(), locking.locked()));
        if (outcome == CLocking::Outcome::Failed)
            return locking.error();
        if (calls_.now() >= deadline)
            return FileError{FileError::Kind::Locked, EAGAIN,
                             std::string(verbFor(access)) + " " + path + ": another station is using it"};
        calls_.pause(wait);
        wait = std::min(wait * 2, longestPause);
    }
}

} // namespace mirovane
