#include "platform/WorkerPool.h"
#include "tests/station/StationFixture.h"

namespace mirovane {

namespace {

using test::Lines;
using test::Site;

const std::string askAboutA =
    "Live stat is enabled by A-HOST\\a-user. Do you want to continue to enable Live stat? "
    "Doing so will prompt the other user to disable Live stat.";
const std::string askAboutB =
    "Live stat is enabled by B-HOST\\b-user. Do you want to continue to enable Live stat? "
    "Doing so will prompt the other user to disable Live stat.";

class StationTest : public test::StationFixture {
protected:
    void hours(int count) { clock.advance(std::chrono::hours(count)); }
};

TEST_F(StationTest, TakingLiveStatOverAsksBothUsers) {
    open(a);
    open(b);
    a.station->features().liveStat().toggle();
    pass(3000);
    EXPECT_EQ(b.owner().Name, "A-HOST");

    b.station->features().liveStat().toggle(); // No
    EXPECT_FALSE(b.liveStat().enabled());
    EXPECT_EQ(b.dialogs.questions, Lines{askAboutA});

    b.dialogs.answer = true;
    b.station->features().liveStat().toggle();
    EXPECT_TRUE(b.liveStat().enabled());
    pass(3000);
    EXPECT_EQ(a.dialogs.questions, Lines{askAboutB});
    EXPECT_FALSE(a.liveStat().enabled()); // a's user said No
    EXPECT_FALSE(a.liveStat().disabling());
    EXPECT_EQ(a.owner().Name, "B-HOST"); // the record is not released
    EXPECT_EQ(a.owner().State, 1);

    const auto pings = a.probes.pinged().size();
    pass(60'000);
    EXPECT_EQ(a.probes.pinged().size(), pings);
    EXPECT_GT(b.probes.pinged().size(), 30U);
}

/// As a window and a service: the datafile cannot tell them apart.
TEST_F(StationTest, TwoProgramsOfOneUserAreTwoStations) {
    const std::string askAboutProgram =
        "Live stat is enabled by another program of yours on this computer. Do you want to continue to "
        "enable Live stat? Doing so will prompt the other user to disable Live stat.";
    CFileCalls calls;
    CProgramClaims windowClaims(calls, folder.file("run")), serviceClaims(calls, folder.file("run"));
    StationServices services = servicesOfA(a.files);
    services.programs = &serviceClaims;
    CStation service(services);
    CStation window({b.files,
                     clock,
                     timers,
                     b.settings,
                     b.log,
                     b.dialogs,
                     b.probes,
                     services.identity,
                     false,
                     &b.workers,
                     nullptr,
                     nullptr,
                     {},
                     &windowClaims});
    ASSERT_FALSE(service.openDatafile(path));
    ASSERT_FALSE(window.openDatafile(path));
    service.features().liveStat().toggle();
    pass(3000);

    window.features().liveStat().toggle(); // No
    EXPECT_EQ(b.dialogs.questions, Lines{askAboutProgram});
    EXPECT_FALSE(window.features().liveStat().enabled());
    pass(9000);
    EXPECT_TRUE(service.features().liveStat().enabled());
    EXPECT_EQ(a.dialogs.questions, Lines());

    b.dialogs.answer = true;
    window.features().liveStat().toggle();
    pass(3000);
    EXPECT_TRUE(window.features().liveStat().enabled());
    EXPECT_EQ(a.dialogs.questions, Lines{askAboutProgram});
    EXPECT_FALSE(service.features().liveStat().enabled()); // said No
    pass(9000);
    EXPECT_EQ(window.document().findSpecial(SpecialType::LiveStatOwnerRecord)->State, 1);
    EXPECT_FALSE(window.shutDown());
    EXPECT_FALSE(service.features().liveStat().toggle()); // nobody is asked
    EXPECT_EQ(a.dialogs.questions.size(), 1U);
    EXPECT_TRUE(service.features().liveStat().enabled());
}

TEST_F(StationTest, WhoSaysYesTakesLiveStatBack) {
    open(a);
    open(b);
    a.station->features().liveStat().toggle();
    pass(3000);
    b.dialogs.answer = a.dialogs.answer = true;
    b.station->features().liveStat().toggle();
    b.dialogs.answer = false;
    pass(9000);
    EXPECT_EQ(b.dialogs.questions, (Lines{askAboutA, askAboutA}));
    EXPECT_TRUE(a.liveStat().enabled());
    EXPECT_FALSE(b.liveStat().enabled());
    EXPECT_EQ(b.owner().Name, "A-HOST");
}

TEST_F(StationTest, TwoStationsThatEnableAtOnceStillAsk) {
    open(a);
    open(b);
    a.station->features().liveStat().toggle();
    b.station->features().liveStat().toggle(); // b's watch has not seen a's save yet; its own save does
    EXPECT_EQ(b.dialogs.questions, Lines{askAboutA});
    EXPECT_FALSE(b.liveStat().enabled());
    EXPECT_TRUE(a.liveStat().enabled());
}

TEST_F(StationTest, LiveStatResultsReachTheOtherStation) {
    open(a);
    open(b);
    a.probes.answer("127.0.0.2");
    a.station->features().liveStat().toggle();
    pass(40'000);
    EXPECT_EQ(b.device(1).State, DeviceState::Off);
    EXPECT_EQ(b.device(2).State, DeviceState::On);
    const Lines lines = a.logged();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Saved Live Stat changes to data file"), 1);
}

TEST_F(StationTest, TheHeartbeatIsRefreshedAfterThreeHours) {
    open(a);
    a.station->features().liveStat().toggle();
    pass(60'000);
    const TimeStamp claimed = a.owner().Modified;
    clock.advance(std::chrono::minutes(178));
    pass(6000);
    EXPECT_EQ(a.owner().Modified, claimed);
    clock.advance(std::chrono::minutes(2));
    pass(60'000);
    EXPECT_GE(a.owner().Modified, claimed + 3 * 3600);
    open(b);
    EXPECT_EQ(b.owner().Modified, a.owner().Modified);
}

TEST_F(StationTest, ASilentOwnerIsReplacedAfterFourHours) {
    Site standby(clock, timers, {"S-HOST", "s-user"}, true);
    standby.settings.write("LSAutoStart", 1);
    open(a);
    a.station->features().liveStat().toggle();
    a.doc().edit(a.owner(), [](CHardware& owner) { owner.Name = "DEAD-HOST"; });
    a.station->saveDatafile();
    a.station->newDatafile(); // not the owner any more: nothing is released
    ASSERT_FALSE(standby.station->openDatafile(path));
    EXPECT_EQ(standby.dialogs.questions.size(), 1U); // at open, answered No
    EXPECT_EQ(standby.owner().Name, "DEAD-HOST");

    clock.advance(std::chrono::minutes(239));
    pass(10'000);
    EXPECT_EQ(standby.dialogs.questions.size(), 1U);
    standby.dialogs.answer = true;
    clock.advance(std::chrono::minutes(1));
    pass(10'000);
    EXPECT_EQ(standby.dialogs.questions.size(), 2U);
    EXPECT_TRUE(standby.liveStat().enabled());
    EXPECT_EQ(standby.owner().Name, "S-HOST");
}

TEST_F(StationTest, AnOwnerWhoseClockWasFastIsReplacedFourHoursAfterItsSignWasSeen) {
    Site standby(clock, timers, {"S-HOST", "s-user"}, true);
    standby.settings.write("LSAutoStart", 1);
    open(a);
    a.doc().edit(a.owner(), [this](CHardware& owner) {
        owner.State = 1;
        owner.Name = "DEAD-HOST";
        owner.Modified = a.doc().now() + 3'000'000; // 34 days
    });
    a.station->saveDatafile();
    a.station->newDatafile();
    ASSERT_FALSE(standby.station->openDatafile(path));
    pass(10'000); // it sees the sign
    standby.dialogs.answer = true;
    clock.advance(std::chrono::minutes(230));
    pass(10'000);
    EXPECT_FALSE(standby.liveStat().enabled());
    clock.advance(std::chrono::minutes(11));
    pass(10'000);
    EXPECT_TRUE(standby.liveStat().enabled());
}

TEST_F(StationTest, AStationThatMayNotAutoStartNeverDoes) {
    open(b);
    EXPECT_FALSE(b.liveStat().enabled());
    clock.advance(std::chrono::hours(5));
    pass(60'000);
    EXPECT_FALSE(b.liveStat().enabled());
}

TEST_F(StationTest, AutoStartBeginsAtOpenAndShutDownReleases) {
    Site site(clock, timers, {"C-HOST", "c-user"}, true);
    site.probes.answer("127.0.0.1");
    ASSERT_FALSE(site.station->openDatafile(path));
    EXPECT_TRUE(site.liveStat().enabled());
    pass(4000);
    site.logged();
    EXPECT_FALSE(site.station->shutDown());
    EXPECT_EQ(site.logged(), (Lines{"Live Stat is being disabled, please wait...",
                                    "Saved changes to data file", "Live Stat disabled"}));
    open(a);
    EXPECT_EQ(a.owner().State, 0);
    EXPECT_EQ(a.owner().Name, "");
    EXPECT_EQ(a.device(1).State, DeviceState::On); // what was found is kept
    pass(60'000);
    EXPECT_EQ(site.logged(), Lines{});
}

TEST_F(StationTest, ShutDownReleasesEvenWhenAnotherStationJustSaved) {
    open(a);
    open(b);
    a.station->features().liveStat().toggle();
    pass(3000);
    rename(b, 1, "by b");
    b.station->saveDatafile();
    EXPECT_FALSE(a.station->shutDown());
    pass(3000);
    EXPECT_EQ(b.owner().State, 0);
    EXPECT_EQ(b.device(1).Name, "by b");
}

TEST_F(StationTest, LeavingADatafileReleasesItAndAFailedOpenLeavesNothing) {
    open(a);
    a.station->features().liveStat().toggle();
    EXPECT_TRUE(a.station->openDatafile(folder.file("missing.mv")));
    EXPECT_TRUE(a.liveStat().enabled());
    EXPECT_EQ(a.station->datafile().path(), path);
    a.logged();

    a.station->newDatafile();
    EXPECT_FALSE(a.liveStat().enabled());
    EXPECT_EQ(a.station->datafile().path(), "");
    open(b);
    EXPECT_EQ(b.owner().State, 0);
}

TEST_F(StationTest, SaveAsTakesLiveStatAlongAndReleasesTheFileThatIsLeft) {
    open(a);
    a.station->features().liveStat().toggle();
    pass(4000);
    EXPECT_FALSE(a.station->saveDatafileAs(folder.file("copy.mv")).failed());
    EXPECT_TRUE(a.liveStat().enabled());
    EXPECT_EQ(a.owner().Name, "A-HOST");
    open(b); // the file that was left
    EXPECT_EQ(b.owner().State, 0);
    EXPECT_EQ(b.owner().Name, "");

    EXPECT_TRUE(a.station->saveDatafileAs(folder.file("nowhere/copy.mv")).failed());
    EXPECT_TRUE(a.liveStat().enabled());
    EXPECT_EQ(a.station->datafile().path(), folder.file("copy.mv"));
}

TEST_F(StationTest, DeletingAndUpdatingWaitForTheJobsAndSave) {
    open(a);
    a.station->features().liveStat().toggle();
    pass(3003);
    a.logged();
    const std::vector<std::int32_t> first{1};
    EXPECT_FALSE(
        test::updateDevices(*a.station, first, [](CHardware& device) { device.Name = "new"; }).failed());
    EXPECT_EQ(a.logged(), (Lines{"Updating item(s)..., waiting for Live Stat to finish with the items.",
                                 "Updated Item(s)", "Saved changes to data file"}));
    EXPECT_EQ(a.device(1).Modified, a.doc().now());
    EXPECT_FALSE(test::deleteDevices(*a.station, first).failed());
    EXPECT_EQ(a.logged(), (Lines{"Deleting item(s)..., waiting for Live Stat to finish with the item.",
                                 "Deleted item(s).", "Saved changes to data file"}));
    EXPECT_FALSE(a.liveStat().holdsDevice(1));
    const auto pings = a.probes.pinged().size();
    pass(10'000);
    EXPECT_GT(a.probes.pinged().size(), pings); // goes on with the others

    const std::vector<std::int32_t> rest{2, 3};
    EXPECT_FALSE(test::deleteDevices(*a.station, rest).failed());
    EXPECT_FALSE(a.liveStat().enabled());
    pass(300);
    EXPECT_EQ(a.logged().back(), "Live Stat disabled");
    EXPECT_EQ(a.owner().State, 0);
}

TEST_F(StationTest, SettingsOverrideThePoolWithoutBeingStored) {
    LiveStatSettings settings = a.station->features().liveStat().settings();
    EXPECT_EQ(a.liveStat().slotCount(), 30U);
    settings.LSNumPerRun = 2;
    settings.LSRunSec = 1;
    open(a);
    a.station->features().liveStat().setSettings(settings);
    a.station->features().liveStat().toggle();
    pass(1002);
    EXPECT_EQ(a.probes.pinged().size(), 2U);
    EXPECT_EQ(a.settings.read("LSNumPerRun", 0), 30);
}

/// Steps on real threads, whose probes hang.
class BusyStationTest : public StationTest {
protected:
    CWorkerPool pool{4};
    Site busy{clock, timers, {"C-HOST", "c-user"}, false, &pool};

    void startHanging() {
        open(busy);
        for (int i = 1; i <= 3; ++i)
            busy.probes.hang("127.0.0." + std::to_string(i));
        busy.station->features().liveStat().toggle();
        for (int i = 1; i <= 3; ++i) {
            pass(i == 1 ? 3000 : 1);
            ASSERT_TRUE(busy.probes.waitUntilHanging(i));
        }
        busy.logged();
    }
};

TEST_F(BusyStationTest, AReloadStopsTheStepsAndBindsThemAgain) {
    open(a);
    startHanging();
    pass(3000); // a reads the claim
    const std::vector<std::int32_t> second{2};
    test::deleteDevices(*a.station, second);
    pass(3000);
    ASSERT_TRUE(pool.waitUntilIdle(std::chrono::seconds(20)));
    busy.probes.answer("127.0.0.1");
    for (int i = 1; i <= 3; ++i)
        busy.probes.letGo("127.0.0." + std::to_string(i));
    for (int i = 0; i < 20 && busy.device(1).State == DeviceState::Def; ++i) {
        pass(1000);
        ASSERT_TRUE(pool.waitUntilIdle(std::chrono::seconds(20)));
    }
    EXPECT_EQ(busy.doc().findDevice(2), nullptr);
    EXPECT_FALSE(busy.liveStat().holdsDevice(2));
    EXPECT_EQ(busy.device(1).State, DeviceState::On);
    const Lines lines = busy.logged();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Loading from data file, please wait..."), 1);
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "Loaded from data file"), 1);
}

TEST_F(BusyStationTest, NewDeleteAndTheEndTakeNoPingTimeOut) {
    startHanging();
    const std::vector<std::int32_t> first{1};
    EXPECT_FALSE(test::deleteDevices(*busy.station, first).failed());
    EXPECT_FALSE(busy.liveStat().anyJobInProgress());
    busy.station->newDatafile();
    EXPECT_EQ(busy.doc().deviceCount(), 0U);
    open(a);
    EXPECT_EQ(a.owner().State, 0);
    EXPECT_EQ(a.device(2).State, DeviceState::Def);
}

} // namespace

} // namespace mirovane
