#include "tests/station/StationFixture.h"

namespace mirovane {

namespace {

using test::Lines;
using test::Site;

const std::string askDiscoverA =
    "Live Discover is enabled by A-HOST\\a-user. Do you want to continue to enable Live Discover? "
    "Doing so will prompt the other user to disable Live Discover.";
const std::string askDiscoverB =
    "Live Discover is enabled by B-HOST\\b-user. Do you want to continue to enable Live Discover? "
    "Doing so will prompt the other user to disable Live Discover.";

class StationDiscoverTest : public test::StationFixture {
protected:
    StationDiscoverTest() {
        Site maker(clock, timers, {"maker", "m"}, false);
        maker.station->openDatafile(path);
        CHardware range;
        range.Type = SpecialType::DiscoverRangeRecord;
        range.Name = "127.0.0.2"; // .2 and .3 are known
        range.IPAddress = "127.0.0.9";
        maker.doc().append(range);
        maker.station->saveDatafile();
    }

    static const CHardware& walkOwner(Site& site) {
        return *site.doc().findSpecial(SpecialType::LiveDiscoverOwnerRecord);
    }
    static int saves(Site& site) {
        const Lines lines = site.logged();
        return static_cast<int>(std::count(lines.begin(), lines.end(), "Saved changes to data file"));
    }
};

TEST_F(StationDiscoverTest, AHostReachesTheOtherStationWithOneSave) {
    open(a);
    open(b);
    a.probes.answer("127.0.0.5");
    const test::StationNews news(*a.station);
    a.station->features().liveDiscover().toggle();
    EXPECT_EQ(saves(a), 1);
    pass(60'000);
    EXPECT_EQ(saves(a), 1);
    EXPECT_EQ(news.redraws, 1);
    ASSERT_TRUE(b.doc().findDevice(4));
    EXPECT_EQ(b.device(4).IPAddress, "127.0.0.5");
    EXPECT_TRUE(b.device(4).inDiscovered());
    EXPECT_EQ(b.doc().deviceCount(), 4U);
    EXPECT_EQ(a.station->discovered(), 1U);
}

TEST_F(StationDiscoverTest, TakingOverAsksBothUsersAndTheWalkGoesOn) {
    open(a);
    open(b);
    a.station->features().liveDiscover().toggle();
    pass(3000);
    EXPECT_EQ(walkOwner(b).Name, "A-HOST");
    pass(20'000);
    b.station->features().liveDiscover().toggle(); // No
    EXPECT_EQ(b.dialogs.questions, Lines{askDiscoverA});
    EXPECT_FALSE(b.station->features().liveDiscover().enabled());

    b.dialogs.answer = true;
    b.station->features().liveDiscover().toggle();
    pass(3000);
    EXPECT_EQ(a.dialogs.questions, Lines{askDiscoverB});
    EXPECT_FALSE(a.station->features().liveDiscover().enabled()); // a's user said No
    EXPECT_EQ(walkOwner(a).Name, "B-HOST");
    EXPECT_EQ(walkOwner(a).State, 1);
    const auto pings = a.probes.pinged().size();
    pass(60'000);
    EXPECT_EQ(a.probes.pinged().size(), pings);
    EXPECT_GT(b.probes.pinged().size(), 5U);
}

TEST_F(StationDiscoverTest, AnotherStationsSavesDoNotHoldTheWalkBack) {
    open(a);
    open(b);
    a.station->features().liveDiscover().toggle();
    for (int i = 0; i < 10; ++i) {
        pass(5000);
        rename(b, 1, "edit " + std::to_string(i));
        b.station->saveDatafile();
        pass(3000);
    }
    const Lines pinged = a.probes.pinged();
    EXPECT_NE(std::find(pinged.begin(), pinged.end(), "127.0.0.9"), pinged.end());
    EXPECT_EQ(a.dialogs.questions, Lines{});
}

TEST_F(StationDiscoverTest, TheWalkGoesOnAfterTheEndAtAnotherComputer) {
    open(a);
    a.station->features().liveStat().toggle();
    a.station->features().liveDiscover().toggle();
    pass(5000 + 1000 + 1000 + 5000 + 4000); // two known, then two pings
    EXPECT_EQ(walkOwner(a).IPAddress, "127.0.0.6");
    a.logged();
    EXPECT_FALSE(a.station->shutDown());
    EXPECT_EQ(a.logged(), (Lines{"Live Stat is being disabled, please wait...", "Saved changes to data file",
                                 "Live Stat disabled", "Live Discover is being disabled, please wait...",
                                 "Saved changes to data file", "Live Discover disabled."}));
    open(b);
    EXPECT_EQ(walkOwner(b).State, 0);
    EXPECT_EQ(walkOwner(b).Name + walkOwner(b).Username, "");
    EXPECT_EQ(walkOwner(b).IPAddress, "127.0.0.6");
    b.station->features().liveDiscover().toggle();
    EXPECT_EQ(b.dialogs.questions, Lines{});
    pass(5000);
    EXPECT_EQ(b.probes.pinged(), Lines{"127.0.0.6"});
}

TEST_F(StationDiscoverTest, TheEndKeepsTheWalkAlsoWhenAnotherStationJustSaved) {
    open(a);
    open(b);
    a.station->features().liveDiscover().toggle();
    pass(31'000);
    const std::string next = walkOwner(a).IPAddress;
    ASSERT_NE(next, "127.0.0.2");
    rename(b, 1, "by b");
    b.station->saveDatafile();
    EXPECT_FALSE(a.station->shutDown());
    pass(3000);
    EXPECT_EQ(walkOwner(b).State, 0);
    EXPECT_EQ(walkOwner(b).IPAddress, next);
    EXPECT_EQ(b.device(1).Name, "by b");
}

TEST_F(StationDiscoverTest, LeavingADatafileReleasesItAndSaveAsTakesTheWalkAlong) {
    open(a);
    a.station->features().liveDiscover().toggle();
    pass(12'000);
    EXPECT_FALSE(a.station->saveDatafileAs(folder.file("copy.mv")).failed());
    EXPECT_TRUE(a.station->features().liveDiscover().enabled());
    open(b);
    EXPECT_EQ(walkOwner(b).State, 0) << "the file that was left";
    EXPECT_TRUE(a.station->openDatafile(folder.file("missing.mv")));
    EXPECT_TRUE(a.station->features().liveDiscover().enabled());
    a.station->newDatafile();
    EXPECT_FALSE(a.station->features().liveDiscover().enabled());
    EXPECT_FALSE(b.station->openDatafile(folder.file("copy.mv")));
    EXPECT_EQ(walkOwner(b).State, 0);
    const auto pings = a.probes.pinged().size();
    pass(60'000);
    EXPECT_EQ(a.probes.pinged().size(), pings);
}

TEST_F(StationDiscoverTest, AHostFoundWhileAnotherStationSavesIsNotLost) {
    open(a);
    open(b);
    a.probes.answer("127.0.0.4");
    a.station->features().liveDiscover().toggle();
    pass(3000);
    pass(4001); // .4 is being pinged
    ASSERT_EQ(a.probes.pinged(), Lines{"127.0.0.4"});
    pass(4000);
    rename(b, 1, "by b");
    b.station->saveDatafile(); // a's watch has not seen it when the host is to be saved
    pass(120'000);
    EXPECT_EQ(a.device(1).Name, "by b");
    ASSERT_EQ(b.doc().deviceCount(), 4U);
    EXPECT_EQ(b.device(4).IPAddress, "127.0.0.4");
}

TEST_F(StationDiscoverTest, NothingTicksWhileTheStationIsPaused) {
    open(a);
    a.station->features().liveDiscover().toggle();
    {
        const CPause pause(a.station->pauses());
        pass(60'000);
        EXPECT_EQ(a.probes.pinged(), Lines{});
    }
    pass(10'000);
    EXPECT_FALSE(a.probes.pinged().empty());
}

} // namespace

} // namespace mirovane
