#include "platform/files/InPlaceWrite.h"

#include "platform/files/StateFolder.h"
#include "tests/platform/files/FilesFixture.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <unistd.h>

namespace mirovane {
namespace {

namespace fs = std::filesystem;
using namespace test;

using InPlaceWriteTest = FilesFixture;

TEST_F(InPlaceWriteTest, WriteInPlaceFallsBackToTheBackupItSpeaksOf) {
    writeBytes(path, before);
    calls.refuseFolder(folder.path());
    const ino_t inode = statusOf(path).st_ino;
    ASSERT_FALSE(save(files, path, after));
    EXPECT_EQ(readBytes(path), after);
    EXPECT_EQ(statusOf(path).st_ino, inode);
    EXPECT_EQ(filesIn(backup.file("deep/er")), 0U);

    writeBytes(backup.file("a-file"), "in the way");
    CPosixFiles nowhere(calls, backup.file("a-file") + "/backup");
    const auto error = save(nowhere, path, before);
    ASSERT_TRUE(error);
    EXPECT_NE(error->sentence.find(backup.file("a-file")), std::string::npos) << error->sentence;
    EXPECT_EQ(readBytes(path), after);
}

TEST_F(InPlaceWriteTest, CutOffWriteIsNotCompletedOverSomebodyElsesFile) {
    writeBytes(path, before);
    FaultyCalls dying;
    dying.refuseFolder(folder.path());
    CPosixFiles station(dying, backup.path());
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

TEST_F(InPlaceWriteTest, CopiesInAFolderThatAllWriteToAreNotTrusted) {
    writeBytes(path, before);
    FaultyCalls dying;
    dying.refuseFolder(folder.path());
    CPosixFiles station(dying, backup.path());
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
    if (geteuid() == 0) {
        ASSERT_EQ(chown(backup.path().c_str(), 1234, 0), 0);
        ASSERT_TRUE(station.lock(path, FileAccess::Read, patience));
        EXPECT_TRUE(readBytes(path) == half) << "somebody else could have";
        ASSERT_EQ(chown(backup.path().c_str(), 0, 0), 0);
    }
    ASSERT_TRUE(station.lock(path, FileAccess::Read, patience));
    EXPECT_TRUE(readBytes(path) == after);
}

TEST(BackupFolderTest, IsTheUsersOwnWhereverHeHasOne) {
    const char* const names[] = {"XDG_STATE_HOME", "HOME", "TMPDIR"};
    std::map<std::string, std::optional<std::string>> kept;
    for (const char* name : names)
        kept[name] = std::getenv(name) ? std::optional<std::string>(std::getenv(name)) : std::nullopt;
    const std::string ours = "/mirovane-" + std::to_string(geteuid());
    struct Case {
        const char* state;
        const char* home;
        const char* temporary;
        std::string folder;
    };
    for (const Case& one :
         {Case{"/s", "/h", "/t", "/s/mirovane"}, Case{"s", "/h", "/t", "/h/.local/state/mirovane"},
          Case{"", "", "/t", "/t" + ours}, Case{"", "", "", "/tmp" + ours}}) {
        setenv("XDG_STATE_HOME", one.state, 1);
        setenv("HOME", one.home, 1);
        setenv("TMPDIR", one.temporary, 1);
        EXPECT_EQ(defaultStateFolder(), one.folder);
    }
    for (const auto& [name, value] : kept)
        value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
}

} // namespace
} // namespace mirovane
