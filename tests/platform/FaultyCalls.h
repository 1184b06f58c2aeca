#pragma once

#include "platform/FileCalls.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace mirovane::test {

/// What a process that was killed leaves: everything after this is not done.
struct Killed {};

/// The real calls, but the chosen one fails, or the process dies in its place. Time stands still but for
/// pauses.
class FaultyCalls final : public FileCalls {
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

    /// Runs each time somebody waits for a lock.
    std::function<void()> onPause;

    const std::vector<std::string>& trace() const { return trace_; }
    bool struck() const { return trace_.size() > failAt_; }

    int openFile(const std::string& path, int flags, mode_t mode) override {
        if (fails("open"))
            return -1;
        if ((flags & O_CREAT) != 0 && refuses(path))
            return -1;
        return FileCalls::openFile(path, flags, mode);
    }
    ssize_t readAt(int fd, char* to, std::size_t count, off_t offset) override {
        return fails("read") ? -1 : FileCalls::readAt(fd, to, count, offset);
    }
    /// In small pieces, so that death strikes between them, too.
    ssize_t writeAt(int fd, const char* from, std::size_t count, off_t offset) override {
        return fails("write") ? -1 : FileCalls::writeAt(fd, from, std::min<std::size_t>(count, 700), offset);
    }
    int allocate(int fd, off_t size) override {
        return fails("allocate") ? -1 : FileCalls::allocate(fd, size);
    }
    int truncate(int fd, off_t size) override {
        return fails("truncate") ? -1 : FileCalls::truncate(fd, size);
    }
    int flush(int fd) override {
        struct stat status = {};
        FileCalls::statusOf(fd, status);
        return fails(S_ISDIR(status.st_mode) ? "flush folder" : "flush") ? -1 : FileCalls::flush(fd);
    }
    int statusOf(int fd, struct stat& status) override {
        return fails("status") ? -1 : FileCalls::statusOf(fd, status);
    }
    int setMode(int fd, mode_t mode) override { return fails("mode") ? -1 : FileCalls::setMode(fd, mode); }
    int setOwner(int fd, uid_t user, gid_t group) override {
        return fails("owner") ? -1 : FileCalls::setOwner(fd, user, group);
    }
    int copyAccessList(int from, int to) override {
        return fails("access list") ? -1 : FileCalls::copyAccessList(from, to);
    }
    int rename(const std::string& from, const std::string& to) override {
        return fails("rename") || refuses(to) || busy(from) || busy(to) ? -1 : FileCalls::rename(from, to);
    }
    int renameToNew(const std::string& from, const std::string& to) override {
        if (onShare(to)) {
            errno = EPERM;
            return -1;
        }
        return fails("rename") || refuses(to) ? -1 : FileCalls::renameToNew(from, to);
    }
    int remove(const std::string& path) override {
        return fails("remove") || busy(path) ? -1 : FileCalls::remove(path);
    }
    int tryLock(int fd, bool exclusive) override {
        return fails("lock") ? -1 : FileCalls::tryLock(fd, exclusive);
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
    std::string share_;
    std::string refused_;
    std::vector<std::string> trace_;
    std::chrono::steady_clock::time_point now_{};
};

} // namespace mirovane::test
