#include "platform/files/PosixFiles.h"

#include "platform/files/OpenFile.h"
#include "tests/platform/files/FilesFixture.h"

#include <algorithm>
#include <ctime>
#include <fcntl.h>
#include <grp.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <unistd.h>

namespace mirovane {
namespace {

namespace fs = std::filesystem;
using namespace test;

using PosixFilesTest = FilesFixture;

/// Two saves within one granule of the file system's clock, or with a clock set back in between.
TEST_F(PosixFilesTest, EverySaveBearsALaterTimeThanTheOneBefore) {
    const auto stamped = [this](time_t seconds, long nanoseconds) {
        const timespec times[2] = {{seconds, nanoseconds}, {seconds, nanoseconds}};
        EXPECT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        return files.status(path).value().modifiedNs;
    };
    for (const bool inPlace : {false, true}) {
        writeBytes(path, before);
        calls.refuseFolder(inPlace ? folder.path() : "");
        for (const long nanoseconds : {0L, 999'999'500L}) {
            const auto ahead = stamped(std::time(nullptr) + 1, nanoseconds);
            ASSERT_FALSE(save(files, path, before));
            const auto now = files.status(path).value().modifiedNs;
            EXPECT_TRUE(now > ahead && now < ahead + 1'000'000'000)
                << inPlace << nanoseconds << ": " << now - ahead;
        }
        // A clock that was wrong by far does not go on in every save.
        const auto tomorrow = stamped(std::time(nullptr) + 86'400, 0);
        ASSERT_FALSE(save(files, path, before));
        EXPECT_LT(files.status(path).value().modifiedNs, tomorrow - 1'000'000'000) << inPlace;
    }
}

/// Lets every call of a save fail in turn, in every likely way, or the process die there. Whatever happens,
/// the file is whole, what save() said of it is true, and the next save works and leaves nothing behind.
enum class Way { Rename, InPlace, InPlaceBeside };

class EveryFaultTest : public PosixFilesTest, public testing::WithParamInterface<Way> {
protected:
    void SetUp() override { writeBytes(path, before); }

    /// True when the fault was met, so that a later one is worth a try.
    bool saveWithFault(std::size_t at, int code) {
        FaultyCalls faulty;
        CPosixFiles station(faulty, backup.path());
        takeWay(faulty);
        if (code == 0)
            faulty.killAt(at);
        else
            faulty.failAt(at, code);
        try {
            const auto error = save(station, path, after);
            check(error, at, code);
            return faulty.struck();
        } catch (const test::Killed&) {
            checkRecovery(at);
            return true;
        }
    }

    void takeWay(FaultyCalls& station) {
        if (GetParam() == Way::InPlace)
            station.refuseFolder(folder.path());
        if (GetParam() == Way::InPlaceBeside)
            station.lack("access list", EPERM);
    }

    void check(const std::optional<FileError>& error, std::size_t at, int code) {
        const std::string found = readBytes(path);
        if (error) {
            EXPECT_TRUE(found == before || found == after) << "call " << at << " errno " << code;
            EXPECT_NE(error->sentence.find(path), std::string::npos) << error->sentence;
        } else {
            EXPECT_EQ(found, after) << "call " << at << " errno " << code;
        }
    }

    void checkRecovery(std::size_t at) {
        if (GetParam() == Way::Rename) {
            const std::string left = readBytes(path);
            EXPECT_TRUE(left == before || left == after) << "killed at call " << at;
        }
        FaultyCalls healthy;
        CPosixFiles station(healthy, backup.path());
        auto locked = station.lock(path, FileAccess::Read, patience);
        ASSERT_TRUE(locked) << locked.error().sentence;
        const std::string found = locked.value()->read().value();
        EXPECT_TRUE(found == before || found == after) << "killed at call " << at;
    }

    void startAgain() {
        FaultyCalls healthy;
        takeWay(healthy);
        CPosixFiles station(healthy, backup.path());
        ASSERT_FALSE(save(station, path, before));
        ASSERT_EQ(readBytes(path), before);
        ASSERT_EQ(filesIn(folder.path()), 1U);
    }
};

TEST_P(EveryFaultTest, LeavesTheOldFileOrTheNewOne) {
    const bool beside = GetParam() == Way::InPlaceBeside; // the same calls in another folder
    for (const int code : beside ? std::vector{0, ENOSPC} : std::vector{0, EIO, ENOSPC, EACCES, EINTR}) {
        std::size_t at = 0;
        while (saveWithFault(at, code)) {
            startAgain();
            ++at;
        }
        EXPECT_GT(at, 10U);
        startAgain();
    }
    EXPECT_EQ(filesIn(backup.path()), 0U);
}

INSTANTIATE_TEST_SUITE_P(InFolder, EveryFaultTest, testing::Values(Way::Rename));

INSTANTIATE_TEST_SUITE_P(InPlace, EveryFaultTest, testing::Values(Way::InPlace, Way::InPlaceBeside));

TEST_F(PosixFilesTest, LocksExcludeForABoundedTime) {
    writeBytes(path, before);
    CPosixFiles other(calls, backup.path());
    auto reader = files.lock(path, FileAccess::Read, patience);
    ASSERT_TRUE(reader);
    EXPECT_TRUE(other.lock(path, FileAccess::Read, patience));

    const auto start = calls.now();
    const auto refused = other.lock(path, FileAccess::Write, patience);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind, FileError::Kind::Locked);
    EXPECT_LT(calls.now() - start, patience * 2);

    calls.onPause = [&reader] {
        reader.value().reset();
    };
    EXPECT_TRUE(other.lock(path, FileAccess::Write, patience));
}

TEST_F(PosixFilesTest, LockedFileIsTheFileAtThePath) {
    writeBytes(path, before);
    auto writer = files.lock(path, FileAccess::Write, patience);
    ASSERT_TRUE(writer.value()->replace(after));
    // The writer still holds the new file, the old one under the same name is gone.
    CPosixFiles other(calls, backup.path());
    EXPECT_FALSE(other.lock(path, FileAccess::Read, patience));
    calls.onPause = [&writer] {
        writer.value().reset();
    };
    auto reader = other.lock(path, FileAccess::Read, patience);
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader.value()->read().value(), after);
    EXPECT_EQ(reader.value()->identity(), files.status(path).value());
}

/// Between the lock and the look at the path's name another station can be about to put its file there.
TEST_F(PosixFilesTest, AFileThatIsGoneForAMomentIsWaitedFor) {
    writeBytes(path, before);
    ASSERT_TRUE(files.lock(path, FileAccess::Read, patience));
    const auto& trace = calls.trace();
    const std::size_t secondOpen =
        static_cast<std::size_t>(std::find(trace.begin() + 1, trace.end(), "open") - trace.begin());
    const std::size_t length = trace.size();
    int pauses = 0;
    calls.onPause = [&pauses] {
        ++pauses;
    };
    calls.failAt(length + secondOpen, ENOENT);
    EXPECT_TRUE(files.lock(path, FileAccess::Read, patience));
    EXPECT_EQ(pauses, 1);
    calls.failAt(trace.size() + secondOpen, EACCES);
    const auto refused = files.lock(path, FileAccess::Read, patience);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().kind, FileError::Kind::Denied);
    EXPECT_EQ(pauses, 1);
}

TEST_F(PosixFilesTest, OddPathsAreErrorsWithASentence) {
    fs::create_directory(folder.file("folder.mv"));
    ASSERT_EQ(mkfifo(folder.file("pipe.mv").c_str(), 0600), 0);
    for (const char* name : {"folder.mv", "pipe.mv", "none/floor.mv", "gone.mv"}) {
        const auto read = files.lock(folder.file(name), FileAccess::Read, patience);
        ASSERT_FALSE(read) << name;
        EXPECT_NE(read.error().sentence.find(folder.file(name)), std::string::npos) << read.error().sentence;
    }
    for (const char* name : {"folder.mv", "pipe.mv", "none/floor.mv"})
        EXPECT_TRUE(save(files, folder.file(name), after)) << name;
    EXPECT_EQ(save(files, folder.file("none/floor.mv"), after)->kind, FileError::Kind::NotFound);
}

TEST_F(PosixFilesTest, AFileThatNoMemoryHoldsIsAnErrorAndCanBeReplaced) {
    writeBytes(path, before);
    fs::resize_file(path, std::uintmax_t{largestFile} + 1); // sparse: takes no room
    auto file = files.lock(path, FileAccess::Read, patience);
    ASSERT_TRUE(file);
    const auto content = file.value()->read();
    file.value().reset();
    ASSERT_FALSE(content);
    EXPECT_EQ(content.error().kind, FileError::Kind::TooLarge);
    EXPECT_NE(content.error().sentence.find(path), std::string::npos) << content.error().sentence;
    EXPECT_FALSE(save(files, path, after)) << "a file of a size that can be read replaces it";
    EXPECT_EQ(readBytes(path), after);
}

/// Where there are no locks, another station may shorten the file while it is read.
TEST_F(PosixFilesTest, AFileThatEndsEarlyIsReadToItsEnd) {
    class CShrinkingCalls final : public CFileCalls {
        int statusOf(int fd, struct stat& status) override {
            const int result = CFileCalls::statusOf(fd, status);
            status.st_size += 10;
            return result;
        }
    };
    writeBytes(path, before);
    CShrinkingCalls shrinking;
    CPosixFiles station(shrinking, backup.path());
    auto file = station.lock(path, FileAccess::Read, patience);
    ASSERT_TRUE(file);
    EXPECT_EQ(file.value()->read().value(), before);
}

/// Refusals of the real system, as a user without privileges meets them.
class UnprivilegedTest : public PosixFilesTest {
protected:
    static constexpr uid_t nobody = 65534;
    static constexpr gid_t colleagues = 2345; ///< a group that he is a member of

    void SetUp() override {
        writeBytes(path, before);
        wasRoot_ = geteuid() == 0;
        if (!wasRoot_)
            return;
        for (const std::string& owned : {folder.path(), path, backup.path()})
            ASSERT_EQ(chown(owned.c_str(), nobody, nobody), 0);
        groups_.resize(static_cast<std::size_t>(getgroups(0, nullptr)));
        ASSERT_GE(getgroups(static_cast<int>(groups_.size()), groups_.data()), 0);
        ASSERT_EQ(setgroups(1, &colleagues), 0);
        ASSERT_EQ(setegid(nobody), 0);
        ASSERT_EQ(seteuid(nobody), 0);
    }
    void TearDown() override {
        if (wasRoot_)
            becomeRoot();
        fs::permissions(folder.path(), fs::perms(0700));
    }
    bool wasRoot() const { return wasRoot_; }
    void becomeRoot() {
        ASSERT_EQ(seteuid(0), 0);
        ASSERT_EQ(setegid(0), 0);
        ASSERT_EQ(setgroups(groups_.size(), groups_.data()), 0);
    }

private:
    bool wasRoot_ = false;
    std::vector<gid_t> groups_;
};

TEST_F(UnprivilegedTest, AColleaguesFileStaysHis) {
    if (!wasRoot())
        GTEST_SKIP() << "only root can make a file of somebody else";
    ASSERT_EQ(seteuid(0), 0);
    ASSERT_EQ(chown(path.c_str(), 1234, colleagues), 0);
    ASSERT_EQ(chmod(path.c_str(), 0660), 0);
    ASSERT_EQ(seteuid(nobody), 0);
    ASSERT_FALSE(save(files, path, after));
    EXPECT_EQ(readBytes(path), after);
    const struct stat now = statusOf(path);
    EXPECT_EQ(now.st_uid, 1234U);
    EXPECT_EQ(now.st_gid, colleagues) << "or the others could not read it any more";
    EXPECT_EQ(now.st_mode & 07777, 0660U);
}

void expectReadOnlyStays(Files& files, const std::string& path, const std::string& content) {
    fs::permissions(path, fs::perms(0444));
    const auto error = save(files, path, "other");
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::Denied);
    EXPECT_EQ(readBytes(path), content);
    EXPECT_TRUE(files.lock(path, FileAccess::Read, patience));
}

TEST_F(PosixFilesTest, FileMarkedReadOnlyStaysUntouched) {
    writeBytes(path, before);
    expectReadOnlyStays(files, path, before);
}

TEST_F(UnprivilegedTest, FileMarkedReadOnlyStaysUntouched) {
    expectReadOnlyStays(files, path, before);
}

TEST_F(UnprivilegedTest, FolderWithoutWriteAccessStillTakesTheContent) {
    fs::permissions(folder.path(), fs::perms(0555));
    EXPECT_FALSE(save(files, path, after));
    EXPECT_EQ(readBytes(path), after);
    const auto error = save(files, folder.file("new.mv"), after);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::Denied);
}

TEST_F(PosixFilesTest, FileSizeLimitIsAnErrorAndNotTheEnd) {
    writeBytes(path, before);
    rlimit limit = {};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    rlimit small = limit;
    small.rlim_cur = 4096;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto error = save(files, path, after);
    setrlimit(RLIMIT_FSIZE, &limit);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::TooLarge);
    EXPECT_EQ(readBytes(path), before);
    EXPECT_EQ(filesIn(folder.path()), 1U);
}

TEST_F(PosixFilesTest, FullDiskIsAnErrorAndTheOldFileStays) {
    const std::string disk = folder.file("disk");
    fs::create_directory(disk);
    if (mount("tmpfs", disk.c_str(), "tmpfs", 0, "size=64k") != 0)
        GTEST_SKIP() << "a small disk cannot be mounted by this user";
    const std::string onDisk = disk + "/floor.mv";
    writeBytes(onDisk, before);
    const auto error = save(files, onDisk, std::string(100'000, 'n'));
    const std::string found = readBytes(onDisk);
    const std::size_t left = filesIn(disk);
    umount(disk.c_str());
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::NoSpace);
    EXPECT_EQ(found, before);
    EXPECT_EQ(left, 1U);
}

} // namespace
} // namespace mirovane
