#include "platform/files/KeptCopy.h"
#include "tests/platform/files/FilesFixture.h"

#include <csignal>
#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

namespace mirovane {
namespace {

using namespace test;

/// Two users of one group share a folder: one owns the datafile, both save it, and one of them is killed in
/// the middle.
class TwoUsersTest : public FilesFixture {
protected:
    static constexpr uid_t owner = 61001;
    static constexpr uid_t colleague = 61002;
    static constexpr gid_t team = 61000;

    void SetUp() override {
        if (geteuid() != 0)
            GTEST_SKIP() << "only root can be two users";
        ASSERT_EQ(chown(folder.path().c_str(), owner, team), 0);
        ASSERT_EQ(chmod(folder.path().c_str(), 02775), 0);
        ASSERT_EQ(chmod(backup.path().c_str(), 0777), 0);
        startAgain();
    }

    void startAgain() {
        for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
            std::filesystem::remove(entry);
        writeBytes(path, before);
        ASSERT_EQ(chown(path.c_str(), owner, team), 0);
        ASSERT_EQ(chmod(path.c_str(), 0664), 0);
    }

    /// Runs `work` in a process of this user, whose new files belong to `group`; true when it did, false when
    /// it was killed by itself.
    template <typename Work>
    bool as(uid_t user, const Work& work, gid_t group = team) {
        const pid_t child = fork();
        if (child == 0) {
            umask(0077); // a user who shares nothing by accident
            if (setgroups(1, &team) != 0 || setgid(group) != 0 || setuid(user) != 0)
                _exit(3);
            try {
                _exit(work() ? 0 : 1);
            } catch (const test::Killed&) {
                raise(SIGKILL);
            }
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) <= 1) << "could not become that user";
        died_ = WIFSIGNALED(status);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    bool died() const { return died_; }

    bool saveDyingAt(std::size_t at, const std::string& state) {
        FaultyCalls faulty;
        faulty.killAt(at);
        CPosixFiles station(faulty, state);
        return !save(station, path, after);
    }

    bool saveAlive(std::string_view content, const std::string& state) {
        CFileCalls healthy;
        CPosixFiles station(healthy, state);
        auto locked = station.lock(path, FileAccess::Write, patience);
        if (!locked)
            return false;
        const auto found = locked.value()->read();
        return found && (found.value() == before || found.value() == after) &&
               locked.value()->replace(content).ok();
    }

private:
    bool died_ = false;
};

TEST_F(TwoUsersTest, AKilledSaveStopsNobodyElsesAndTheFileStaysItsOwners) {
    for (const auto& [dying, living] : {std::pair(owner, colleague), {colleague, owner}}) {
        std::size_t at = 0;
        for (;; ++at) {
            startAgain();
            const bool saved = as(dying, [&] { return saveDyingAt(at, backup.file("dying")); });
            if (!died()) {
                EXPECT_TRUE(saved);
                break;
            }
            const std::string mine = "saved by the other one";
            EXPECT_TRUE(as(living, [&] { return saveAlive(mine, backup.file("living")); }))
                << "user " << living << " after the death of the other one at call " << at;
            EXPECT_EQ(readBytes(path), mine) << at;
            const struct stat now = statusOf(path);
            EXPECT_TRUE(now.st_uid == owner && now.st_gid == team && (now.st_mode & 07777) == 0664)
                << at << ": " << now.st_uid << ":" << now.st_gid << " " << std::oct << now.st_mode;
        }
        EXPECT_GT(at, 10U);
    }
}

/// In a folder that does not hand its group on, and by somebody who cannot give files to their owner.
TEST_F(TwoUsersTest, CopiesOfTheDatafileBelongToItsGroup) {
    constexpr gid_t own = colleague;
    ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
    const auto isTeams = [](const std::string& file) {
        const struct stat status = statusOf(file);
        return status.st_gid == team && (status.st_mode & 07777) == 0664;
    };
    const auto copies = [&] {
        CKeptCopy copy;
        if (copy.make(path, ".before-repair"))
            return false;
        copy.keep();
        return true;
    };
    EXPECT_TRUE(as(colleague, copies, own));
    EXPECT_TRUE(isTeams(path + ".before-repair"));

    const std::string old = folder.file(".floor.mv.before");
    int seen = 0;
    for (std::size_t at = 0; at == 0 || died(); ++at) {
        startAgain();
        as(
            colleague, [&] { return saveDyingAt(at, backup.file("dying")); }, own);
        if (!std::filesystem::exists(old))
            continue;
        ++seen;
        EXPECT_TRUE(isTeams(old)) << "nobody else could finish the save that died at call " << at;
    }
    EXPECT_GT(seen, 0);
}

} // namespace
} // namespace mirovane
