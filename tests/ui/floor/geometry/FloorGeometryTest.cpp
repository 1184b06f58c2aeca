#include "ui/floor/geometry/FloorGeometry.h"

#include "tests/ui/floor/FloorFixture.h"
#include "ui/floor/geometry/FontBands.h"

#include <climits>
#include <gtest/gtest.h>

namespace mirovane {

namespace {

TEST(FloorGeometryTest, ScalesTruncatingTowardZero) {
    struct Case {
        std::int32_t value, percent, scaledTo, unscaledTo;
    };
    for (const Case& c :
         {Case{101, 50, 50, 202}, Case{-101, 50, -50, -202}, Case{99, 33, 32, 300}, Case{-1, 99, 0, -1},
          Case{7, 300, 21, 2}, Case{-7, 300, -21, -2}, Case{1, 5, 0, 20}}) {
        EXPECT_EQ(scaled(c.value, c.percent), c.scaledTo) << c.value << " at " << c.percent;
        EXPECT_EQ(unscaled(c.value, c.percent), c.unscaledTo) << c.value << " at " << c.percent;
    }
}

TEST(FloorGeometryTest, HostileNumbersStopAtTheLimit) {
    for (const std::int32_t percent : {INT_MIN, -100, 0, 1, 100, INT_MAX}) {
        for (const std::int32_t value : {INT_MIN, -1, 0, 1, INT_MAX}) {
            EXPECT_LE(std::abs(scaled(value, percent)), coordinateLimit);
            EXPECT_LE(std::abs(unscaled(value, percent)), coordinateLimit);
        }
    }
    const QPoint far = ToWindow({INT_MIN, INT_MAX}, {INT_MAX, INT_MIN}, 800);
    EXPECT_EQ(far, QPoint(-coordinateLimit, coordinateLimit));
    EXPECT_FALSE(insideCull({INT_MIN, INT_MIN}, {INT_MAX, INT_MAX}, {100, 100}));
    DisplaySettings display;
    display.ZoomPercent = 0;
    display.ZoomDevicesPercent = INT_MAX;
    EXPECT_EQ(floorZoom(display), (FloorZoom{smallestZoom, largestZoom}));
}

TEST(FloorGeometryTest, WindowAndMapAreEachOthersReverse) {
    EXPECT_EQ(ToWindow({100, 40}, {30, 50}, 150), QPoint(120, 10));
    EXPECT_EQ(ToMap({120, 10}, {30, 50}, 150), (MapPoint{100, 40}));
}

TEST(FloorGeometryTest, CullEdgesAreOutside) {
    const QPoint scroll(1000, 500);
    const QSize client(800, 600);
    EXPECT_TRUE(insideCull({801, 301}, scroll, client));
    EXPECT_FALSE(insideCull({800, 301}, scroll, client));
    EXPECT_TRUE(insideCull({1799, 1099}, scroll, client));
    EXPECT_FALSE(insideCull({1799, 1100}, scroll, client));
}

TEST(FloorGeometryTest, ScrollingToShowAPointPutsItInTheMiddleUnlessItIsInView) {
    const QSize client(400, 300);
    EXPECT_EQ(scrollToShow({101, 101}, {100, 100}, client), std::nullopt);
    EXPECT_EQ(scrollToShow({479, 379}, {100, 100}, client), std::nullopt);
    EXPECT_EQ(scrollToShow({480, 300}, {100, 100}, client), QPoint(280, 150)) << "a scroll bar may lie there";
    EXPECT_EQ(scrollToShow({300, 100}, {100, 100}, client), QPoint(100, 0));
    EXPECT_EQ(scrollToShow({5, 5}, {100, 100}, client), QPoint(0, 0));
}

TEST(FloorGeometryTest, ADragScrollsOnlyBeyondAnEdge) {
    EXPECT_EQ(autoScroll({0, 0}, {400, 300}), QPoint(0, 0));
    EXPECT_EQ(autoScroll({399, 299}, {400, 300}), QPoint(0, 0));
    EXPECT_EQ(autoScroll({-1, 300}, {400, 300}), QPoint(-15, 15));
    EXPECT_EQ(autoScroll({400, -1}, {400, 300}), QPoint(15, -15));
}

TEST(FloorGeometryTest, HitIncludesEveryEdgeOfTheScaledIcon) {
    const FloorZoom zoom{50, 200};
    EXPECT_TRUE(hits({100, 100}, {32, 16}, {50, 50}, zoom));
    EXPECT_TRUE(hits({100, 100}, {32, 16}, {114, 82}, zoom));
    EXPECT_FALSE(hits({100, 100}, {32, 16}, {115, 82}, zoom));
    EXPECT_FALSE(hits({100, 100}, {32, 16}, {49, 50}, zoom));
}

TEST(FloorGeometryTest, PenGrowsThinnerWithEveryKindOfLine) {
    DisplaySettings display;
    bool DisplaySettings::*const toggles[] = {
        &DisplaySettings::PropertiesSlashDraw, &DisplaySettings::PropertiesBackslashDraw,
        &DisplaySettings::PropertiesHorzDraw, &DisplaySettings::PropertiesVertDraw};
    for (const auto toggle : toggles)
        display.*toggle = false;
    const int widths[] = {5, 4, 3, 2, 2};
    EXPECT_EQ(linePenWidth(display), widths[0]);
    for (int on = 1; on <= 4; ++on) {
        display.*toggles[on - 1] = true;
        EXPECT_EQ(linePenWidth(display), widths[on]);
    }
}

TEST(FloorGeometryTest, DirectionLinesSpanTheDrawnBitmap) {
    CHardware device;
    device.SlashDraw = device.BackslashDraw = device.HorzDraw = device.VertDraw = 1;
    DisplaySettings display;
    const auto lines = directionLines(device, display, {10, 20}, {33, 33}, 150);
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0], (FloorLine{{10, 69}, {59, 20}}));
    EXPECT_EQ(lines[1], (FloorLine{{10, 20}, {59, 69}}));
    EXPECT_EQ(lines[2], (FloorLine{{10, 44}, {59, 44}}));
    EXPECT_EQ(lines[3], (FloorLine{{34, 20}, {34, 69}}));
    display.PropertiesSlashDraw = false;
    device.VertDraw = 0;
    EXPECT_EQ(directionLines(device, display, {10, 20}, {33, 33}, 150).size(), 2U);
}

TEST(FloorGeometryTest, PhotoTakesItsWidthFromOneZoomAndItsHeightFromTheOther) {
    EXPECT_EQ(photoSize({128, 160}, 32, {100, 100}, 100), QSize(128, 160));
    EXPECT_EQ(photoSize({128, 160}, 32, {50, 200}, 50), QSize(128, 40));
    EXPECT_EQ(photoSize({128, 160}, 32, {105, 105}, 100), QSize(134, 168)) << "nothing is cut off on the way";
    EXPECT_EQ(photoSize({128, 160}, 32, {33, 33}, 100), QSize(42, 52));
    EXPECT_TRUE(photoSize({0, 5}, 32, {100, 100}, 100).isEmpty());
}

TEST(FloorGeometryTest, FontBandsChangeAtTheirBounds) {
    struct Band {
        std::int32_t percent;
        std::optional<std::int32_t> a, b;
    };
    for (const Band& band :
         {Band{29, 2, 2}, Band{30, 5, 5}, Band{69, 5, 5}, Band{70, 12, 12}, Band{119, 12, 12},
          Band{120, 13, 16}, Band{199, 14, 16}, Band{200, 14, 18}, Band{299, 14, 18}, Band{300, 16, 18},
          Band{350, 16, 24}, Band{500, 18, 28}, Band{799, 18, 28}, Band{800, std::nullopt, std::nullopt}}) {
        EXPECT_EQ(fontOffsetA(band.percent), band.a) << band.percent;
        EXPECT_EQ(fontOffsetB(band.percent), band.b) << band.percent;
    }
    DisplaySettings display;
    display.ZoomPercent = 800;
    display.ZoomFontScale = 3;
    EXPECT_EQ(startLabelFontHeight(display), 35);
    display.ZoomFontScale = INT_MIN;
    EXPECT_EQ(startLabelFontHeight(display), smallestLabelFont);
}

TEST(FloorGeometryTest, DeviceBeyondTheMapWidensTheScrollExtent) {
    test::Floor floor;
    CIconSizes icons;
    icons.set(DeviceType::Computer, {32, 30});
    EXPECT_EQ(scrollExtent(floor.doc, {1000, 800}, icons, 50), QSize(500, 400));
    floor.add(DeviceType::Computer, {1000, 900});
    EXPECT_EQ(scrollExtent(floor.doc, {1000, 800}, icons, 50), QSize(500, 465))
        << "exactly at the edge is not beyond";
    floor.add(DeviceType::discoveredOffset + 2, {3000, 0});
    EXPECT_EQ(scrollExtent(floor.doc, {1000, 800}, icons, 50).width(), 1516)
        << "with its icon, though it is in the other window";
    floor.add(DeviceType::Computer, {INT_MAX, INT_MIN});
    EXPECT_EQ(scrollExtent(floor.doc, {1000, 800}, icons, 800), QSize(coordinateLimit, 7440));
}

} // namespace

} // namespace mirovane
