#include "ui/floor/FloorIndex.h"

#include "tests/ui/floor/FloorFixture.h"
#include "ui/floor/HoverRule.h"

#include <algorithm>
#include <climits>
#include <random>

namespace mirovane {

namespace {

class FloorIndexTest : public testing::Test {
protected:
    FloorIndex::Devices walked(const FloorIndex::Area& area) const {
        FloorIndex::Devices found;
        for (std::size_t i = 0; i < floor.doc.size(); ++i) {
            const CHardware& record = floor.doc.at(i);
            const MapPoint at = record.Position;
            if (record.onFloor() && at.x >= area.left && at.x <= area.right && at.y >= area.top &&
                at.y <= area.bottom)
                found.push_back(&record);
        }
        return found;
    }
    FloorIndex::Devices indexed(const FloorIndex::Area& area) const {
        FloorIndex::Devices found = floor.index.devicesIn(area);
        floor.index.inListOrder(found);
        return found;
    }

    const CHardware* hover(QPoint at, bool synthetic = false) {
        lastHover = hoverAt(floor.doc, floor.index, floor.icons.sizes(), at, synthetic);
        return lastHover.shown;
    }

    test::Floor floor;
    Hover lastHover;
};

TEST_F(FloorIndexTest, AnswersAsAWalkThroughTheListDoes) {
    std::mt19937 random(5);
    const auto coordinate = [&random]() -> std::int32_t {
        switch (random() % 12) {
        case 0:
            return INT_MIN;
        case 1:
            return INT_MAX;
        default:
            return static_cast<std::int32_t>(random() % 3000) - 1000;
        }
    };
    for (int i = 0; i < 300; ++i)
        floor.add(1 + static_cast<int>(random() % 13), {coordinate(), coordinate()});
    for (int round = 0; round < 400; ++round) {
        const CHardware& device = floor.doc.at(random() % floor.doc.size());
        switch (random() % 5) {
        case 0:
            floor.doc.edit(device, [&](CHardware& d) { d.Position = {coordinate(), coordinate()}; });
            break;
        case 1:
            floor.doc.edit(device, [](CHardware& d) { d.Type += d.Type > 1000 ? -1000 : 1000; });
            break;
        case 2:
            floor.doc.exchange(0, random() % floor.doc.size());
            break;
        case 3:
            floor.doc.setSelected(device, true);
            break;
        default:
            floor.doc.remove(device);
            floor.add(3, {coordinate(), coordinate()});
        }
        const FloorIndex::Area area{coordinate(), coordinate(), std::int64_t{coordinate()} + 900, INT_MAX};
        ASSERT_EQ(indexed(area), walked(area)) << round;
    }
    floor.doc.newDatafile();
    EXPECT_EQ(floor.index.size(), 0U);
    EXPECT_TRUE(floor.index.selected().empty());
}

TEST_F(FloorIndexTest, RepeatedRecordIDsKeepAStableOrder) {
    for (int i = 0; i < 3; ++i) {
        CHardware twin;
        twin.Type = 2;
        twin.RecID = 7;
        twin.Position = {10, 10};
        floor.doc.append(twin);
    }
    const FloorIndex::Area all{0, 0, 100, 100};
    EXPECT_EQ(indexed(all), walked(all));
}

TEST_F(FloorIndexTest, HoverTakesTheTopmostVisibleDevice) {
    const CHardware& below = floor.add(DeviceType::Computer, {100, 100});
    const CHardware& above = floor.add(DeviceType::Printer, {110, 110});
    EXPECT_EQ(hover({115, 115}), &above);
    EXPECT_EQ(hover({100, 100}), &below);
    EXPECT_EQ(hover({99, 100}), nullptr);
    floor.doc.display().VisibleTypes = ~(1 << (DeviceType::Printer - 1));
    EXPECT_EQ(hover({115, 115}), &below);
}

TEST_F(FloorIndexTest, ASelectedDeviceAboveTheOneUnderThePointerKeepsItsLabels) {
    const CHardware& first = floor.add(DeviceType::Computer, {100, 100});
    const CHardware& second = floor.add(DeviceType::Computer, {300, 100});
    floor.doc.setSelected(second, true);
    EXPECT_EQ(hover({110, 110}), &second);
    EXPECT_TRUE(lastHover.selectedSeen);
    EXPECT_EQ(hover({110, 110}, true), &first) << "a made-up move looks under the pointer only";
    floor.doc.setSelected(second, false);
    floor.doc.setSelected(first, true);
    EXPECT_EQ(hover({310, 110}), &second);
    EXPECT_FALSE(lastHover.selectedSeen);

    EXPECT_TRUE(showOnly(floor.doc, floor.index, &first));
    EXPECT_TRUE(showOnly(floor.doc, floor.index, &second));
    EXPECT_FALSE(showOnly(floor.doc, floor.index, &second));
    EXPECT_EQ(first.ShowAll, 0);
    EXPECT_EQ(second.ShowAll, 1);
}

TEST_F(FloorIndexTest, TheNearestFittingMarkedAreaWins) {
    const CHardware& wide = floor.add(DeviceType::LocationMarker, {900, 900},
                                      [](CHardware& d) { d.ToJack = "0,0,400,0,400,400,0,400,"; });
    const CHardware& narrow = floor.add(DeviceType::LocationMarker, {900, 800},
                                        [](CHardware& d) { d.ToJack = "100,100,200,100,200,200,100,200,"; });
    hover({150, 150});
    EXPECT_EQ(lastHover.SelectedMarker, narrow.RecID);
    hover({50, 50});
    EXPECT_EQ(lastHover.SelectedMarker, wide.RecID);
    hover({450, 50});
    EXPECT_EQ(lastHover.SelectedMarker, 0);
    floor.doc.setSelected(narrow, true);
    hover({50, 50});
    EXPECT_TRUE(lastHover.selectedSeen);
}

} // namespace

} // namespace mirovane
