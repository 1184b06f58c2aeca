#include "platform/WorkerPool.h"
#include "tests/discover/DiscoverFixture.h"
#include "tests/support/NewFloor.h"

namespace mirovane {

namespace {

using Lines = std::vector<std::string>;

constexpr std::string_view disablingLine = "Live Discover is being disabled, please wait...";

class DiscoverTest : public test::DiscoverFixture {
protected:
    using test::DiscoverFixture::DiscoverFixture;

    void enable() {
        discover.toggle();
        ASSERT_TRUE(discover.enabled());
        logged();
    }
    Lines pingedAfter(int milliseconds) {
        const std::size_t before = probes.pinged().size();
        pass(milliseconds);
        const Lines all = probes.pinged();
        return {all.begin() + static_cast<std::ptrdiff_t>(before), all.end()};
    }
};

TEST_F(DiscoverTest, ARangeIsWalkedAcrossItsCarryThenTheNextThenTheFirstAgain) {
    addRange("10.0.0.250", "10.0.1.2");
    addRange("10.9.0.9", "10.9.0.10");
    enable();
    EXPECT_EQ(host.saves, 1);
    EXPECT_EQ(owner().State, 1);
    EXPECT_EQ(owner().Name + "\\" + owner().Username, "host\\user");
    EXPECT_EQ(pingedAfter(4999), Lines{});
    pass(1);
    EXPECT_EQ(walk(), "10.0.0.250-10.0.1.2 10.0.0.251");
    EXPECT_EQ(logged(), Lines{"Live Discover Enabled: Pinging10.0.0.250"});
    EXPECT_EQ(pingedAfter(10 * 5000),
              (Lines{"10.0.0.251", "10.0.0.252", "10.0.0.253", "10.0.0.254", "10.0.0.255", "10.0.1.0",
                     "10.0.1.1", "10.0.1.2", "10.9.0.9", "10.9.0.10"}));
    EXPECT_EQ(pingedAfter(5000), Lines{"10.0.0.250"});
    EXPECT_EQ(host.saves, 1) << "a walk that finds nothing makes nobody read the file again";
}

TEST_F(DiscoverTest, AKnownAddressCostsASecondAndNoPing) {
    addRange("10.0.0.1", "10.0.0.4");
    addDevice("10.0.0.2>>");
    addDevice("10.0.0.3");
    enable();
    EXPECT_EQ(pingedAfter(5000), Lines{"10.0.0.1"});
    logged();
    EXPECT_EQ(pingedAfter(5000 + 1000 + 999), Lines{});
    EXPECT_EQ(logged(), Lines{});
    EXPECT_EQ(pingedAfter(1), Lines{"10.0.0.4"});
}

TEST_F(DiscoverTest, AHostThatAnswersIsAddedOnceWithOneSave) {
    addRange("10.0.0.1", "10.0.0.3");
    probes.answer("10.0.0.2");
    enable();
    pass(10'000);
    EXPECT_EQ(doc.deviceCount(), 0U);
    logged();
    clock.jumpWall(std::chrono::hours(1));
    pass(5000);
    EXPECT_EQ(logged(), (Lines{"Discover added a new device", "Live Discover Enabled: Pinging10.0.0.3"}));
    ASSERT_TRUE(doc.findDevice(1));
    EXPECT_EQ(doc.findDevice(1)->IPAddress, "10.0.0.2");
    EXPECT_EQ(doc.findDevice(1)->Comment, "NEW");
    EXPECT_EQ(owner().Modified, doc.now());
    EXPECT_EQ(host.discoveries, 1);
    pass(60'000);
    EXPECT_EQ(doc.deviceCount(), 1U);
    EXPECT_EQ(host.discoveries, 1);
    EXPECT_EQ(host.saves, 1) << "nothing but the claim";
}

TEST_F(DiscoverTest, ADeviceThatIsEnteredDuringThePingIsNotAddedAgain) {
    addRange("10.0.0.1", "10.0.0.2");
    probes.answer("10.0.0.1");
    enable();
    pass(5000);
    addDevice("10.0.0.1");
    pass(5000);
    EXPECT_EQ(doc.deviceCount(), 1U);
    EXPECT_EQ(host.discoveries, 0);
}

TEST_F(DiscoverTest, ARangeDeletedOrChangedUnderTheWalkSendsItToTheFirst) {
    const CHardware& first = addRange("10.0.0.1", "10.0.0.9");
    const CHardware& middle = addRange("10.0.1.1", "10.0.1.9");
    addRange("10.0.2.1", "10.0.2.9");
    doc.edit(owner(), [](CHardware& record) {
        record.MACAddress = "10.0.1.1";
        record.Comment = "10.0.1.9";
        record.IPAddress = "10.0.1.4";
    });
    enable();
    EXPECT_EQ(pingedAfter(5000), Lines{"10.0.1.4"}) << "the walk goes on where it stopped";
    doc.remove(middle);
    EXPECT_EQ(pingedAfter(5000), Lines{"10.0.0.1"});
    doc.edit(first, [](CHardware& record) { record.IPAddress = "10.0.0.19"; });
    EXPECT_EQ(pingedAfter(5000), Lines{"10.0.0.1"});
}

TEST_F(DiscoverTest, OddRangesDoNotCatchTheWalk) {
    addRange("10.0.0.1", "10.0.0.1");
    addRange("10.0.0", "");
    addRange("10.0.0.1", "10.0.0.1"); // again
    addRange("255.255.255.255", "255.255.255.255");
    enable();
    EXPECT_EQ(pingedAfter(5 * 5000),
              (Lines{"10.0.0.1", "10.0.0.1", "255.255.255.255", "10.0.0.1", "10.0.0.1"}));
}

TEST_F(DiscoverTest, WithoutRangesNothingBeginsAndDeletingThemAllEndsIt) {
    EXPECT_EQ(discover.toggle()->kind, StartRefusal::Kind::NoRanges);
    EXPECT_FALSE(discover.enabled());
    EXPECT_EQ(host.saves, 0);
    const CHardware& range = addRange("10.0.0.1", "10.0.0.9");
    enable();
    pass(5000);
    logged();
    doc.remove(range);
    pass(5000);
    EXPECT_EQ(logged(),
              (Lines{"Live Discover does not have IP range(s) to discover.", std::string(disablingLine)}));
    EXPECT_FALSE(discover.enabled());
    pass(300);
    EXPECT_EQ(logged(), Lines{"Live Discover disabled."});
    EXPECT_EQ(owner().State, 0);
    EXPECT_EQ(owner().Name + owner().Username, "");
    EXPECT_EQ(host.saves, 2);
    EXPECT_EQ(pingedAfter(60'000), Lines{});
}

TEST_F(DiscoverTest, ItAsksBeforeItTakesLiveDiscoverOver) {
    addRange("10.0.0.1", "10.0.0.9");
    doc.edit(owner(), [](CHardware& record) {
        record.State = 1;
        record.Name = "other";
        record.Username = "user";
    });
    discover.toggle();
    EXPECT_EQ(
        host.questions,
        Lines{"Live Discover is enabled by other\\user. Do you want to continue to enable Live Discover? "
              "Doing so will prompt the other user to disable Live Discover."});
    EXPECT_FALSE(discover.enabled());
    EXPECT_EQ(pingedAfter(60'000), Lines{});
    doc.edit(owner(), [](CHardware& record) {
        record.Name = "host";
        record.Username = "colleague";
    });
    discover.toggle();
    EXPECT_FALSE(discover.enabled()) << "another user of this computer is another station";
    host.answer = true;
    discover.toggle();
    EXPECT_TRUE(discover.enabled());
    EXPECT_EQ(owner().Name + "\\" + owner().Username, "host\\user");
}

TEST_F(DiscoverTest, TheWalkOutlivesAReloadAndYieldsToAnotherOwner) {
    addRange("10.0.0.1", "10.0.0.9");
    enable();
    const auto reload = [this](const std::string& name) {
        doc.edit(owner(), [&](CHardware& record) {
            record.IPAddress = "10.0.0.1"; // as it was saved
            record.Name = name;
        });
        discover.afterReload();
    };
    pass(15'000);
    reload("host");
    EXPECT_EQ(walk(), "10.0.0.1-10.0.0.9 10.0.0.4");
    logged();
    reload("other"); // its user says No
    EXPECT_FALSE(discover.enabled());
    EXPECT_EQ(logged(), Lines{"Live Discover disabled."});
    EXPECT_EQ(owner().Name, "other");
    EXPECT_EQ(walk(), "10.0.0.1-10.0.0.9 10.0.0.1");
    EXPECT_EQ(pingedAfter(60'000), Lines{});
}

TEST_F(DiscoverTest, SwitchedOnAgainItGoesOnFromTheDatafileAndSaysAgainWhatIsWrong) {
    addRange("10.0.0.1", "10.0.0.9");
    enable();
    pass(15'000);
    probes.refuseEchoes("no echoes here");
    pass(5000);
    discover.disableNow();
    EXPECT_EQ(walk(), "10.0.0.1-10.0.0.9 10.0.0.4");
    doc.edit(owner(), [](CHardware& record) { record.IPAddress = "10.0.0.7"; }); // walked elsewhere
    clock.advance(std::chrono::minutes(11));
    logged();
    discover.toggle();
    EXPECT_EQ(logged(), Lines{"no echoes here"});
    discover.afterReload();
    EXPECT_EQ(owner().IPAddress, "10.0.0.7");
    probes.allowEchoes();
    host.pending = false;
    EXPECT_EQ(pingedAfter(10'000), (Lines{"10.0.0.7", "10.0.0.8"}));
    EXPECT_FALSE(host.pending) << "the ten minutes begin anew";
}

TEST_F(DiscoverTest, WithoutAThreadTheAddressIsTriedAgain) {
    addRange("10.0.0.1", "10.0.0.9");
    enable();
    inlineWorkers.exhausted = true;
    pass(5000);
    EXPECT_EQ(logged(), Lines{"Live Discover cannot start a thread; raise the limit of processes."});
    EXPECT_EQ(owner().IPAddress, "10.0.0.1");
    inlineWorkers.exhausted = false;
    EXPECT_EQ(pingedAfter(5000), Lines{"10.0.0.1"});
}

TEST_F(DiscoverTest, AHostLostWithAReloadIsPingedAgain) {
    addRange("10.0.0.1", "10.0.0.1");
    addRange("10.0.1.1", "10.0.1.9");
    probes.answer("10.0.0.1");
    enable();
    pass(5000);
    host.whileSaving = [this] {
        doc.remove(*doc.findDevice(1));
    };
    EXPECT_EQ(pingedAfter(5000), Lines{"10.0.0.1"}) << "another station saved in this very moment";
    host.whileSaving = {};
    pass(5000);
    EXPECT_EQ(doc.deviceCount(), 1U);
    EXPECT_EQ(walk(), "10.0.1.1-10.0.1.9 10.0.1.2");
}

TEST_F(DiscoverTest, WithoutEchoesItSaysWhyAndPassesNothingOver) {
    addRange("10.0.0.1", "10.0.0.9");
    probes.refuseEchoes("no echoes here");
    discover.toggle();
    pass(60'000);
    EXPECT_EQ(logged(), Lines{"no echoes here"});
    EXPECT_EQ(probes.pinged(), Lines{});
    EXPECT_EQ(owner().IPAddress, "10.0.0.1");
}

TEST_F(DiscoverTest, ThePlaceOfALongWalkIsSavedNowAndThen) {
    addRange("10.0.0.1", "10.0.9.9");
    enable();
    pass(9 * 60'000);
    EXPECT_FALSE(host.pending);
    pass(60'000 + 5000);
    EXPECT_TRUE(host.pending);
    host.pending = false;
    pass(9 * 60'000);
    EXPECT_FALSE(host.pending);
}

TEST_F(DiscoverTest, NothingHappensWhileTheStationHoldsStillOrHasNoTimer) {
    addRange("10.0.0.1", "10.0.0.9");
    enable();
    host.still = true;
    EXPECT_EQ(pingedAfter(60'000), Lines{});
    host.still = false;
    EXPECT_EQ(pingedAfter(5000), Lines{"10.0.0.1"});
    discover.disableNow();
    timers.exhaust();
    discover.toggle();
    EXPECT_FALSE(discover.enabled());
    EXPECT_EQ(host.failures, Lines{"System is out of timer resource!"});
    EXPECT_EQ(owner().State, 0);
}

/// Pings on a real thread that hang.
class BusyDiscoverTest : public DiscoverTest {
protected:
    BusyDiscoverTest() : DiscoverTest(&pool) {
        addRange("10.0.0.1", "10.0.0.9");
        probes.hang("10.0.0.1");
        probes.answer("10.0.0.1");
        discover.toggle();
        pass(5000);
        EXPECT_TRUE(probes.waitUntilHanging(1));
        logged();
    }

    CWorkerPool pool{1};
};

TEST_F(BusyDiscoverTest, OnlyOnePingIsInFlight) {
    EXPECT_EQ(pingedAfter(60'000), Lines{});
    probes.letGo("10.0.0.1");
    ASSERT_TRUE(pool.waitUntilIdle(std::chrono::seconds(20)));
    pass(300);
    EXPECT_EQ(doc.deviceCount(), 1U);
    ASSERT_TRUE(pool.waitUntilIdle(std::chrono::seconds(20)));
    EXPECT_EQ(probes.pinged().back(), "10.0.0.2");
}

TEST_F(BusyDiscoverTest, DisablingStopsThePingAndAsksItsAddressAgainLater) {
    discover.toggle();
    EXPECT_EQ(logged(), Lines{std::string(disablingLine)});
    EXPECT_FALSE(discover.enabled());
    EXPECT_TRUE(discover.disabling());
    ASSERT_TRUE(pool.waitUntilIdle(std::chrono::seconds(20)));
    pass(300);
    EXPECT_EQ(logged(), Lines{"Live Discover disabled."});
    EXPECT_FALSE(discover.disabling());
    EXPECT_EQ(owner().State, 0);
    EXPECT_EQ(walk(), "10.0.0.1-10.0.0.9 10.0.0.1");
    EXPECT_EQ(doc.deviceCount(), 0U);
}

TEST_F(BusyDiscoverTest, TheEndAndAnotherDocumentWaitForNoTimeOut) {
    discover.disableNow();
    EXPECT_EQ(logged(), (Lines{std::string(disablingLine), "Live Discover disabled."}));
    EXPECT_EQ(owner().IPAddress, "10.0.0.1");

    discover.toggle();
    pass(5000);
    ASSERT_TRUE(probes.waitUntilHanging(1));
    test::newFloor(doc);
    discover.reset();
    addRange("10.0.5.1", "10.0.5.9");
    ASSERT_TRUE(pool.waitUntilIdle(std::chrono::seconds(20)));
    discover.toggle();
    pass(10'000);
    EXPECT_EQ(doc.deviceCount(), 0U) << "what the other document's ping found is not this one's";
}

TEST_F(BusyDiscoverTest, OffAndOnAgainGoesOnWithTheSameAddress) {
    discover.toggle();
    discover.toggle();
    EXPECT_TRUE(discover.enabled());
    EXPECT_EQ(owner().State, 1) << "it was not released in between";
    probes.letGo("10.0.0.1");
    ASSERT_TRUE(pool.waitUntilIdle(std::chrono::seconds(20)));
    pass(5000);
    ASSERT_TRUE(pool.waitUntilIdle(std::chrono::seconds(20)));
    EXPECT_EQ(probes.pinged(), (Lines{"10.0.0.1", "10.0.0.1"}));
}

} // namespace

} // namespace mirovane
