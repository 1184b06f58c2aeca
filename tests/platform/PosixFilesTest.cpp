#include "platform/PosixFiles.h"

#include "platform/OpenFile.h"
#include "tests/platform/FaultyCalls.h"
#include "tests/support/TestFolder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace mirovane {

namespace {

namespace fs = std::filesystem;
using test::FaultyCalls;
using test::readBytes;
using test::TestFolder;
using test::writeBytes;

constexpr std::chrono::milliseconds patience{200};

std::string contentOf(char letter, std::size_t size) {
    return std::string(size, letter);
}

struct stat statusOf(const std::string& path) {
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status;
}

std::size_t filesIn(const std::string& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

std::optional<FileError> save(Files& files, const std::string& path, std::string_view content) {
    auto locked = files.lock(path, FileAccess::Write, patience);
    if (!locked)
        return locked.error();
    const auto replaced = locked.value()->replace(content);
    return replaced ? std::nullopt : std::optional<FileError>(replaced.error());
}

class PosixFilesTest : public testing::Test {
protected:
    TestFolder folder;
    TestFolder backup;
    FaultyCalls calls;
    PosixFiles files{calls, backup.path() + "/deep/er"};
    const std::string path = folder.file("floor.mv");
    const std::string before = contentOf('o', 3000);
    const std::string after = contentOf('n', 5000);
};

TEST_F(PosixFilesTest, EverySaveBearsALaterTimeThanTheOneBefore) {
    writeBytes(path, before);
    const auto stamped = [this](std::chrono::seconds ahead) {
        fs::last_write_time(path, fs::file_time_type::clock::now() + ahead);
        return files.status(path).value().modifiedNs;
    };
    // As after a save within the same granule of the clock, or when that was set back a little.
    const auto justNow = stamped(std::chrono::seconds(1));
    ASSERT_FALSE(save(files, path, before));
    EXPECT_GT(files.status(path).value().modifiedNs, justNow);
    // A clock that was wrong by far does not go on in every save.
    const auto tomorrow = stamped(std::chrono::hours(24));
    ASSERT_FALSE(save(files, path, before));
    EXPECT_LT(files.status(path).value().modifiedNs, tomorrow - 1'000'000'000);
}

TEST_F(PosixFilesTest, ReplacedFileKeepsModeOwnerAndLink) {
    writeBytes(path, before);
    fs::permissions(path, fs::perms(0640));
    if (geteuid() == 0) {
        ASSERT_EQ(chown(path.c_str(), 1234, 2345), 0);
    }
    const struct stat old = statusOf(path);
    fs::create_directory(folder.file("links"));
    fs::create_symlink("../floor.mv", folder.file("links/link.mv"));

    auto locked = files.lock(folder.file("links/link.mv"), FileAccess::Write, patience);
    ASSERT_TRUE(locked);
    const auto identity = locked.value()->replace(after);
    ASSERT_TRUE(identity);

    EXPECT_TRUE(fs::is_symlink(folder.file("links/link.mv")));
    EXPECT_EQ(readBytes(path), after);
    const struct stat now = statusOf(path);
    EXPECT_EQ(now.st_mode, old.st_mode);
    EXPECT_EQ(now.st_uid, old.st_uid);
    EXPECT_EQ(now.st_gid, old.st_gid);
    EXPECT_EQ(files.status(path).value(), identity.value());
    EXPECT_EQ(filesIn(folder.path()), 2U);
}

/// Without its list, a mode that only names the list's upper bound would let the whole group write.
TEST_F(PosixFilesTest, ReplacedFileKeepsItsAccessList) {
    writeBytes(path, before);
    const std::string list("\2\0\0\0"
                           "\1\0\6\0\xFF\xFF\xFF\xFF"
                           "\2\0\6\0\xD2\4\0\0"
                           "\4\0\4\0\xFF\xFF\xFF\xFF"
                           "\x10\0\6\0\xFF\xFF\xFF\xFF"
                           "\x20\0\0\0\xFF\xFF\xFF\xFF",
                           44);
    constexpr const char* name = "system.posix_acl_access";
    if (setxattr(path.c_str(), name, list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "this file system has no access lists";
    ASSERT_FALSE(save(files, path, after));
    std::string found(list.size() * 2, '\0');
    const ssize_t size = getxattr(path.c_str(), name, found.data(), found.size());
    ASSERT_GT(size, 0);
    found.resize(static_cast<std::size_t>(size));
    EXPECT_EQ(found, list);
}

TEST_F(PosixFilesTest, NewFilesOfAnyNameAreMade) {
    fs::create_symlink("later.mv", folder.file("dangling.mv"));
    for (const std::string& name :
         {std::string("plain.mv"), std::string(252, 'x') + ".mv", std::string("dangling.mv")})
        EXPECT_FALSE(save(files, folder.file(name), after)) << name;
    EXPECT_EQ(readBytes(folder.file("later.mv")), after);
    EXPECT_TRUE(fs::is_symlink(folder.file("dangling.mv")));
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(statusOf(folder.file("plain.mv")).st_mode & 07777, 0666 & ~mask);
    EXPECT_EQ(filesIn(folder.path()), 4U);
}

TEST_F(PosixFilesTest, ContentIsOnDiskBeforeItsNameIs) {
    writeBytes(path, before);
    ASSERT_FALSE(save(files, path, after));
    const auto& trace = calls.trace();
    const auto at = [&trace](const char* name) {
        return std::find(trace.begin(), trace.end(), name) - trace.begin();
    };
    const auto lastWrite = trace.rend() - std::find(trace.rbegin(), trace.rend(), "write") - 1;
    EXPECT_LT(lastWrite, at("flush"));
    EXPECT_LT(at("flush"), at("rename"));
    EXPECT_LT(at("rename"), at("flush folder"));
    EXPECT_LT(at("flush folder"), static_cast<std::ptrdiff_t>(trace.size()));
}

/// Lets every call of a save fail in turn, in every likely way, or the process die there. Whatever happens,
/// the file is whole, what save() said of it is true, and the next save works and leaves nothing behind.
class EveryFault : public PosixFilesTest, public testing::WithParamInterface<bool> {
protected:
    void SetUp() override { writeBytes(path, before); }

    /// True when the fault was met, so that a later one is worth a try.
    bool saveWithFault(std::size_t at, int code) {
        FaultyCalls faulty;
        PosixFiles station(faulty, backup.path());
        if (GetParam())
            faulty.refuseFolder(folder.path());
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
        if (!GetParam()) {
            const std::string left = readBytes(path);
            EXPECT_TRUE(left == before || left == after) << "killed at call " << at;
        }
        FaultyCalls healthy;
        PosixFiles station(healthy, backup.path());
        auto locked = station.lock(path, FileAccess::Read, patience);
        ASSERT_TRUE(locked) << locked.error().sentence;
        const std::string found = locked.value()->read().value();
        EXPECT_TRUE(found == before || found == after) << "killed at call " << at;
    }

    void startAgain() {
        PosixFiles station(calls, backup.path());
        ASSERT_FALSE(save(station, path, before));
        ASSERT_EQ(readBytes(path), before);
        ASSERT_EQ(filesIn(folder.path()), 1U);
    }
};

TEST_P(EveryFault, LeavesTheOldFileOrTheNewOne) {
    for (const int code : {0, EIO, ENOSPC, EACCES, EINTR}) {
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

INSTANTIATE_TEST_SUITE_P(InFolder, EveryFault, testing::Values(false));
INSTANTIATE_TEST_SUITE_P(InPlace, EveryFault, testing::Values(true));

TEST_F(PosixFilesTest, WriteInPlaceFallsBackToTheBackupItSpeaksOf) {
    writeBytes(path, before);
    calls.refuseFolder(folder.path());
    const ino_t inode = statusOf(path).st_ino;
    ASSERT_FALSE(save(files, path, after));
    EXPECT_EQ(readBytes(path), after);
    EXPECT_EQ(statusOf(path).st_ino, inode);
    EXPECT_EQ(filesIn(backup.file("deep/er")), 0U);

    writeBytes(backup.file("a-file"), "in the way");
    PosixFiles nowhere(calls, backup.file("a-file") + "/backup");
    const auto error = save(nowhere, path, before);
    ASSERT_TRUE(error);
    EXPECT_NE(error->sentence.find(backup.file("a-file")), std::string::npos) << error->sentence;
    EXPECT_EQ(readBytes(path), after);
}

TEST_F(PosixFilesTest, CutOffWriteIsNotCompletedOverSomebodyElsesFile) {
    writeBytes(path, before);
    FaultyCalls dying;
    dying.refuseFolder(folder.path());
    PosixFiles station(dying, backup.path());
    ASSERT_FALSE(save(station, path, before));
    const auto& trace = dying.trace();
    const auto allocation = std::find(trace.begin(), trace.end(), "truncate") - trace.begin();
    dying.killAt(trace.size() + static_cast<std::size_t>(allocation));
    EXPECT_THROW(save(station, path, after), test::Killed);

    writeBytes(path, "another station's");
    dying.heal();
    auto locked = station.lock(path, FileAccess::Read, patience);
    ASSERT_TRUE(locked);
    EXPECT_EQ(locked.value()->read().value(), "another station's");
}

TEST_F(PosixFilesTest, CopiesInAFolderThatAllWriteToAreNotTrusted) {
    writeBytes(path, before);
    FaultyCalls dying;
    dying.refuseFolder(folder.path());
    PosixFiles station(dying, backup.path());
    ASSERT_FALSE(save(station, path, after)); // a rehearsal: the same calls as below
    writeBytes(path, before);
    const auto& trace = dying.trace();
    const auto end = std::find(trace.begin(), trace.end(), "truncate") - trace.begin();
    dying.killAt(trace.size() + static_cast<std::size_t>(end) - 2);
    EXPECT_THROW(save(station, path, after), test::Killed);
    const std::string half = readBytes(path);
    ASSERT_TRUE(half != before && half != after);

    dying.heal();
    fs::permissions(backup.path(), fs::perms(0777));
    ASSERT_TRUE(station.lock(path, FileAccess::Read, patience));
    EXPECT_TRUE(readBytes(path) == half) << "anybody could have put the copies there";
    EXPECT_TRUE(save(station, path, after)) << "nor are new ones put there";
    EXPECT_TRUE(readBytes(path) == half);

    fs::permissions(backup.path(), fs::perms(0700));
    ASSERT_TRUE(station.lock(path, FileAccess::Read, patience));
    EXPECT_TRUE(readBytes(path) == after);
}

TEST_F(PosixFilesTest, LocksExcludeForABoundedTime) {
    writeBytes(path, before);
    PosixFiles other(calls, backup.path());
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
    PosixFiles other(calls, backup.path());
    EXPECT_FALSE(other.lock(path, FileAccess::Read, patience));
    calls.onPause = [&writer] {
        writer.value().reset();
    };
    auto reader = other.lock(path, FileAccess::Read, patience);
    ASSERT_TRUE(reader);
    EXPECT_EQ(reader.value()->read().value(), after);
    EXPECT_EQ(reader.value()->identity(), files.status(path).value());
}

TEST_F(PosixFilesTest, LeftoverOfAKilledSaverGoesAndALivingOneStays) {
    writeBytes(path, before);
    const std::string leftover = folder.file(".floor.mv.saving");
    writeBytes(leftover, "half");
    EXPECT_FALSE(save(files, path, after));
    EXPECT_FALSE(fs::exists(leftover));

    FileCalls living;
    writeBytes(leftover, "half");
    const int fd = living.openFile(leftover, O_RDWR, 0);
    ASSERT_EQ(living.tryLock(fd, true), 0);
    const auto error = save(files, path, before);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::Locked);
    EXPECT_EQ(readBytes(leftover), "half");
    living.closeFile(fd);
}

TEST_F(PosixFilesTest, ShareThatRenamesNothingOpenTakesTheContent) {
    calls.behaveAsShare(folder.path());
    ASSERT_FALSE(save(files, path, before)); // a new file
    EXPECT_EQ(readBytes(path), before);
    writeBytes(folder.file(".floor.mv.saving"), "left by a killed saver");
    const auto error = save(files, path, after);
    ASSERT_FALSE(error) << error->sentence;
    EXPECT_EQ(readBytes(path), after);
    EXPECT_EQ(filesIn(folder.path()), 1U);
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

/// Refusals of the real system, as a user without privileges meets them.
class UnprivilegedTest : public PosixFilesTest {
protected:
    static constexpr uid_t nobody = 65534;

    void SetUp() override {
        writeBytes(path, before);
        wasRoot_ = geteuid() == 0;
        if (!wasRoot_)
            return;
        for (const std::string& owned : {folder.path(), path, backup.path()})
            ASSERT_EQ(chown(owned.c_str(), nobody, nobody), 0);
        ASSERT_EQ(seteuid(nobody), 0);
    }
    void TearDown() override {
        if (wasRoot_) {
            ASSERT_EQ(seteuid(0), 0);
        }
        fs::permissions(folder.path(), fs::perms(0700));
    }

private:
    bool wasRoot_ = false;
};

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
    const auto error = save(files, onDisk, contentOf('n', 100'000));
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
