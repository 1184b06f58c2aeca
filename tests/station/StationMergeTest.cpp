#include "tests/station/StationFixture.h"
#include "tests/support/LateWorkers.h"

#include <algorithm>
#include <filesystem>
#include <set>

namespace mirovane {

namespace {

namespace fs = std::filesystem;
using test::Lines;
using test::Site;

const Lines missing{"Error reading/loading from datafile!", "Error writing to datafile!"};
const Lines mergedReload{"Loading from data file, please wait...", "Merged changes from data file",
                         "Loaded from data file", "Saved changes to data file"};

class StationMergeTest : public test::StationFixture {
protected:
    /// The share is disconnected: its folder is there and empty.
    void disconnect() {
        fs::rename(folder.path(), folder.path() + ".away");
        fs::create_directory(folder.path());
    }
    void connect() {
        fs::remove(folder.path());
        fs::rename(folder.path() + ".away", folder.path());
    }

    void comment(Site& site, std::int32_t recID, const std::string& text) {
        site.doc().editByUser(
            site.device(recID), [&](CHardware& device) { device.Comment = text; });
    }

    static bool contains(const Lines& lines, const std::string& part) {
        return std::ranges::any_of(
            lines, [&](const auto& line) { return line.find(part) != std::string::npos; });
    }
};

TEST_F(StationMergeTest, WhileTheShareIsGoneEditsWaitAndAreSavedWhenItIsBack) {
    open(a);
    disconnect();
    rename(a, 1, "meanwhile");
    const auto error = a.station->saveDatafile().error;
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::NotFound);
    EXPECT_TRUE(fs::is_empty(folder.path())); // nothing that would be hidden by the share
    EXPECT_EQ(a.logged().back(), "Error accessing datafile " + path);
    pass(3000);
    EXPECT_EQ(a.logged(), missing);
    pass(60'000);
    const Lines lines = a.logged();
    EXPECT_EQ(std::set<std::string>(lines.begin(), lines.end()),
              std::set<std::string>(missing.begin(), missing.end()));
    EXPECT_EQ(a.device(1).Name, "meanwhile");
    connect();
    pass(3000);
    EXPECT_EQ(a.logged(), Lines{"Saved changes to data file"});
    EXPECT_EQ(open(b).device(1).Name, "meanwhile");
}

TEST_F(StationMergeTest, AShareThatComesBackWithAnotherStationsWorkIsMerged) {
    open(a);
    open(b);
    rename(b, 2, "by b");
    rename(b, 1, "by b, too");
    b.station->saveDatafile();
    disconnect();
    rename(a, 1, "by a");
    a.doc().addDevice(DeviceType::Printer);
    a.station->saveDatafile();
    pass(6000);
    a.logged();
    connect();
    pass(3000);
    Lines expected = mergedReload;
    expected.insert(expected.begin() + 2, "Merge: Name of device 1 \"by a\": \"by b, too\", saved by another "
                                          "station, gave way to \"by a\"");
    EXPECT_EQ(a.logged(), expected);
    pass(3000);
    EXPECT_EQ(b.device(1).Name + ", " + b.device(2).Name, "by a, by b");
    EXPECT_EQ(b.doc().deviceCount(), 4U);
}

TEST_F(StationMergeTest, ASaveThatKeepsFailingIsTriedAgainWithoutALineForEach) {
    open(a);
    fs::permissions(path, fs::perms::owner_read);
    rename(a, 1, "kept");
    const auto error = a.station->saveDatafile().error;
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::Denied);
    EXPECT_EQ(a.logged().size(), 2U); // which error, on which file
    pass(120'000);
    EXPECT_EQ(a.logged(), Lines{});
    EXPECT_EQ(a.device(1).Name, "kept");
    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    pass(33'000); // the tries have become rare
    EXPECT_EQ(a.logged(), Lines{"Saved changes to data file"});
    EXPECT_EQ(open(b).device(1).Name, "kept");
}

TEST_F(StationMergeTest, NothingIsSavedOverAFileThatCannotBeRead) {
    open(a);
    const std::string whole = test::readBytes(path);
    const std::string half = whole.substr(0, whole.size() / 2);
    test::writeBytes(path, half);
    rename(a, 1, "kept");
    const auto error = a.station->saveDatafile().error; // before the watch noticed
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::Changed);
    EXPECT_EQ(test::readBytes(path), half);
    EXPECT_EQ(a.device(1).Name, "kept");
    a.logged();
    pass(30'000);
    const Lines lines = a.logged();
    EXPECT_EQ(lines.size(), 3U) << testing::PrintToString(lines); // "Loading...", why, what follows
    test::writeBytes(path, whole);
    pass(3000);
    EXPECT_EQ(a.logged().back(), "Saved changes to data file");
    EXPECT_EQ(open(b).device(1).Name, "kept");
}

TEST_F(StationMergeTest, ATakeOverThatCrossesAnEditAsksAndKeepsTheEdit) {
    open(a);
    open(b);
    rename(a, 1, "by a");
    a.station->features().liveStat().toggle(); // saves both
    b.station->features().liveStat().toggle();
    EXPECT_EQ(b.dialogs.questions.size(), 1U);
    EXPECT_FALSE(b.liveStat().enabled());
    EXPECT_EQ(b.owner().Name, "A-HOST");
    comment(b, 1, "by b");
    b.station->saveDatafile();
    b.dialogs.answer = true;
    comment(a, 2, "a again");
    a.station->saveDatafile();
    b.station->features().liveStat().toggle(); // its claim goes on top of a's edit
    EXPECT_EQ(b.device(2).Comment, "a again");
    EXPECT_EQ(b.owner().Name, "B-HOST");
    comment(a, 3, "without having seen that");
    a.station->saveDatafile(); // finds the claim, and asks at once
    EXPECT_EQ(a.dialogs.questions.size(), 1U);
    EXPECT_FALSE(a.liveStat().enabled());
    pass(3000);
    EXPECT_EQ(b.owner().Name, "B-HOST");
    EXPECT_EQ(b.device(3).Comment, "without having seen that");
    EXPECT_EQ(b.dialogs.questions.size(), 2U);
}

TEST_F(StationMergeTest, QuestionsAnsweredLateDoNotOverwriteWhatHappenedMeanwhile) {
    Site c{clock, timers, {"C-HOST", "c-user"}, false};
    open(a);
    open(b);
    open(c);
    a.station->features().liveStat().toggle();
    pass(3000);
    c.dialogs.answer = b.dialogs.answer = true;
    int asked = 0;
    b.dialogs.whileAsking = [&] {
        if (asked++ > 0)
            return;
        c.station->features().liveStat().toggle(); // takes it from a while b's user thinks about it
        rename(c, 1, "by c");
        c.station->saveDatafile();
        clock.advance(std::chrono::hours(1));
    };
    b.station->features().liveStat().toggle();
    EXPECT_EQ(asked, 2); // about a, then about c
    EXPECT_TRUE(contains(b.dialogs.questions, "C-HOST"));
    EXPECT_EQ(b.owner().Name, "B-HOST");
    EXPECT_EQ(b.device(1).Name, "by c");
}

TEST_F(StationMergeTest, AnOwnerWhoComesWhileTheOtherFeatureIsAskedAboutIsAskedAboutToo) {
    Site c{clock, timers, {"C-HOST", "c-user"}, false};
    open(a);
    CHardware range;
    range.Type = SpecialType::DiscoverRangeRecord;
    range.Name = range.IPAddress = "127.0.0.1";
    a.doc().append(range);
    a.station->features().liveStat().toggle();
    a.station->features().liveDiscover().toggle();
    open(b);
    open(c);
    a.dialogs.answer = b.dialogs.answer = c.dialogs.answer = true;
    b.station->features().liveDiscover().toggle();
    a.dialogs.whileAsking = [&] {
        if (a.dialogs.questions.size() == 1)
            c.station->features().liveStat().toggle();
    };
    pass(3000);
    EXPECT_EQ(a.dialogs.questions.size(), 2U);
    EXPECT_TRUE(contains(a.dialogs.questions, "Live stat is enabled by C-HOST"));
    EXPECT_EQ(a.owner().Name, "A-HOST");
}

class BusyMergeTest : public StationMergeTest {
protected:
    /// Live Stat Now is in the middle of this device.
    void check(std::int32_t recID) {
        late.doc().setSelected(late.device(recID), true);
        late.station->features().liveStat().performNow();
        pass(3000);
        ASSERT_TRUE(workers.busy());
        late.logged();
    }

    test::LateWorkers workers;
    Site late{clock, timers, {"L-HOST", "l-user"}, false, &workers};
};

TEST_F(BusyMergeTest, ASaveWhileAReloadWaitsIsMadeUpFor) {
    open(a);
    open(late);
    check(3);
    comment(a, 2, "by a");
    a.station->saveDatafile();
    pass(3000);
    EXPECT_EQ(late.logged(), Lines{"Loading from data file, please wait..."});
    rename(late, 1, "by late");
    EXPECT_FALSE(late.station->saveDatafile().failed());
    pass(500);
    EXPECT_TRUE(late.doc().unsavedEdits());
    EXPECT_EQ(late.device(2).Comment, "");
    workers.finish();
    pass(100);
    const Lines rest(mergedReload.begin() + 1, mergedReload.end());
    EXPECT_EQ(late.logged(), rest);
    open(b);
    EXPECT_EQ(b.device(1).Name + ", " + b.device(2).Comment, "by late, by a");
}

TEST_F(BusyMergeTest, AnEditWhileAReloadWaitsReplacesNobodysWorkWithoutALine) {
    open(a);
    open(late);
    check(3);
    comment(a, 1, "by a");
    a.station->saveDatafile();
    pass(3000);
    EXPECT_TRUE(test::updateDevices(*late.station, std::vector{1}, [](CHardware& device) {
                    device.Comment = "by late";
                }).saved());
    EXPECT_TRUE(contains(late.logged(), "\"by a\", saved by another station, gave way to \"by late\""));

    pass(60'000);
    comment(a, 2, "by a");
    a.station->saveDatafile();
    pass(3000);
    EXPECT_FALSE(test::deleteDevices(*late.station, std::vector{2}).failed());
    EXPECT_TRUE(contains(late.logged(), "was deleted here and changed by another station: it is kept"));
    EXPECT_EQ(late.device(2).Comment, "by a");
    rename(a, 2, "seen");
    a.station->saveDatafile();
    pass(3000);
    EXPECT_EQ(late.device(2).Name, "seen") << "the watch goes on";
}

TEST_F(BusyMergeTest, AStoppedStepComesToItsEndHoweverOftenColleaguesSave) {
    open(a);
    open(late);
    check(3);
    comment(a, 1, "first");
    a.station->saveDatafile();
    pass(3000);
    workers.finish();
    pass(100);
    EXPECT_EQ(late.device(1).Comment, "first");
    EXPECT_EQ(late.device(3).State, DeviceState::Def) << "stopped";
    pass(6000);
    ASSERT_TRUE(workers.busy()) << "begun again";

    for (const char* text : {"second", "third"}) {
        comment(a, 1, text);
        a.station->saveDatafile();
        pass(3000);
        EXPECT_EQ(late.device(1).Comment, text);
    }
    ASSERT_TRUE(workers.busy());
    workers.finish();
    pass(3000);
    EXPECT_NE(late.device(3).State, DeviceState::Def);
}

TEST_F(BusyMergeTest, AnOpenThatFailsLeavesLiveStatNowAlone) {
    open(late);
    check(1);
    EXPECT_TRUE(late.station->openDatafile(folder.file("missing.mv")));
    EXPECT_TRUE(late.liveStat().nowActive());
    workers.finish();
    pass(3000);
    EXPECT_NE(late.device(1).State, DeviceState::Def);
}

TEST_F(BusyMergeTest, LeavingADatafileWhileAReloadWaitsSavesWhatWaits) {
    open(a);
    open(late);
    check(3);
    comment(a, 2, "by a");
    a.station->saveDatafile();
    pass(3000);
    rename(late, 1, "by late");
    late.station->saveDatafile();
    late.station->newDatafile();
    open(b);
    EXPECT_EQ(b.device(1).Name + ", " + b.device(2).Comment, "by late, by a");
}

TEST_F(BusyMergeTest, AStepComesBackToItsDeviceUnderItsNewNumber) {
    open(a);
    open(late);
    late.probes.answer("127.0.0.9");
    const auto added = [](CHardware& device) {
        device.IPAddress = "127.0.0.9";
        device.Name = "of late";
    };
    late.doc().addDevice(DeviceType::Printer, added);
    check(4);
    a.doc().addDevice(DeviceType::Printer, [](CHardware& device) { device.Name = "of a"; });
    a.station->saveDatafile();
    EXPECT_FALSE(late.station->saveDatafile().failed());
    EXPECT_EQ(late.device(4).Name + ", " + late.device(5).Name, "of a, of late");
    EXPECT_TRUE(late.liveStat().holdsDevice(5));
    EXPECT_FALSE(late.liveStat().holdsDevice(4));
    workers.finish();
    pass(6000);
    EXPECT_EQ(late.device(5).State, DeviceState::On);
    EXPECT_EQ(late.device(4).State, DeviceState::Def);
    EXPECT_FALSE(late.liveStat().holdsDevice(5));
    EXPECT_EQ(late.device(5).LSNowMark, 0);
}

// ---- what a tick costs, and what it takes for another file

/// Counts what is asked of the operating system.
class CountingCalls final : public CFileCalls {
public:
    int statusAt(const std::string& path, struct stat& status) override {
        ++statusCalls;
        return CFileCalls::statusAt(path, status);
    }
    int openFile(const std::string& path, int flags, mode_t mode) override {
        ++opens;
        return CFileCalls::openFile(path, flags, mode);
    }

    int statusCalls = 0;
    int opens = 0;
};

TEST_F(StationMergeTest, ATickOnAnUnchangedFileIsOneStatusCall) {
    CountingCalls calls;
    CPosixFiles counted(calls, folder.file("backup"));
    CStation station(servicesOfA(counted));
    ASSERT_FALSE(station.openDatafile(path));
    calls.statusCalls = calls.opens = 0;
    pass(300'000);
    EXPECT_EQ(calls.statusCalls, 100);
    EXPECT_EQ(calls.opens, 0);
}

TEST_F(StationMergeTest, AnyOtherModificationTimeIsAnotherFile) {
    open(a);
    const auto now = fs::last_write_time(path);
    for (const auto jump : {std::chrono::hours(-24 * 365), std::chrono::hours(24), std::chrono::hours(0)}) {
        fs::last_write_time(path, now + jump);
        pass(3000);
        EXPECT_EQ(a.logged(), (Lines{"Loading from data file, please wait...", "Loaded from data file"}));
        pass(9000);
        EXPECT_EQ(a.logged(), Lines{});
    }
}

TEST_F(StationMergeTest, SavesInQuickSuccessionAreAllSeen) {
    open(a);
    open(b);
    for (int i = 0; i < 50; ++i) {
        rename(a, 1, std::to_string(i % 10)); // the size stays
        a.station->saveDatafile();
        rename(b, 2, std::to_string(i % 10));
        b.station->saveDatafile();
        ASSERT_EQ(b.device(1).Name, std::to_string(i % 10));
        rename(a, 3, std::to_string(i % 10));
        a.station->saveDatafile();
        ASSERT_EQ(a.device(2).Name, std::to_string(i % 10));
    }
}

TEST_F(StationMergeTest, AClockThatWasWrongDoesNotSilenceTheHeartbeat) {
    clock.advance(std::chrono::hours(24));
    open(a);
    a.station->features().liveStat().toggle();
    pass(60'000);
    const TimeStamp wrong = a.owner().Modified;
    clock.jumpWall(-std::chrono::hours(24));
    pass(60'000);
    EXPECT_LT(a.owner().Modified, wrong - 23 * 3600);
    open(b);
    EXPECT_EQ(b.owner().Modified, a.owner().Modified);
}

} // namespace

} // namespace mirovane
