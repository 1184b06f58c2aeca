#include "tests/station/StationFixture.h"
#include "tests/support/Paths.h"

namespace mirovane {

namespace {

using test::Lines;

class StationWatchTest : public test::StationFixture {};

TEST_F(StationWatchTest, TheOtherStationReloadsAndKeepsItsSelection) {
    open(a);
    open(b);
    b.doc().setSelected(b.device(2), true);
    b.doc().setLSNowMark(b.device(3), true);
    const test::StationNews news(*b.station);
    rename(a, 2, "renamed");
    EXPECT_FALSE(a.station->saveDatafile().failed());
    pass(3000);
    EXPECT_EQ(b.logged(), (Lines{"Loading from data file, please wait...", "Loaded from data file"}));
    EXPECT_EQ(b.device(2).Name, "renamed");
    EXPECT_EQ(b.device(2).Selected + b.device(2).ShowAll, 2);
    EXPECT_EQ(b.device(3).LSNowMark, 1);
    EXPECT_EQ(b.device(1).Selected + b.device(3).Selected, 0);
    EXPECT_EQ(b.station->datafile().knownIdentity(), a.station->datafile().knownIdentity());
    EXPECT_EQ(news.redraws, 1);
    pass(30'000);
    EXPECT_EQ(b.logged(), Lines{});
    EXPECT_EQ(a.logged(), Lines{"Saved changes to data file"}); // its own save makes it reload nothing
}

TEST_F(StationWatchTest, BackgroundChangesAreSavedAtTheSixthTick) {
    open(a);
    const std::string before = test::readBytes(path);
    pass(60'000);
    EXPECT_EQ(a.logged(), Lines{}); // nothing changed
    open(a);
    a.station->changesPending();
    pass(5 * 3000);
    EXPECT_EQ(a.logged(), Lines{});
    pass(3000);
    EXPECT_EQ(a.logged(), Lines{"Saved Live Stat changes to data file"});
    EXPECT_FALSE(a.station->watch().pendingChanges());
    EXPECT_EQ(test::readBytes(path), before);
    pass(150 * 3000);
    a.station->changesPending(); // after so long it is not Live Stat's
    pass(3000);
    EXPECT_EQ(a.logged(), Lines{"Saved changes to data file"});
}

TEST_F(StationWatchTest, AnUpgradeIsSavedAtTheNextTickUnderItsOwnName) {
    test::writeBytes(path, test::readBytes(test::sourceFile("tests/golden/floor-2004.mv")));
    open(a);
    pass(2999);
    EXPECT_EQ(a.logged(), Lines{});
    pass(1);
    EXPECT_EQ(a.logged(), Lines{"Saved updated datafile version 2004 to 2008 changes to data file"});
    pass(60'000);
    EXPECT_EQ(a.logged(), Lines{});
}

TEST_F(StationWatchTest, AnUpgradeThatFailsIsNotTriedAtEveryTick) {
    test::writeBytes(path, test::readBytes(test::sourceFile("tests/golden/floor-2004.mv")));
    open(a);
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    pass(3000);
    const std::size_t told = a.logged().size();
    EXPECT_GT(told, 0U);
    a.station->changesPending();
    pass(5 * 3000);
    EXPECT_EQ(a.logged(), Lines{});
}

TEST_F(StationWatchTest, TheEndWhileAQuestionIsOpenIsTheEnd) {
    open(a);
    open(b);
    a.station->features().liveStat().toggle();
    pass(3000);
    b.dialogs.answer = true;
    b.station->features().liveStat().toggle();
    a.dialogs.whileAsking = [this] {
        a.station->shutDown();
    };
    pass(3000); // reloads, and is asked
    ASSERT_EQ(a.dialogs.questions.size(), 1U);
    a.logged();
    rename(b, 1, "by b");
    ASSERT_TRUE(b.station->saveDatafile().saved());
    pass(30'000);
    EXPECT_EQ(a.logged(), Lines{});
}

TEST_F(StationWatchTest, AVanishedFileIsReportedAtEveryTick) {
    open(a);
    std::filesystem::rename(path, path + ".away");
    a.station->changesPending();
    pass(6000);
    const Lines twice{"Error reading/loading from datafile!", "Error writing to datafile!",
                      "Error reading/loading from datafile!", "Error writing to datafile!"};
    EXPECT_EQ(a.logged(), twice);
    std::filesystem::rename(path + ".away", path);
    pass(18'000);
    EXPECT_EQ(a.logged(), Lines{"Saved Live Stat changes to data file"});
}

TEST_F(StationWatchTest, AnUnreadableFileIsNeverWrittenOver) {
    open(a);
    rename(a, 1, "in memory");
    const std::string whole = test::readBytes(path);
    test::writeBytes(path, whole.substr(0, whole.size() / 2));
    a.station->changesPending();
    pass(60'000);
    Lines lines = a.logged();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], "Loading from data file, please wait...");
    EXPECT_EQ(lines[2].substr(0, 36), "Error reading/loading from datafile!");
    EXPECT_TRUE(a.station->saveDatafile().failed());
    EXPECT_EQ(a.device(1).Name, "in memory");
    EXPECT_EQ(test::readBytes(path), whole.substr(0, whole.size() / 2));
    a.logged();

    test::writeBytes(path, whole);
    pass(3000);
    EXPECT_EQ(a.logged(), (Lines{"Merged changes from data file", "Loaded from data file",
                                 "Saved changes to data file"}));
    open(b);
    EXPECT_EQ(b.device(1).Name, "in memory");
}

/// A station that hangs has the file; this one would wait as long as its patience lasts.
class HeldFiles final : public Files {
public:
    Result<FileIdentity, FileError> status(const std::string& path) override { return real_.status(path); }
    Result<std::unique_ptr<LockedFile>, FileError> lock(const std::string& path, FileAccess access,
                                                        std::chrono::milliseconds patience) override {
        if (!held)
            return real_.lock(path, access, patience);
        waited += patience;
        return FileError{FileError::Kind::Locked, EAGAIN, "cannot read " + path + ": in use"};
    }

    bool held = false;
    std::chrono::milliseconds waited{0};

private:
    CPosixFiles real_;
};

TEST_F(StationWatchTest, AStationThatHangsWithTheFileHoldsThisOneUpOnce) {
    HeldFiles files;
    CStation station(servicesOfA(files));
    ASSERT_FALSE(station.openDatafile(path));
    open(b);
    rename(b, 1, "by b");
    ASSERT_FALSE(b.station->saveDatafile().failed());
    files.held = true;
    pass(60'000);
    EXPECT_EQ(files.waited, lockPatience);
    files.held = false;
    pass(3000);
    EXPECT_EQ(station.document().findDevice(1)->Name, "by b");
}

TEST_F(StationWatchTest, ASaveNeverGoesOverAnotherStationsFile) {
    open(a);
    open(b);
    rename(a, 1, "by a");
    a.station->saveDatafile();
    rename(b, 2, "by b");
    b.doc().setSelected(b.device(2), true);
    EXPECT_FALSE(b.station->saveDatafile().failed()); // before the watch noticed
    EXPECT_EQ(b.logged(), (Lines{"Merged changes from data file", "Saved changes to data file"}));
    EXPECT_EQ(b.device(1).Name, "by a");
    EXPECT_EQ(b.device(2).Selected, 1);
    pass(3000);
    EXPECT_EQ(a.device(1).Name + a.device(2).Name, "by aby b");
    pass(30'000);
    EXPECT_EQ(b.logged(), Lines{}); // what it saved itself makes it reload nothing
}

TEST_F(StationWatchTest, NothingTicksWhileAQuestionIsOpen) {
    open(a);
    open(b);
    a.station->features().liveStat().toggle();
    pass(3000);
    a.dialogs.whileAsking = [this] {
        rename(b, 1, "meanwhile");
        b.station->saveDatafile();
        const auto pings = a.probes.pinged().size();
        pass(60'000);
        EXPECT_EQ(a.device(1).Name, "");
        EXPECT_EQ(a.probes.pinged().size(), pings);
    };
    b.dialogs.answer = true;
    b.station->features().liveStat().toggle();
    pass(3000);
    EXPECT_EQ(a.dialogs.questions.size(), 1U);
    pass(3000);
    EXPECT_EQ(a.device(1).Name, "meanwhile");
}

} // namespace

} // namespace mirovane
