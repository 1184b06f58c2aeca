#include "model/floor/FloorEdits.h"

#include "tests/model/DocumentFixture.h"

#include <gmock/gmock.h>

namespace mirovane {

namespace {

using testing::ElementsAre;

class FloorEditsTest : public test::DocumentFixture {
protected:
    FloorEditsTest() { link.newDatafile(); }

    const CHardware& add(std::int32_t type, const std::string& name, MapPoint at = {}) {
        return *doc.addDevice(
            type,
            [&](CHardware& device) {
                device.Name = name;
                device.Position = at;
            });
    }

    void make(const FloorEdit& edit) { edit.change(doc); }

    const CHardware& last() const { return doc.at(doc.size() - 1); }
};

TEST_F(FloorEditsTest, ANewDeviceIsSelectedAlone) {
    const CHardware& before = add(DeviceType::Router, "r");
    doc.setSelected(before, true);
    const FloorEdit edit = addDevice(DeviceType::Laptop, {30, 40});
    EXPECT_EQ(edit.request.name, "Add Laptop");
    make(edit);
    EXPECT_EQ(last().Type, DeviceType::Laptop);
    EXPECT_EQ(last().Position, (MapPoint{30, 40}));
    EXPECT_EQ(last().Priority, 5);
    EXPECT_EQ((std::vector{before.Selected, last().Selected}), (std::vector{0, 1}));
    EXPECT_EQ(addedMessage(DeviceType::CardModule), "Added Card Module");
    EXPECT_EQ(addedMessage(DeviceType::Unknown), "Added Generic device");
}

TEST_F(FloorEditsTest, DevicesThatWentMeanwhileAreSkipped) {
    const CHardware& stays = add(DeviceType::Router, "r");
    const std::vector<DeviceKey> keys = {{stays.RecID, 0}, {99, 0}};
    make(moveDevices("Move", {{{99, 0}, {1, 1}}, {{stays.RecID, 0}, {7, 8}}}));
    EXPECT_EQ(stays.Position, (MapPoint{7, 8}));
    EXPECT_EQ(moveDevices("Align", {{{1, 0}, {}}}).request.name, "Align 1 device");
    make(moveToMisc(keys));
    EXPECT_EQ(stays.Type, DeviceType::Router + DeviceType::discoveredOffset);
    make(moveToMisc(keys));
    EXPECT_EQ(stays.Type, DeviceType::Router + DeviceType::discoveredOffset) << "it is there already";
    EXPECT_EQ(deleteDevices(keys).request.name, "Delete 2 devices");
    make(deleteDevices(keys));
    EXPECT_EQ(doc.deviceCount(), 0U);
}

TEST_F(FloorEditsTest, ResettingKeepsWhatIsKnownOfFilesOnlyWhereItHeld) {
    const CHardware& holds = add(DeviceType::Router, "r");
    const CHardware& stale = add(DeviceType::Router, "s");
    for (const CHardware* device : {&holds, &stale})
        doc.edit(
            *device,
            [](CHardware& held) {
                held.State = DeviceState::Off;
                held.StampsModified = held.Modified = 1000;
            });
    doc.edit(stale, [](CHardware& held) { held.StampsModified = 999; });
    make(resetLiveStatus({{holds.RecID, 0}, {stale.RecID, 0}}));
    EXPECT_EQ(holds.State, DeviceState::Def);
    EXPECT_EQ(holds.Modified, doc.now());
    EXPECT_EQ(holds.StampsModified, doc.now());
    EXPECT_EQ(stale.StampsModified, 999);
    EXPECT_EQ(stale.Modified, doc.now());
}

TEST_F(FloorEditsTest, AMarkersAreaGrowsPointByPoint) {
    const CHardware& marker = add(DeviceType::LocationMarker, "");
    doc.edit(marker, [](CHardware& held) { held.ToJack = "9,9,"; });
    make(addMarkerPoint(marker.RecID, {1, -2}, true));
    make(addMarkerPoint(marker.RecID, {30, 40}, false));
    EXPECT_EQ(marker.ToJack, "1,-2,30,40,");
}

TEST_F(FloorEditsTest, DuplicatesCountUpAndLeaveBehindWhatBelongsToOneMachine) {
    const CHardware& pc = add(DeviceType::Computer, "pc-098", {10, 20});
    doc.edit(pc, [](CHardware& held) {
        held.IPAddress = "10.0.0.1";
        held.MACAddress = "00:11";
        held.Username = "anna";
        held.State = DeviceState::On;
        held.ReminderOn = 1;
        held.ToDo = "call";
        held.Comment = "desk";
    });
    const CHardware& taken = add(DeviceType::Computer, "pc-099");
    const CHardware& jack = add(DeviceType::Jack, "");
    doc.edit(jack, [](CHardware& held) { held.ToJack = "A9"; });
    const CHardware& marker = add(DeviceType::LocationMarker, "hall");
    doc.edit(marker, [](CHardware& held) { held.ToJack = "0,0,10,0,10,10,"; });
    std::size_t added = 0;
    make(addDevices("Duplicate", duplicates(doc, {&pc, &taken, &jack, &marker}, {16, 16}), added));
    ASSERT_EQ(added, 4U);
    const CHardware& copy = *doc.findDevice(5);
    EXPECT_EQ(copy.Name, "pc-100") << "pc-099 is taken";
    EXPECT_EQ(doc.findDevice(6)->Name, "pc-101");
    EXPECT_EQ(copy.Position, (MapPoint{26, 36}));
    EXPECT_EQ(copy.Comment, "desk");
    EXPECT_EQ(copy.IPAddress + copy.MACAddress + copy.Username + copy.ToDo, "");
    EXPECT_EQ((std::vector{copy.State, copy.ReminderOn, copy.Selected}), (std::vector{0, 0, 1}));
    EXPECT_EQ(doc.findDevice(7)->ToJack, "A10");
    EXPECT_EQ(doc.findDevice(8)->ToJack, "16,16,26,16,26,26,");
    EXPECT_EQ(doc.findDevice(8)->Name, "hall") << "there is no number";
}

} // namespace

} // namespace mirovane
