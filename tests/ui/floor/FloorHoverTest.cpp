#include "ui/floor/FloorHover.h"

#include "tests/ui/floor/FloorFixture.h"

namespace mirovane {

namespace {

class FloorHoverTest : public testing::Test {
protected:
    const CHardware* shownAt(QPoint at, bool synthetic = false) {
        last = hover.at(at, synthetic);
        return last.shown;
    }

    test::Floor floor;
    CFloorHover hover{floor.selection, floor.index, floor.icons.sizes(), floor.display, floor.state.view};
    Hover last;
};

TEST_F(FloorHoverTest, HitsAreVisibleDevicesTopmostFirst) {
    const CHardware& below = floor.add(DeviceType::Computer, {100, 100});
    const CHardware& above = floor.add(DeviceType::Printer, {110, 110});
    EXPECT_EQ(hover.hitsAt({115, 115}), (std::vector{&above, &below}));
    EXPECT_EQ(shownAt({115, 115}), &above);
    EXPECT_EQ(shownAt({100, 100}), &below);
    EXPECT_EQ(shownAt({99, 100}), nullptr);
    floor.display.VisibleTypes = ~(1 << (DeviceType::Printer - 1));
    EXPECT_EQ(shownAt({115, 115}), &below);
    floor.state.view.zoom.ZoomPercent = 200;
    EXPECT_EQ(shownAt({200, 200}), &below);
    EXPECT_EQ(shownAt({199, 200}), nullptr);
}

TEST_F(FloorHoverTest, ASelectedDeviceAboveTheOneUnderThePointerKeepsItsLabels) {
    const CHardware& first = floor.add(DeviceType::Computer, {100, 100});
    const CHardware& second = floor.add(DeviceType::Computer, {300, 100});
    floor.doc.setSelected(second, true);
    EXPECT_EQ(shownAt({110, 110}), &second);
    EXPECT_TRUE(last.selectedSeen);
    EXPECT_EQ(shownAt({110, 110}, true), &first) << "a made-up move looks under the pointer only";
    floor.doc.setSelected(second, false);
    floor.doc.setSelected(first, true);
    EXPECT_EQ(shownAt({310, 110}), &second);
    EXPECT_FALSE(last.selectedSeen);

    hover.showOnly(&first);
    hover.showOnly(&second);
    EXPECT_EQ(first.ShowAll, 0);
    EXPECT_EQ(second.ShowAll, 1);
    hover.showOnly(nullptr);
    EXPECT_EQ(second.ShowAll, 0);
}

TEST_F(FloorHoverTest, TheNearestFittingMarkedAreaWins) {
    const CHardware& wide = floor.add(
        DeviceType::LocationMarker, {900, 900}, [](CHardware& d) { d.ToJack = "0,0,400,0,400,400,0,400,"; });
    const CHardware& narrow = floor.add(DeviceType::LocationMarker, {900, 800},
                                        [](CHardware& d) { d.ToJack = "100,100,200,100,200,200,100,200,"; });
    shownAt({150, 150});
    EXPECT_EQ(last.SelectedMarker, narrow.RecID);
    shownAt({50, 50});
    EXPECT_EQ(last.SelectedMarker, wide.RecID);
    shownAt({450, 50});
    EXPECT_EQ(last.SelectedMarker, 0);
    floor.doc.setSelected(narrow, true);
    shownAt({50, 50});
    EXPECT_TRUE(last.selectedSeen);
}

} // namespace

} // namespace mirovane
