#include "tests/station/StationFixture.h"

#include <array>
#include <gmock/gmock.h>

namespace mirovane::test {
namespace {

using testing::Contains;

class LiveMoveTest : public StationFixture {
protected:
    LiveMoveTest() { open(a); }

    void move(std::int32_t recID, MapPoint to) {
        a.station->edits().liveMove().moveTo(std::array{DeviceMove{{recID, 0}, to}});
    }
    MapPoint savedPlace(std::int32_t recID) {
        open(b);
        return b.device(recID).Position;
    }
    const std::deque<EditStep>& steps() const { return a.station->edits().history().steps(); }
};

TEST_F(LiveMoveTest, AMoveIsOneEditWhenItEnds) {
    const TimeStamp before = a.device(1).Modified;
    pass(1000);
    move(1, {10, 10});
    move(2, {50, 50});
    move(1, {20, 30});
    EXPECT_EQ(a.device(1).Position, (MapPoint{20, 30})) << "it is seen where it is";
    EXPECT_EQ(a.device(1).Modified, before);
    pass(60'000);
    EXPECT_EQ(savedPlace(1), MapPoint()) << "but it is nobody's edit yet";

    EXPECT_TRUE(a.station->edits().liveMove().finish("Move").saved());
    ASSERT_EQ(steps().size(), 1U);
    EXPECT_EQ(steps().back().name, "Move 2 devices");
    EXPECT_EQ(steps().back().records.front().before->Position, MapPoint());
    EXPECT_EQ(savedPlace(1), (MapPoint{20, 30}));
    EXPECT_GT(a.device(1).Modified, before);
    EXPECT_THAT(a.logged(), testing::Not(Contains(testing::HasSubstr("waiting for Live Stat"))));
}

TEST_F(LiveMoveTest, AMoveThatIsGivenUpLeavesNoTrace) {
    move(1, {10, 10});
    a.station->edits().liveMove().giveUp();
    EXPECT_EQ(a.device(1).Position, MapPoint());
    EXPECT_FALSE(a.station->edits().liveMove().underWay());
    a.station->edits().liveMove().hold();
    EXPECT_EQ(a.station->edits().liveMove().finish("Move").outcome, SaveReport().outcome);
    move(1, {10, 10});
    move(1, {0, 0});
    a.station->edits().liveMove().finish("Move");
    EXPECT_TRUE(steps().empty()) << "back where it began";
}

TEST_F(LiveMoveTest, NothingIsReadAgainWhileTheButtonIsDown) {
    open(b);
    a.station->edits().liveMove().hold();
    rename(b, 2, "by b");
    ASSERT_TRUE(b.station->saveDatafile().saved());
    pass(10'000);
    EXPECT_EQ(a.device(2).Name, "");
    move(1, {10, 10});
    a.station->edits().liveMove().finish("Move");
    EXPECT_EQ(a.device(2).Name, "by b") << "merged by the save";
    EXPECT_EQ(a.device(1).Position, (MapPoint{10, 10}));
    rename(b, 3, "again");
    ASSERT_TRUE(b.station->saveDatafile().saved());
    pass(10'000);
    EXPECT_EQ(a.device(3).Name, "again") << "the watch goes on";
}

TEST_F(LiveMoveTest, ADeviceThatGoesMeanwhileIsLeftOut) {
    move(1, {10, 10});
    move(2, {20, 20});
    deleteDevices(*a.station, std::array{1});
    a.station->edits().liveMove().finish("Move");
    EXPECT_EQ(steps().back().name, "Move 1 device");
    move(2, {30, 30});
    a.station->newDatafile();
    EXPECT_FALSE(a.station->edits().liveMove().underWay());
}

TEST_F(LiveMoveTest, TheClickedDeviceComesToTheFront) {
    const std::size_t end = *a.doc().indexOfDevice(3);
    a.station->edits().bringToFront(a.device(1));
    EXPECT_EQ(a.doc().indexOfDevice(1), end);
    EXPECT_EQ(a.doc().indexOfDevice(3), end - 2) << "they traded places";
    a.station->edits().bringToFront(a.device(1));
    EXPECT_EQ(a.doc().indexOfDevice(1), end);
}

TEST_F(LiveMoveTest, NothingIsPutOverADeviceThatLiveStatHolds) {
    const std::size_t end = *a.doc().indexOfDevice(3);
    a.station->features().liveStat().toggle();
    for (int i = 0; i < 5000 && !a.liveStat().holdsDevice(3); ++i)
        pass(1);
    ASSERT_TRUE(a.liveStat().holdsDevice(3)) << "Live Stat never got to the device";
    a.station->edits().bringToFront(a.device(1));
    EXPECT_EQ(a.doc().indexOfDevice(3), end);
    a.station->features().liveStat().toggle();
    pass(10'000);
    ASSERT_FALSE(a.liveStat().holdsDevice(3));
    const std::size_t last = *a.doc().indexOfDevice(3); // a reload may have moved all
    a.station->edits().bringToFront(a.device(1));
    EXPECT_EQ(a.doc().indexOfDevice(1), last);
}

} // namespace
} // namespace mirovane::test
