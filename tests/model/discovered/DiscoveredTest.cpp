#include "model/discovered/DiscoveredEdits.h"
#include "model/discovered/DiscoveredGrid.h"
#include "model/discovered/DiscoveredOrder.h"
#include "model/floor/FloorEdits.h"
#include "tests/model/DocumentFixture.h"

#include <gmock/gmock.h>

namespace mirovane {

namespace {

using testing::ElementsAre;
using Step = DiscoveredGrid::Step;

TEST(DiscoveredGridTest, CellsRowsAndScrolling) {
    const DiscoveredGrid grid{250, 200, 7};
    EXPECT_EQ(grid.columns(), 3);
    EXPECT_EQ(grid.rows(), 3);
    EXPECT_EQ(grid.ScrollMax(), 160);
    EXPECT_EQ(grid.cell(5), (GridPoint{160, 120}));
    EXPECT_EQ((DiscoveredGrid{79, 10, 4}).columns(), 1);
    EXPECT_EQ((DiscoveredGrid{250, 400, 7}).ScrollMax(), 0);
    EXPECT_EQ(grid.scrolledTo(6, 0), 160) << "down to the last row";
    EXPECT_EQ(grid.scrolledTo(0, 160), 0);
    EXPECT_EQ(grid.scrolledTo(3, 60), 60) << "in view already";
    const auto seen = grid.inRows(130, 239);
    ASSERT_TRUE(seen);
    EXPECT_EQ(seen->first, 3);
    EXPECT_EQ(seen->last, 5);
    EXPECT_EQ(grid.inRows(119, 400)->last, 6);
    EXPECT_FALSE(grid.inRows(360, 500));
    EXPECT_FALSE((DiscoveredGrid{250, 200, 0}).inRows(0, 200));
}

TEST(DiscoveredGridTest, KeysStayInTheGrid) {
    const DiscoveredGrid grid{250, 200, 7};
    const std::tuple<int, Step, int> rows[] = {
        {0, Step::Left, 0},   {2, Step::Right, 3},    {6, Step::Right, 6},    {1, Step::Down, 4},
        {5, Step::Down, 5},   {4, Step::Up, 1},       {1, Step::Up, 1},       {5, Step::PageUp, 2},
        {1, Step::PageUp, 1}, {2, Step::PageDown, 5}, {5, Step::PageDown, 6}, {3, Step::Home, 0},
        {3, Step::End, 6},
    };
    for (const auto& [from, step, to] : rows)
        EXPECT_EQ(grid.stepped(from, step), to) << from << " " << static_cast<int>(step);
}

TEST(DiscoveredOrderTest, NumbersInAddressesCountAsNumbers) {
    std::vector<std::string> addresses{"",        "printer-2", "10.0.0.10",  "printer-10",
                                       "9.0.0.1", "10.0.0.9",  "10.0.0.009", "10.0.0.9:80"};
    std::ranges::stable_sort(addresses, addressBefore);
    EXPECT_THAT(addresses, ElementsAre("9.0.0.1", "10.0.0.9", "10.0.0.009", "10.0.0.9:80", "10.0.0.10",
                                       "printer-2", "printer-10", ""));
}

class DiscoveredEditsTest : public test::DocumentFixture {
protected:
    DiscoveredEditsTest() { makeFloor(3); }

    const CHardware& device(std::int32_t recID) { return *doc.findDevice(recID); }
    void run(const DiscoveredEdit& edit) { edit.change(doc); }
    void moveOff(const std::vector<DeviceKey>& devices) { moveToMisc(devices).change(doc); }
};

TEST_F(DiscoveredEditsTest, ThereAndBackOnlyTheTypeAndThePlaceChange) {
    const std::vector<DeviceKey> two{{1, 0}, {3, 0}};
    const CHardware before = device(3);
    clock.advance(std::chrono::hours(1));
    moveOff(two);
    EXPECT_EQ(device(3).Type, before.Type + 1000);
    EXPECT_EQ(device(3).Modified, doc.now());
    EXPECT_EQ(device(3).Position, before.Position);
    const DiscoveredEdit back = moveToFloor(two, {{70, 80}});
    EXPECT_EQ(back.question, "Do you want to move 2 device(s) to the floor?");
    EXPECT_EQ(back.done, "Moved 2 device(s) to the floor");
    run(back);
    run(back); // devices that are there stay
    for (const std::int32_t recID : {1, 3}) {
        EXPECT_EQ(device(recID).Position, (MapPoint{70, 80})) << "all on one point";
        EXPECT_EQ(device(recID).Type, DeviceType::Computer);
    }
    EXPECT_EQ(device(2).Position, MapPoint());
    EXPECT_EQ(device(3).Name, before.Name);
}

TEST_F(DiscoveredEditsTest, DroppedDevicesGetAPlaceEach) {
    const std::vector<DeviceKey> all{{1, 0}, {2, 0}, {3, 0}};
    moveOff(all);
    run(moveToFloor(all, droppedPlaces({10, 20}, 3)));
    EXPECT_EQ(device(1).Position, (MapPoint{10, 20}));
    EXPECT_EQ(device(2).Position, (MapPoint{70, 20}));
    EXPECT_EQ(device(3).Position, (MapPoint{10, 80}));
}

TEST_F(DiscoveredEditsTest, ATypeIsGivenWhereTheDeviceIs) {
    moveOff({{1, 0}});
    const DiscoveredEdit printers = changeType({{1, 0}, {2, 0}}, DeviceType::Printer);
    EXPECT_EQ(printers.request.name, "Make 2 devices Printer");
    run(printers);
    EXPECT_EQ(device(1).Type, DeviceType::Printer + 1000);
    EXPECT_EQ(device(2).Type, DeviceType::Printer);
    EXPECT_EQ(device(1).Priority, newDevicePriority(DeviceType::Printer));
}

} // namespace

} // namespace mirovane
