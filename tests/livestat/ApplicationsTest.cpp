#include "livestat/Applications.h"

#include "tests/model/DocumentFixture.h"

namespace mirovane {
namespace {

class Applications : public test::DocumentFixture {
protected:
    const CHardware* entry(bool onMenu, const std::string& name, const std::string& command) {
        const CHardware* added = addApplication(doc);
        changeApplication(doc, *added, {onMenu, name, command});
        return added;
    }
};

TEST_F(Applications, EntriesKeepTheirOrderThroughTheDatafile) {
    makeFloor(1);
    const CHardware* first = entry(true, "Ping", "ping $mvI");
    entry(false, "Hidden", "x");
    doc.addDevice(DeviceType::Printer);
    entry(true, "Remote", "xfreerdp /v:$mvI");
    doc.remove(*first);
    entry(true, "Ping", "ping -c 4 $mvI");
    EXPECT_TRUE(doc.modified());
    ASSERT_FALSE(doc.save());

    ASSERT_FALSE(other.open(path));
    EXPECT_EQ(applicationRecords(other).size(), 3U);
    EXPECT_EQ(applicationsOnMenu(other), (std::vector<ApplicationValues>{{true, "Remote", "xfreerdp /v:$mvI"},
                                                                         {true, "Ping", "ping -c 4 $mvI"}}));
    // A new entry starts empty and off the menu.
    EXPECT_EQ(applicationValues(*addApplication(other)), ApplicationValues{});
}

TEST_F(Applications, TheSecondOfTwoEqualEntriesIsTheOneThatChanges) {
    entry(true, "Same", "same");
    const CHardware* second = entry(true, "Same", "same");
    changeApplication(doc, *second, {true, "Other", "same"});
    EXPECT_EQ(applicationsOnMenu(doc).at(0).name, "Same");
    EXPECT_EQ(applicationsOnMenu(doc).at(1).name, "Other");
}

TEST_F(Applications, RunOnSelectedDevicesOfTheFloorMapOnly) {
    const CHardware* last = doc.addDevice(DeviceType::Printer);
    doc.addDevice(DeviceType::Computer);
    doc.setSelected(*doc.addDevice(DeviceType::Computer + DeviceType::discoveredOffset), true);
    const CHardware* marker = doc.addDevice(DeviceType::LocationMarker);
    EXPECT_TRUE(applicationDevices(doc).empty());
    doc.setSelected(*marker, true);
    doc.setSelected(*last, true);
    const auto devices = applicationDevices(doc);
    ASSERT_EQ(devices.size(), 2U);
    EXPECT_EQ(devices[0].RecID, last->RecID);
    EXPECT_EQ(devices[1].RecID, marker->RecID);
}

} // namespace
} // namespace mirovane
