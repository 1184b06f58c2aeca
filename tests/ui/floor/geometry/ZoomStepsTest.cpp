#include "ui/floor/geometry/ZoomSteps.h"

#include "ui/floor/geometry/FloorView.h"

#include <gtest/gtest.h>

namespace mirovane {

namespace {

constexpr QSize client(800, 600);
constexpr QSize map(1600, 1000);

ZoomState at(std::int32_t floormap, std::int32_t devices, std::int32_t height = 12) {
    return {floormap, devices, 1, height, true, true};
}

TEST(ZoomStepsTest, EveryCommandSetsPercentagesAndLabelHeight) {
    struct Case {
        ZoomCommand command;
        ZoomState before, after;
    };
    using enum ZoomCommand;
    const Case cases[] = {
        {In, at(100, 100), at(105, 105, 13)},    {In, at(795, 795, 19), at(800, 800, 19)},
        {In, at(100, 295), at(105, 300, 17)},    {Out, at(10, 30), at(5, 25, 3)},
        {Out, at(5, 5, 3), at(5, 5, 3)},         {Out, at(7, 100), at(5, 95, 13)},
        {Out, at(3, 100), at(3, 95, 13)},        {To25, at(100, 100), at(25, 25, 3)},
        {To50, at(100, 100), at(50, 50, 6)},     {To100, at(50, 10), at(100, 100, 13)},
        {To200, at(100, 100), at(200, 200, 15)}, {To300, at(100, 100), at(300, 300, 17)},
        {FitWidth, at(100, 70), at(50, 70, 6)},  {FitHeight, at(100, 70), at(60, 70, 6)},
        {FitAll, at(100, 70), at(60, 70, 6)},
    };
    for (const auto& [command, before, after] : cases)
        EXPECT_EQ(zoomed(before, command, client, map), after) << static_cast<int>(command);
    EXPECT_EQ(zoomed(at(100, 70), FitAll, {500, 600}, map).ZoomPercent, 32) << "a tall window fits the width";
    EXPECT_EQ(zoomed(at(100, 70), FitHeight, {800, 3000}, map).LabelFontHeight, 19);
}

TEST(ZoomStepsTest, FlagsChooseWhatIsZoomed) {
    ZoomState state = at(100, 100);
    state.ZoomFloormap = false;
    EXPECT_EQ(zoomed(state, ZoomCommand::In, client, map).ZoomPercent, 100);
    EXPECT_EQ(zoomed(state, ZoomCommand::In, client, map).ZoomDevicesPercent, 105);
    EXPECT_EQ(zoomed(state, ZoomCommand::FitWidth, client, map).ZoomPercent, 50) << "whatever the flags";
    state.ZoomDevices = false;
    EXPECT_EQ(zoomedBy(state, 2).ZoomDevicesPercent, 100);
}

TEST(ZoomStepsTest, FittingNeedsAMapAndStopsAtFivePercent) {
    for (const ZoomCommand fit : {ZoomCommand::FitWidth, ZoomCommand::FitHeight, ZoomCommand::FitAll}) {
        EXPECT_EQ(zoomed(at(70, 70), fit, client, {0, 0}), at(70, 70));
        EXPECT_EQ(zoomed(at(70, 70), fit, {0, 0}, map), at(70, 70));
        EXPECT_EQ(zoomed(at(70, 70), fit, {3, 3}, map).ZoomPercent, 5);
        EXPECT_EQ(zoomed(at(70, 70), fit, {2000000, 2000000}, {1, 1}).ZoomPercent, largestZoom);
    }
}

TEST(ZoomStepsTest, CustomZoomSetsTheHeightAboveEightHundredToo) {
    EXPECT_EQ(customZoomed(at(100, 100), 799, 50, 4).LabelFontHeight, 22);
    EXPECT_EQ(customZoomed(at(100, 100), 800, 50, 4).LabelFontHeight, 36);
    EXPECT_EQ(customZoomed(at(100, 100), 0, 20000, 0).ZoomPercent, 5);
}

TEST(ZoomStepsTest, NotchesLeadBackToWhereTheyBegan) {
    for (const std::int32_t start : {5, 20, 95, 100, 150, 400, 1000}) {
        ZoomState state = at(start, start);
        for (int i = 0; i < 12; ++i)
            state = zoomedByNotch(state, true);
        EXPECT_GE(state.ZoomPercent, start + 60);
        for (int i = 0; i < 60; ++i)
            state = zoomedByNotch(state, false);
        EXPECT_EQ(state.ZoomPercent, 5) << start;
    }
}

TEST(ZoomStepsTest, PlaceUnderThePointerStays) {
    const QPoint pointer(300, 200);
    for (const std::int32_t after : {50, 105, 240}) {
        const QPoint origin = originAround(pointer, {1000, 700}, 100, after);
        const MapPoint there = ToMap(pointer, origin, after);
        EXPECT_NEAR(there.x, 1300, 1) << after;
        EXPECT_NEAR(there.y, 900, 1) << after;
    }
    EXPECT_EQ(originAround({500, 500}, {0, 0}, 100, 50), QPoint(0, 0))
        << "there is nothing left of the floor";
}

} // namespace

} // namespace mirovane
