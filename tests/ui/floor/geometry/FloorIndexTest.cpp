#include "ui/floor/geometry/FloorIndex.h"

#include "tests/support/NewFloor.h"
#include "tests/ui/floor/FloorFixture.h"

#include <algorithm>
#include <climits>
#include <random>

namespace mirovane {

namespace {

class FloorIndexTest : public testing::Test {
protected:
    CFloorIndex::Devices walked(const CFloorIndex::Area& area) const {
        CFloorIndex::Devices found;
        for (std::size_t i = 0; i < floor.doc.size(); ++i) {
            const CHardware& record = floor.doc.at(i);
            const MapPoint at = record.Position;
            if (record.onFloor() && at.x >= area.left && at.x <= area.right && at.y >= area.top &&
                at.y <= area.bottom)
                found.push_back(&record);
        }
        return found;
    }
    std::size_t hoveredInList() const {
        std::size_t count = 0;
        for (std::size_t i = 0; i < floor.doc.size(); ++i)
            count += floor.doc.at(i).onFloor() && floor.doc.at(i).ShowAll ? 1U : 0U;
        return count;
    }
    CFloorIndex::Devices indexed(const CFloorIndex::Area& area) const {
        CFloorIndex::Devices found = floor.index.devicesIn(area);
        floor.index.inListOrder(found);
        return found;
    }

    test::Floor floor;
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
            floor.doc.setShowAll(device, !device.ShowAll);
            break;
        default:
            floor.doc.remove(device);
            floor.add(3, {coordinate(), coordinate()});
        }
        const CFloorIndex::Area area{coordinate(), coordinate(), std::int64_t{coordinate()} + 900, INT_MAX};
        ASSERT_EQ(indexed(area), walked(area)) << round;
        ASSERT_EQ(floor.index.hovered().size(), hoveredInList()) << round;
    }
    test::newFloor(floor.doc);
    EXPECT_EQ(floor.index.size(), 0U);
    EXPECT_TRUE(floor.index.hovered().empty());
}

TEST_F(FloorIndexTest, RepeatedRecordIDsKeepAStableOrder) {
    for (int i = 0; i < 3; ++i) {
        CHardware twin;
        twin.Type = 2;
        twin.RecID = 7;
        twin.Position = {10, 10};
        floor.doc.append(twin);
    }
    const CFloorIndex::Area all{0, 0, 100, 100};
    EXPECT_EQ(indexed(all), walked(all));
}

} // namespace

} // namespace mirovane
