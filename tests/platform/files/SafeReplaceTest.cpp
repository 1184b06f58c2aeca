#include "platform/files/SafeReplace.h"

#include "tests/platform/files/FilesFixture.h"

#include <algorithm>
#include <sys/xattr.h>
#include <unistd.h>

namespace mirovane {
namespace {

namespace fs = std::filesystem;
using namespace test;

using SafeReplaceTest = FilesFixture;

TEST_F(SafeReplaceTest, ReplacedFileKeepsModeOwnerAndLink) {
    writeBytes(path, before);
    fs::permissions(path, fs::perms(0640));
    ASSERT_EQ(geteuid() == 0 ? chown(path.c_str(), 1234, 2345) : 0, 0);
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
    if (geteuid() != 0)
        return;
    locked.value().reset();
    for (const auto& [user, group] : {std::pair<uid_t, gid_t>{1234, getegid()}, {geteuid(), 2345}}) {
        ASSERT_EQ(chown(path.c_str(), user, group), 0);
        ASSERT_FALSE(save(files, path, after));
        EXPECT_EQ(statusOf(path).st_uid, user);
        EXPECT_EQ(statusOf(path).st_gid, group);
    }
}

/// Without its list, a mode that only names the list's upper bound would let the whole group write.
TEST_F(SafeReplaceTest, ReplacedFileKeepsItsAccessList) {
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

TEST_F(SafeReplaceTest, NewFilesOfAnyNameAreMade) {
    fs::create_symlink("later.mv", folder.file("dangling.mv"));
    fs::create_symlink(folder.file("dangling.mv"), folder.file("twice.mv"));
    for (const std::string& name : {std::string("plain.mv"), std::string(252, 'x') + ".mv",
                                    std::string(252, 'x') + ".vm", std::string("twice.mv")})
        EXPECT_FALSE(save(files, folder.file(name), after)) << name;
    EXPECT_EQ(readBytes(folder.file("later.mv")), after);
    EXPECT_TRUE(fs::is_symlink(folder.file("dangling.mv")) && fs::is_symlink(folder.file("twice.mv")));
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(statusOf(folder.file("plain.mv")).st_mode & 07777, 0666 & ~mask);
    EXPECT_EQ(filesIn(folder.path()), 6U);
}

/// Hard links replace a rename that spares what is there; where there are neither, the file is made
/// under its own name at once.
TEST_F(SafeReplaceTest, NewFilesAreMadeWhereCallsAreMissing) {
    for (const int code : {EINVAL, ENOSYS, ENOTSUP}) {
        FaultyCalls poor;
        poor.lack("rename to new", code);
        CPosixFiles station(poor, backup.path());
        EXPECT_FALSE(save(station, path, after)) << code;
        EXPECT_EQ(readBytes(path), after);
        EXPECT_EQ(filesIn(folder.path()), 1U) << "no second name is left";
        fs::remove(path);
        poor.lack("link", EPERM);
        EXPECT_FALSE(save(station, path, after)) << code;
        EXPECT_EQ(readBytes(path), after);
        EXPECT_EQ(filesIn(folder.path()), 1U);
        fs::remove(path);
    }
    FaultyCalls broken;
    broken.lack("rename to new", EIO);
    CPosixFiles station(broken, backup.path());
    EXPECT_TRUE(save(station, path, after)) << "which is not a missing call";
    EXPECT_EQ(filesIn(folder.path()), 0U);
}

TEST_F(SafeReplaceTest, ANewFileReplacesNobodyElses) {
    for (const bool linked : {false, true}) {
        FaultyCalls late;
        if (linked)
            late.lack("rename to new", EINVAL);
        CPosixFiles station(late, backup.path());
        auto locked = station.lock(path, FileAccess::Write, patience);
        ASSERT_TRUE(locked);
        EXPECT_FALSE(locked.value()->exists());
        writeBytes(path, "another station's");
        const auto replaced = locked.value()->replace(after);
        ASSERT_FALSE(replaced);
        EXPECT_EQ(replaced.error().kind, FileError::Kind::Changed);
        EXPECT_EQ(readBytes(path), "another station's");
        EXPECT_EQ(filesIn(folder.path()), 1U);
        fs::remove(path);
    }
}

TEST_F(SafeReplaceTest, NoHalfFileIsLeftWhereItIsMadeUnderItsOwnName) {
    for (std::size_t at = 0;; ++at) {
        FaultyCalls faulty;
        faulty.behaveAsShare(folder.path());
        faulty.failAt(at, ENOSPC);
        CPosixFiles station(faulty, backup.path());
        const auto error = save(station, path, after);
        if (!faulty.struck())
            break;
        EXPECT_TRUE(!fs::exists(path) || readBytes(path) == after) << at;
        EXPECT_TRUE(error || fs::exists(path)) << at;
        fs::remove(path);
        fs::remove(folder.file(".floor.mv.saving"));
    }
}

/// Some network file systems flush no folders. A disk that fails is another matter.
TEST_F(SafeReplaceTest, AFolderThatCannotBeFlushedIsNoTroubleUnlessTheDiskFails) {
    for (const auto& [code, saved] :
         {std::pair(EINVAL, true), {EBADF, true}, {EIO, false}, {ENOSPC, false}, {EDQUOT, false}}) {
        FaultyCalls poor;
        poor.lack("flush folder", code);
        CPosixFiles station(poor, backup.path());
        EXPECT_EQ(!save(station, path, after), saved) << code;
    }
}

TEST_F(SafeReplaceTest, WithoutLocksOnlyItsAgeTellsALeftoverFromASaveUnderWay) {
    const std::string leftover = folder.file(".floor.mv.saving");
    for (const int code : {EOPNOTSUPP, ENOSYS, EINVAL}) {
        FaultyCalls poor;
        poor.lack("lock", code);
        CPosixFiles station(poor, backup.path());
        writeBytes(path, before);
        EXPECT_FALSE(save(station, path, after)) << "the identity of the file has to do";
        for (const auto& [age, goes] : {std::pair(30, false), {90, true}}) {
            writeBytes(leftover, "half");
            fs::last_write_time(leftover, fs::file_time_type::clock::now() - std::chrono::seconds(age));
            const auto error = save(station, path, before);
            EXPECT_EQ(!error, goes) << age << " seconds old";
            EXPECT_EQ(!fs::exists(leftover), goes) << age;
            EXPECT_TRUE(goes || error->kind == FileError::Kind::Locked);
            fs::remove(leftover);
        }
    }
}

TEST_F(SafeReplaceTest, ContentIsOnDiskBeforeItsNameIs) {
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

/// Where there is no datafile yet nothing is locked but the temporary file itself.
TEST_F(SafeReplaceTest, LeftoverOfAKilledSaverGoesAndALivingOneStays) {
    const std::string leftover = folder.file(".floor.mv.saving");
    writeBytes(leftover, "half");
    EXPECT_FALSE(save(files, path, after));
    EXPECT_FALSE(fs::exists(leftover));

    fs::remove(path);
    CFileCalls living;
    writeBytes(leftover, "half");
    const int fd = living.openFile(leftover, O_RDWR, 0);
    ASSERT_EQ(living.tryLock(fd, true), 0);
    const auto error = save(files, path, before);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::Locked);
    EXPECT_EQ(readBytes(leftover), "half");
    calls.onPause = [&] {
        living.closeFile(fd);
        calls.onPause = {};
    };
    EXPECT_FALSE(save(files, path, before)) << "that one has come to its end";
    EXPECT_FALSE(fs::exists(leftover));
}

TEST_F(SafeReplaceTest, ShareThatRenamesNothingOpenTakesTheContent) {
    calls.behaveAsShare(folder.path());
    ASSERT_FALSE(save(files, path, before)); // a new file
    EXPECT_EQ(readBytes(path), before);
    writeBytes(folder.file(".floor.mv.saving"), "left by a killed saver");
    const auto error = save(files, path, after);
    ASSERT_FALSE(error) << error->sentence;
    EXPECT_EQ(readBytes(path), after);
    EXPECT_EQ(filesIn(folder.path()), 1U);
}

} // namespace
} // namespace mirovane
