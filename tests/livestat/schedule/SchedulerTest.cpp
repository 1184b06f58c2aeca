#include "livestat/schedule/Scheduler.h"

#include "model/CriteriaEdit.h"
#include "tests/livestat/schedule/SchedulerFixture.h"
#include "tests/support/NewFloor.h"
#include "tests/support/TestFolder.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace mirovane {

namespace {

using Lines = std::vector<std::string>;
using Notes = std::vector<SaveNote>;

class SchedulerTest : public test::SchedulerFixture {
protected:
    const CHardware& owner() const { return *doc.findSpecial(SpecialType::LiveStatOwnerRecord); }
};

TEST_F(SchedulerTest, ARunChecksAsManyDevicesAsThereAreSlotsAndSaysSo) {
    addPrinters(10);
    scheduler->toggle();
    pass(2999);
    EXPECT_TRUE(probes.pinged().empty());
    run();
    EXPECT_EQ(probes.pinged(), (Lines{"127.0.0.1", "127.0.0.2", "127.0.0.3"}));
    EXPECT_EQ(logged(),
              Lines{"Live Stat Priority 5: Processing 3 device(s). Looped 0 times. Last loop took 0 sec"});
    EXPECT_EQ(scheduler->statusText(), "LIVE!:3");
    for (int i = 0; i < 3; ++i)
        run();
    // The fourth run passes the end of the list: the loop took the three pauses and the slots before it.
    EXPECT_EQ(
        logged().back(),
        "Live Stat Priority 4 or higher: Processing 3 device(s). Looped 1 times. Last loop took 12 sec");
    EXPECT_EQ(probes.pinged().size(), 12U);
}

TEST_F(SchedulerTest, StateFollowsThePingAndTheRunPublishesOnce) {
    addPrinters(3);
    probes.answer("127.0.0.2");
    scheduler->toggle();
    const TimeStamp claimed = owner().Modified;
    clock.advance(std::chrono::hours(1));
    run();
    EXPECT_EQ(device(1).State, DeviceState::Off);
    EXPECT_EQ(device(2).State, DeviceState::On);
    EXPECT_TRUE(host.pending);
    EXPECT_EQ(host.redraws, 1);
    EXPECT_GE(owner().Modified, claimed + 3600);
    EXPECT_EQ(host.saves, Notes{SaveNote::None}); // the claim; background changes wait for the periodic save

    host.pending = false;
    run(); // the same answers again
    EXPECT_FALSE(host.pending);
    EXPECT_EQ(host.redraws, 1);

    probes.answer("127.0.0.2", false);
    run();
    run();
    EXPECT_EQ(device(2).State, DeviceState::Off);
    EXPECT_EQ(host.redraws, 2);
}

TEST_F(SchedulerTest, ADeviceGoesThroughItsRowsOneStepARun) {
    pool(1);
    const std::int32_t computer = add(DeviceType::Computer, "127.0.0.9");
    add(DeviceType::Printer, "127.0.0.1");
    rule(DeviceType::Computer, 6, Action::SetValue, "seen at $mvI", "On");
    rule(DeviceType::Computer, 11, Action::SetValue, "call", "Off");
    probes.answer("127.0.0.9");
    scheduler->toggle();
    run();
    EXPECT_EQ(device(computer).State, DeviceState::On);
    EXPECT_EQ(device(computer).Comment, "");
    run(); // row 2, the name look-up
    run(); // row 3, the user
    run();
    EXPECT_EQ(device(computer).Comment, "seen at 127.0.0.9");
    EXPECT_TRUE(scheduler->holdsDevice(computer));
    run(); // row 11 is for devices that are Off, but takes its step
    EXPECT_EQ(device(computer).ToDo, "");
    EXPECT_EQ(probes.pinged().size(), 1U);
    run();
    EXPECT_FALSE(scheduler->holdsDevice(computer));
    EXPECT_EQ(probes.pinged().back(), "127.0.0.1");
}

TEST_F(SchedulerTest, TextThatTheUserKeepsIsNeverWritten) {
    const std::int32_t printer = add(DeviceType::Printer, "127.0.0.1");
    rule(DeviceType::Printer, 6, Action::SetValue, "overwritten");
    doc.edit(device(printer), [](CHardware& held) { held.Comment = "mine >>"; });
    scheduler->toggle();
    for (int i = 0; i < 5; ++i)
        run();
    EXPECT_EQ(device(printer).Comment, "mine >>");
    EXPECT_GT(probes.pinged().size(), 3U); // and its row costs no run
}

TEST_F(SchedulerTest, AJackFollowsTheDeviceThatIsPluggedIn) {
    const std::int32_t jack = add(DeviceType::Jack);
    const std::int32_t printer = add(DeviceType::Printer, "127.0.0.1");
    doc.edit(
        device(jack), [](CHardware& held) { held.ToJack = "A-17"; });
    doc.edit(device(printer), [](CHardware& held) { held.ToJack = "A-17"; });
    probes.answer("127.0.0.1");
    scheduler->toggle();
    for (int i = 0; i < 3; ++i)
        run();
    EXPECT_EQ(device(jack).State, DeviceState::On);
    probes.answer("127.0.0.1", false);
    for (int i = 0; i < 3; ++i)
        run();
    EXPECT_EQ(device(jack).State, DeviceState::Off);
    const auto stateAfter = [&](const std::function<void(CHardware&)>& change) {
        doc.edit(device(printer), change);
        for (int i = 0; i < 3; ++i)
            run();
        return device(jack).State;
    };
    EXPECT_EQ(stateAfter([](CHardware& held) { held.Type = DeviceType::LocationMarker; }), DeviceState::Def)
        << "a marker is not plugged in";
    EXPECT_EQ(stateAfter([](CHardware& held) { held.Type = DeviceType::Printer; }), DeviceState::Off);
    EXPECT_EQ(stateAfter([](CHardware& held) { held.ToJack = "A-18"; }), DeviceState::Def);
}

TEST_F(SchedulerTest, ARowWithoutAnActionAndABrokenPatternHurtNobody) {
    const std::int32_t printer = add(DeviceType::Printer, "127.0.0.1");
    const std::int32_t ups = add(DeviceType::Ups, "127.0.0.2");
    rule(DeviceType::Ups, 0, "Reboot", "now", "On"); // edited by hand
    rule(DeviceType::Printer, 6, Action::SnmpGet, "$mvI public 1.3");
    setCriteria(doc, DeviceType::Printer, 6, CriteriaColumn::SearchFor, "(laser");
    probes.agent("127.0.0.1", "public", "1.3", {SNMPAnswer::Kind::Value, "LaserJet", 0});
    scheduler->toggle();
    for (int i = 0; i < 6; ++i)
        run();
    EXPECT_EQ(device(ups).State, DeviceState::Def);
    EXPECT_EQ(device(printer).Comment, "");
    const Lines lines = logged();
    const auto linesWith = [&lines](const std::string& part) {
        return std::count_if(lines.begin(), lines.end(), [&part](const std::string& line) {
            return line.find(part) != std::string::npos;
        });
    };
    EXPECT_EQ(
        linesWith("Printer, row Comment/Marker: \"(laser\" is not a valid pattern (mismatched parenthesis)"),
        1);
    EXPECT_GT(linesWith("Processing 1 device(s)."), 2); // the printer; the UPS has nothing to check
    EXPECT_EQ(linesWith("Processing 2 device(s)."), 0);
}

TEST_F(SchedulerTest, AFileThatWasSearchedIsRememberedWithoutASave) {
    const test::TestFolder folder;
    test::writeBytes(folder.file("hosts"), "nobody\n");
    const std::int32_t printer = add(DeviceType::Printer, "127.0.0.1");
    doc.edit(device(printer), [](CHardware& held) { held.State = DeviceState::Off; });
    rule(DeviceType::Printer, 0, Action::SearchInTextFile, folder.file("hosts"), "On");
    setCriteria(doc, DeviceType::Printer, 0, CriteriaColumn::SearchFor, "127");
    scheduler->performNow(); // nothing is selected
    select(printer);
    scheduler->performNow();
    for (int i = 0; i < 4; ++i)
        run();
    EXPECT_NE(device(printer).RuleStamps[0], 0);
    EXPECT_EQ(device(printer).StampsModified, device(printer).Modified);
    EXPECT_TRUE(host.saves.empty());
    EXPECT_EQ(host.redraws, 0);
}

/// Its time stamp says that it has not changed.
TEST_F(SchedulerTest, AFileThatIsWrittenTwiceWithinASecondIsSearchedTwice) {
    const test::TestFolder folder;
    const std::string path = folder.file("hosts");
    const auto write = [&](const std::string& bytes, TimeStamp changed) {
        test::writeBytes(path, bytes);
        const timespec times[2] = {{changed, 0}, {changed, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    };
    const std::int32_t printer = add(DeviceType::Printer, "127.0.0.1");
    rule(DeviceType::Printer, 0, Action::SearchInTextFile, path, "On");
    setCriteria(doc, DeviceType::Printer, 0, CriteriaColumn::SearchFor, "$mvI");
    scheduler->toggle();
    write("127.0.0.9\n", doc.now() + 3); // just before the first run searches it
    run();
    EXPECT_EQ(device(printer).State, DeviceState::Off);
    const TimeStamp searched = device(printer).RuleStamps[0];
    EXPECT_NE(searched, 0);
    write("127.0.0.9\n127.0.0.1\n", searched);
    run();
    run();
    EXPECT_EQ(device(printer).State, DeviceState::On);
    write("127.0.0.8\n", searched); // which is long ago by now
    run();
    run();
    EXPECT_EQ(device(printer).State, DeviceState::On);
}

TEST_F(SchedulerTest, LiveStatNowWithLiveStatOffChecksTheSelectionAndEnds) {
    addPrinters(5, 1);
    probes.answer("127.0.0.4");
    scheduler->performNow();
    EXPECT_FALSE(scheduler->nowActive()); // nothing is selected
    select(2);
    select(4);
    const std::int32_t marker = add(DeviceType::LocationMarker);
    select(marker);
    scheduler->performNow();
    EXPECT_EQ(logged(), Lines{"Processing Live Stat Now on 3 selected object(s)..."});
    EXPECT_EQ(device(4).LSNowMark, 1);
    run();
    EXPECT_EQ(probes.pinged(), (Lines{"127.0.0.2", "127.0.0.4"}));
    EXPECT_EQ(logged(), Lines{"Live Stat Now: Processing 2 device(s)."});
    EXPECT_EQ(host.saves, Notes{SaveNote::LiveStat});
    run();
    EXPECT_EQ(logged(), Lines{"Done processing selected object(s) [LS Now]"});
    EXPECT_FALSE(scheduler->nowActive());
    EXPECT_EQ(device(2).State, DeviceState::Off);
    EXPECT_EQ(device(4).State, DeviceState::On);
    EXPECT_EQ(device(4).LSNowMark + device(marker).LSNowMark, 0);
    pass(60'000);
    EXPECT_EQ(probes.pinged().size(), 2U);
    EXPECT_EQ(scheduler->statusText(), "");
}

TEST_F(SchedulerTest, LiveStatNowGoesFirstAndThenTheLoopsGoOn) {
    pool(2);
    addPrinters(4);
    add(DeviceType::Printer, "127.0.0.50", 1);
    scheduler->toggle();
    run();
    select(5);
    scheduler->performNow();
    EXPECT_EQ(scheduler->statusText(), "LIVE!:1");
    logged();
    run();
    // Slots 1 and 2 give their devices up; the first takes the marked one, the second finds no other.
    EXPECT_EQ(probes.pinged(), (Lines{"127.0.0.1", "127.0.0.2", "127.0.0.50"}));
    EXPECT_EQ(logged(),
              (Lines{"Done processing selected object(s) [LS Now]",
                     "Live Stat Priority 5: Processing 1 device(s). Looped 0 times. Last loop took 0 sec"}));
    EXPECT_EQ(scheduler->loops(), 0);
    run();
    EXPECT_EQ(probes.pinged().size(), 5U);
    EXPECT_EQ(device(5).LSNowMark, 0);
}

TEST_F(SchedulerTest, DisablingWaitsForLiveStatNow) {
    pool(1);
    addPrinters(2);
    scheduler->toggle();
    run();
    select(2);
    scheduler->performNow();
    scheduler->toggle();
    logged();
    run();
    run();
    pass(300);
    EXPECT_EQ(logged(), (Lines{"Live Stat Now: Processing 1 device(s).",
                               "Done processing selected object(s) [LS Now]", "Live Stat disabled"}));
    EXPECT_EQ(owner().State, 0);
}

TEST_F(SchedulerTest, WithoutSlotsLiveStatNowEndsAndLiveStatGoesOff) {
    pool(1);
    addPrinters(2);
    scheduler->toggle();
    select(1);
    scheduler->performNow();
    liveStatSettings.LSNumPerRun = 0;
    scheduler->setSettings(liveStatSettings);
    EXPECT_FALSE(scheduler->nowActive());
    scheduler->performNow();
    EXPECT_FALSE(scheduler->nowActive());
    EXPECT_EQ(logged().back(), "Live Stat Now checks nothing: the number of devices to check per run is 0");
    EXPECT_EQ(device(1).LSNowMark, 0);
    scheduler->toggle();
    pass(300);
    EXPECT_EQ(logged().back(), "Live Stat disabled");
}

TEST_F(SchedulerTest, GoingOffAtOnceLeavesNoMarkBehind) {
    pool(1);
    addPrinters(3);
    scheduler->toggle();
    select(1);
    select(2);
    scheduler->performNow();
    scheduler->disableNow();
    doc.setSelected(device(1), false);
    doc.setSelected(device(2), false);
    select(3);
    scheduler->performNow();
    run();
    run();
    run();
    EXPECT_EQ(probes.pinged(), Lines{"127.0.0.3"});
}

TEST_F(SchedulerTest, WhatLiveStatNowFoundIsKeptWhenTheStationLeavesOff) {
    addPrinters(2);
    select(1);
    select(2);
    scheduler->performNow();
    pass(3000 + 1); // the first slot's step has come back, the run is not over
    scheduler->disableNow();
    EXPECT_EQ(device(1).State, DeviceState::Off);
    EXPECT_TRUE(host.pending);
    EXPECT_EQ(host.saves, Notes{}) << "the station saves as it leaves";
    host.pending = false;
    scheduler->disableNow();
    EXPECT_FALSE(host.pending) << "they were handed over once";
}

TEST_F(SchedulerTest, HandedOverLiveStatLeavesTheSelectionToBeCheckedToItsEnd) {
    pool(2);
    addPrinters(4);
    scheduler->toggle();
    scheduler->toggleTracking();
    run();
    pass(3000 + 1); // the third device's step has come back, the run is not over
    select(1);
    select(2);
    scheduler->performNow();
    host.pending = false;
    logged();
    doc.edit(owner(), [](CHardware& record) { record.Name = "B-HOST"; });
    scheduler->afterReload(); // its user says No
    EXPECT_EQ(host.questions.size(), 1U);
    EXPECT_FALSE(scheduler->enabled() || scheduler->disabling() || scheduler->tracking());
    EXPECT_EQ(scheduler->statusText(), "");
    EXPECT_TRUE(host.pending) << "what the run found goes with the periodic save";
    EXPECT_EQ(logged(), (Lines{"Live Stat disabled", "Track Live stat Disabled"}));
    const std::size_t pinged = probes.pinged().size();
    pass(60'000);
    EXPECT_EQ(probes.pinged().size(), pinged + 2) << "Live Stat Now goes on, Live Stat does not";
    EXPECT_EQ(logged().back(), "Done processing selected object(s) [LS Now]");
    EXPECT_EQ(device(1).LSNowMark + device(2).LSNowMark, 0);
    EXPECT_EQ(owner().Name, "B-HOST");
}

TEST_F(SchedulerTest, SwitchedOnAgainItBeginsAnew) {
    addPrinters(4);
    scheduler->toggle();
    for (int i = 0; i < 3; ++i)
        run();
    EXPECT_EQ(scheduler->loops(), 2);
    pass(3000); // a run has begun
    const std::size_t saves = host.saves.size();
    scheduler->toggle();
    EXPECT_EQ(scheduler->statusText(), "");
    scheduler->toggle(); // while it was going off
    EXPECT_TRUE(scheduler->enabled());
    EXPECT_FALSE(scheduler->disabling());
    EXPECT_EQ(host.saves.size(), saves + 1) << "claimed anew and never released";
    EXPECT_EQ(scheduler->loops(), 0);
    EXPECT_EQ(scheduler->statusText(), "");
    logged();
    const std::size_t pinged = probes.pinged().size();
    pass(2999);
    EXPECT_EQ(probes.pinged().size(), pinged);
    pass(1 + 3);
    EXPECT_EQ(logged().size(), 1U) << "the run visits every slot, from the first one on";
    EXPECT_EQ(scheduler->statusText(), "LIVE!:3");
}

TEST_F(SchedulerTest, AnotherDocumentFindsEverythingOff) {
    addPrinters(2);
    scheduler->toggle();
    scheduler->toggleTracking();
    select(1);
    scheduler->performNow();
    run();
    logged();
    test::newFloor(doc);
    scheduler->reset();
    EXPECT_FALSE(scheduler->enabled() || scheduler->disabling() || scheduler->nowActive());
    EXPECT_FALSE(scheduler->tracking() || scheduler->holdsDevice(1));
    EXPECT_EQ(scheduler->statusText(), "");
    addPrinters(2);
    pass(60'000);
    EXPECT_EQ(logged(), Lines{});
    EXPECT_EQ(host.saves, Notes{SaveNote::None});
    const std::size_t redraws = static_cast<std::size_t>(host.redraws);
    scheduler->toggle();
    scheduler->disableNow();
    EXPECT_EQ(static_cast<std::size_t>(host.redraws), redraws) << "nothing changed here";
}

TEST_F(SchedulerTest, WhatWasFoundWhileAnotherStationTookOverIsSavedLater) {
    addPrinters(1);
    scheduler->toggle();
    pass(3000 + 2); // the first slot's step has come back, the run is not over
    ASSERT_EQ(device(1).State, DeviceState::Off);
    scheduler->toggle();
    doc.edit(owner(), [](CHardware& record) { record.Name = "B-HOST"; });
    ASSERT_FALSE(host.pending);
    pass(300);
    EXPECT_EQ(logged().back(), "Live Stat disabled");
    EXPECT_EQ(owner().Name, "B-HOST");
    EXPECT_TRUE(host.pending);
}

TEST_F(SchedulerTest, OwnershipIsClaimedAskedForAndReleased) {
    EXPECT_EQ(scheduler->toggle()->kind, StartRefusal::Kind::NoDevices);
    EXPECT_FALSE(scheduler->enabled());
    addPrinters(1);
    doc.edit(owner(), [](CHardware& record) {
        record.State = 1;
        record.Name = "A-HOST";
        record.Username = "a-user";
    });
    EXPECT_EQ(scheduler->toggle()->kind, StartRefusal::Kind::OwnerElsewhere);
    EXPECT_FALSE(scheduler->enabled());
    EXPECT_EQ(owner().Name, "A-HOST");
    EXPECT_EQ(
        host.questions,
        Lines{"Live stat is enabled by A-HOST\\a-user. Do you want to continue to enable Live stat? Doing so "
              "will prompt the other user to disable Live stat."});
    pass(10'000);
    EXPECT_TRUE(probes.pinged().empty());

    host.answer = true;
    scheduler->toggle();
    EXPECT_TRUE(scheduler->enabled());
    EXPECT_EQ(owner().Name + "\\" + owner().Username, "host\\user");
    EXPECT_EQ(owner().State, 1);
    EXPECT_EQ(host.saves.size(), 1U);

    clock.advance(std::chrono::hours(1));
    scheduler->toggle();
    EXPECT_TRUE(scheduler->disabling());
    pass(300);
    EXPECT_EQ(logged(), (Lines{"Live Stat is being disabled, please wait...", "Live Stat disabled"}));
    EXPECT_EQ(owner().State, 0);
    EXPECT_EQ(owner().Name + owner().Username, "");
    EXPECT_EQ(owner().Modified, doc.now());
    EXPECT_EQ(host.saves.size(), 2U);
}

TEST_F(SchedulerTest, WithoutATimerNothingIsClaimed) {
    addPrinters(1);
    select(1);
    timers.exhaust();
    const auto refusal = scheduler->toggle();
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->kind, StartRefusal::Kind::NoTimer);
    scheduler->performNow();
    EXPECT_EQ(host.failures, (Lines{"System is out of timer resource!", "System is out of timer resource!"}));
    EXPECT_FALSE(scheduler->enabled() || scheduler->nowActive());
    EXPECT_EQ(owner().State, 0);
    EXPECT_TRUE(host.saves.empty());
}

TEST_F(SchedulerTest, WithoutAThreadTheStepIsTriedAgain) {
    addPrinters(1);
    inlineWorkers.exhausted = true;
    scheduler->toggle();
    run();
    run();
    EXPECT_EQ(device(1).State, DeviceState::Def);
    const Lines lines = logged();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [](const std::string& line) {
                                return line.starts_with("Live Stat cannot start a thread;");
                            }),
              1);
    inlineWorkers.exhausted = false;
    run();
    EXPECT_EQ(device(1).State, DeviceState::Off);
}

TEST_F(SchedulerTest, TheEmptiedListRestsAndTrackingBringsDevicesIntoView) {
    scheduler->toggleTracking();
    EXPECT_EQ(host.failures, Lines{"Live stat must be enabled first."});
    addPrinters(2);
    scheduler->toggle();
    scheduler->toggleTracking();
    run();
    EXPECT_EQ(host.tracked, (std::vector<std::int32_t>{1, 2}));
    scheduler->endTracking();
    doc.removeDevices(std::array{DeviceKey{1}, DeviceKey{2}});
    scheduler->rebind();
    logged();
    run();
    run();
    EXPECT_EQ(logged(), Lines{});
    EXPECT_FALSE(scheduler->holdsDevice(1));
}

TEST_F(SchedulerTest, AShorterPauseCountsAtOnce) {
    addPrinters(3);
    liveStatSettings.LSRunSec = 86'400;
    scheduler->setSettings(liveStatSettings);
    scheduler->toggle();
    run();
    EXPECT_TRUE(probes.pinged().empty());
    liveStatSettings.LSRunSec = 3;
    scheduler->setSettings(liveStatSettings);
    run();
    EXPECT_EQ(probes.pinged().size(), 3U);
}

TEST_F(SchedulerTest, HoldsStillWhileTheStationEdits) {
    addPrinters(3);
    scheduler->toggle();
    host.still = true;
    pass(60'000);
    EXPECT_TRUE(probes.pinged().empty());
    host.still = false;
    run();
    EXPECT_EQ(probes.pinged().size(), 3U);
}

} // namespace

} // namespace mirovane
