#include "livestat/schedule/Scheduler.h"
#include "platform/WorkerPool.h"
#include "tests/livestat/schedule/SchedulerFixture.h"
#include "tests/support/NewFloor.h"

namespace mirovane {

namespace {

using Lines = std::vector<std::string>;

/// The pool comes before the fixture's members, so that it outlives the scheduler.
struct RealPool {
    CWorkerPool threads{1};
};

/// Steps on real threads, whose probes hang for as long as a test wants.
class SchedulerBusyTest : private RealPool, public test::SchedulerFixture {
protected:
    SchedulerBusyTest() : SchedulerFixture(&threads) {}
    ~SchedulerBusyTest() override {
        scheduler.reset();
        threads.waitUntilIdle(std::chrono::seconds(20));
    }

    /// A worker has to take each step up before the next one is started, however far the simulated time has
    /// run.
    void runUntilHanging(int probesInFlight) {
        for (int i = 1; i <= probesInFlight; ++i) {
            pass(i == 1 ? 3000 : 1);
            ASSERT_TRUE(probes.waitUntilHanging(i));
        }
    }
    bool idle() { return threads.waitUntilIdle(std::chrono::seconds(20)); }
    /// Runs on until `condition` holds. How far one run comes depends on how quickly the threads take their
    /// steps up.
    bool runUntil(const std::function<bool()>& condition) {
        for (int i = 0; i < 100 && !condition(); ++i) {
            pass(1000);
            if (!idle())
                return false;
        }
        return condition();
    }
    std::size_t threadCount() const { return threads.threadCount(); }

    void startHanging(int devices) {
        addPrinters(devices);
        for (int i = 1; i <= devices; ++i)
            probes.hang("127.0.0." + std::to_string(i));
        scheduler->toggle();
        runUntilHanging(devices);
        logged();
    }
};

TEST_F(SchedulerBusyTest, OneThreadASlotAndBusySlotsAreLeftAlone) {
    startHanging(3);
    EXPECT_TRUE(scheduler->anyJobInProgress());
    run();
    run();
    EXPECT_EQ(threadCount(), 3U);
    EXPECT_EQ(probes.pinged().size(), 3U);
    probes.letGo("127.0.0.2");
    ASSERT_TRUE(probes.waitUntilHanging(2));
    while (device(2).State == DeviceState::Def)
        pass(1);
    EXPECT_EQ(device(1).State, DeviceState::Def);
}

TEST_F(SchedulerBusyTest, DisablingStopsTheStepsAndChangesNothing) {
    startHanging(3);
    scheduler->toggle();
    EXPECT_FALSE(scheduler->enabled());
    ASSERT_TRUE(idle());
    pass(300);
    EXPECT_EQ(logged(), (Lines{"Live Stat is being disabled, please wait...", "Live Stat disabled"}));
    for (int recID = 1; recID <= 3; ++recID) {
        EXPECT_EQ(device(recID).State, DeviceState::Def);
        EXPECT_FALSE(scheduler->holdsDevice(recID));
    }
    pass(10'000);
    EXPECT_EQ(probes.pinged().size(), 3U);
}

TEST_F(SchedulerBusyTest, AStoppedStepIsRunAgain) {
    startHanging(2);
    probes.answer("127.0.0.1");
    probes.answer("127.0.0.2");
    scheduler->stopJobs();
    scheduler->waitForJobs();
    EXPECT_FALSE(scheduler->anyJobInProgress());
    probes.letGo("127.0.0.1");
    probes.letGo("127.0.0.2");
    EXPECT_TRUE(
        runUntil([&] { return device(1).State == DeviceState::On && device(2).State == DeviceState::On; }));
}

TEST_F(SchedulerBusyTest, ThePoolGrowsAndShrinksWhileBusy) {
    startHanging(3);
    liveStatSettings.LSNumPerRun = 5;
    scheduler->setSettings(liveStatSettings);
    EXPECT_EQ(logged(), Lines{"adding 2 more device checks per run"});
    add(DeviceType::Printer, "127.0.0.4");
    probes.hang("127.0.0.4");
    pass(3000 + 10);
    ASSERT_TRUE(probes.waitUntilHanging(4));
    EXPECT_EQ(scheduler->slotCount(), 5U);

    liveStatSettings.LSNumPerRun = 1;
    scheduler->setSettings(liveStatSettings);
    EXPECT_EQ(logged().back(), "Removing 4 device checks per run");
    EXPECT_EQ(scheduler->slotCount(), 1U);
    EXPECT_FALSE(scheduler->anyJobInProgress());
    EXPECT_TRUE(scheduler->holdsDevice(1));
    EXPECT_FALSE(scheduler->holdsDevice(2));
    for (int i = 1; i <= 4; ++i)
        probes.letGo("127.0.0." + std::to_string(i));
    // The one slot that is left goes on through all of them.
    EXPECT_TRUE(runUntil([&] { return device(4).State == DeviceState::Off; }));
}

TEST_F(SchedulerBusyTest, WhatTheUserDidMeanwhileWins) {
    startHanging(3);
    probes.answer("127.0.0.1");
    probes.answer("127.0.0.3");
    doc.removeDevices(std::array{DeviceKey{2}});
    doc.editByUser(device(3), [](CHardware& held) { held.IPAddress = "127.0.0.33"; });
    for (int i = 1; i <= 3; ++i)
        probes.letGo("127.0.0." + std::to_string(i));
    ASSERT_TRUE(idle());
    pass(1);
    EXPECT_EQ(device(3).State, DeviceState::Def); // that was an answer of the old address
    EXPECT_TRUE(runUntil([&] { return device(1).State == DeviceState::On && !scheduler->holdsDevice(2); }));
    EXPECT_TRUE(runUntil([&] { return device(3).State == DeviceState::Off; })); // the new one is silent
}

TEST_F(SchedulerBusyTest, ANewDocumentDropsWhatComesLate) {
    startHanging(3);
    test::newFloor(doc);
    scheduler->reset();
    add(DeviceType::Printer, "127.0.0.1"); // record ID 1 again, another device
    ASSERT_TRUE(idle());
    pass(20'000);
    EXPECT_EQ(device(1).State, DeviceState::Def);
    EXPECT_FALSE(scheduler->holdsDevice(1) || scheduler->enabled());
}

} // namespace

} // namespace mirovane
