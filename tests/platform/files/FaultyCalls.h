#pragma once

#include "platform/files/FileCalls.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace mirovane::test {

/// What a process that was killed leaves: everything after this is not done.
struct Killed {};

/// The real calls, but the chosen one fails, or the process dies in its place. Time stands still but for
/// pauses.
class FaultyCalls final : public CFileCalls {
public:
    /// The call number `at` (from 0) fails with this errno.
    void failAt(std::size_t at, int code) {
        failAt_ = at;
        code_ = code;
    }
    void killAt(std::size_t at) {
        failAt_ = at;
        code_ = 0;
    }
    void heal() { failAt_ = never; }

    /// No new file and no new name in this folder.
    void refuseFolder(const std::string& folder) { refused_ = folder; }

    /// This folder is a mounted SMB share: no links, and what is open is neither renamed, replaced nor
    /// removed.
    void behaveAsShare(const std::string& folder) { share_ = folder; }

    /// The system does not have this call, or this user may not make it: it always fails with this errno.
    void lack(const std::string& name, int code) { lacking_[name] = code; }

    /// Runs each time somebody waits for a lock.
    std::function<void()> onPause;

    const std::vector<std::string>& trace() const { return trace_; }
    bool struck() const { return trace_.size() > failAt_; }

    int openFile(const std::string& path, int flags, mode_t mode) override {
        if (fails("open"))
            return -1;
        if ((flags & O_CREAT) != 0 && refuses(path))
            return -1;
        return CFileCalls::openFile(path, flags, mode);
    }
    ssize_t readAt(int fd, char* to, std::size_t count, off_t offset) override {
        return fails("read") ? -1 : CFileCalls::readAt(fd, to, count, offset);
    }
    /// In small pieces, so that death strikes between them, too.
    ssize_t writeAt(int fd, const char* from, std::size_t count, off_t offset) override {
        return fails("write") ? -1 : CFileCalls::writeAt(fd, from, std::min<std::size_t>(count, 700), offset);
    }
    int allocate(int fd, off_t size) override {
        return fails("allocate") ? -1 : CFileCalls::allocate(fd, size);
    }
    int truncate(int fd, off_t size) override {
        return fails("truncate") ? -1 : CFileCalls::truncate(fd, size);
    }
    int flush(int fd) override {
        struct stat status = {};
        CFileCalls::statusOf(fd, status);
        return fails(S_ISDIR(status.st_mode) ? "flush folder" : "flush") ? -1 : CFileCalls::flush(fd);
    }
    int statusOf(int fd, struct stat& status) override {
        return fails("status") ? -1 : CFileCalls::statusOf(fd, status);
    }
    int setMode(int fd, mode_t mode) override { return fails("mode") ? -1 : CFileCalls::setMode(fd, mode); }
    int setOwner(int fd, uid_t user, gid_t group) override {
        const char* name = user == static_cast<uid_t>(-1) ? "group" : "owner";
        return fails(name) ? -1 : CFileCalls::setOwner(fd, user, group);
    }
    int copyAccessList(int from, int to) override {
        return fails("access list") ? -1 : CFileCalls::copyAccessList(from, to);
    }
    int rename(const std::string& from, const std::string& to) override {
        return fails("rename") || refuses(to) || busy(from) || busy(to) ? -1 : CFileCalls::rename(from, to);
    }
    int renameToNew(const std::string& from, const std::string& to) override {
        if (onShare(to)) {
            errno = EINVAL;
            return -1;
        }
        return fails("rename to new") || refuses(to) ? -1 : CFileCalls::renameToNew(from, to);
    }
    int link(const std::string& from, const std::string& to) override {
        if (onShare(to)) {
            errno = EPERM;
            return -1;
        }
        return fails("link") || refuses(to) ? -1 : CFileCalls::link(from, to);
    }
    int remove(const std::string& path) override {
        return fails("remove") || busy(path) ? -1 : CFileCalls::remove(path);
    }
    int tryLock(int fd, bool exclusive) override {
        return fails("lock") ? -1 : CFileCalls::tryLock(fd, exclusive);
    }

    std::chrono::steady_clock::time_point now() override { return now_; }
    void pause(std::chrono::milliseconds span) override {
        now_ += span;
        if (onPause)
            onPause();
    }

private:
    static constexpr std::size_t never = static_cast<std::size_t>(-1);

    bool fails(const char* name) {
        trace_.emplace_back(name);
        if (const auto lacking = lacking_.find(name); lacking != lacking_.end()) {
            errno = lacking->second;
            return true;
        }
        if (trace_.size() != failAt_ + 1)
            return false;
        if (code_ == 0)
            throw Killed{};
        errno = code_;
        return true;
    }
    bool onShare(const std::string& path) const { return !share_.empty() && path.starts_with(share_ + "/"); }
    bool busy(const std::string& path) const {
        if (!onShare(path))
            return false;
        for (const auto& open : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code ignored;
            if (std::filesystem::read_symlink(open, ignored) == path) {
                errno = EBUSY;
                return true;
            }
        }
        return false;
    }
    bool refuses(const std::string& path) const {
        if (refused_.empty() || path.rfind(refused_ + "/", 0) != 0)
            return false;
        errno = EACCES;
        return true;
    }

    std::size_t failAt_ = never;
    int code_ = 0;
    std::map<std::string, int> lacking_;
    std::string share_;
    std::string refused_;
    std::vector<std::string> trace_;
    std::chrono::steady_clock::time_point now_{};
};

} // namespace mirovane::test
