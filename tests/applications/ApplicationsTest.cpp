#include "applications/Applications.h"

#include "tests/model/DocumentFixture.h"

namespace mirovane {
namespace {

class ApplicationsTest : public test::DocumentFixture {
protected:
    const CHardware* entry(bool onMenu, const std::string& name, const std::string& command) {
        const CHardware* added = addApplication(doc);
        changeApplication(doc, *added, {onMenu, name, command});
        return added;
    }
};

TEST_F(ApplicationsTest, EntriesKeepTheirOrderThroughTheDatafile) {
    makeFloor(1);
    const CHardware* first = entry(true, "Ping", "ping $mvI");
    entry(false, "Hidden", "x");
    doc.addDevice(DeviceType::Printer);
    entry(true, "Remote", "xfreerdp /v:$mvI");
    doc.remove(*first);
    entry(true, "Ping", "ping -c 4 $mvI");
    EXPECT_TRUE(doc.modified());
    ASSERT_FALSE(link.save().failed());

    ASSERT_FALSE(otherLink.open(path));
    EXPECT_EQ(applicationRecords(other).size(), 3U);
    EXPECT_EQ(applicationsOnMenu(other), (std::vector<ApplicationValues>{{true, "Remote", "xfreerdp /v:$mvI"},
                                                                         {true, "Ping", "ping -c 4 $mvI"}}));
    // A new entry starts empty and off the menu.
    EXPECT_EQ(applicationFromRecord(*addApplication(other)), ApplicationValues{});
}

TEST_F(ApplicationsTest, TheSecondOfTwoEqualEntriesIsTheOneThatChanges) {
    entry(true, "Same", "same");
    const CHardware* second = entry(true, "Same", "same");
    changeApplication(doc, *second, {true, "Other", "same"});
    EXPECT_EQ(applicationsOnMenu(doc).at(0).name, "Same");
    EXPECT_EQ(applicationsOnMenu(doc).at(1).name, "Other");
}

TEST_F(ApplicationsTest, RunOnSelectedDevicesOfTheFloorMapOnly) {
    const CHardware* last = doc.addDevice(DeviceType::Printer);
    doc.addDevice(DeviceType::Computer);
    CSelection selection(doc);
    selection.add(*doc.addDevice(DeviceType::Computer + DeviceType::discoveredOffset));
    const CHardware* marker = doc.addDevice(DeviceType::LocationMarker);
    EXPECT_TRUE(applicationDevices(selection).empty());
    selection.add(*marker);
    selection.add(*last);
    const auto devices = applicationDevices(selection);
    ASSERT_EQ(devices.size(), 2U);
    EXPECT_EQ(devices[0].RecID, last->RecID);
    EXPECT_EQ(devices[1].RecID, marker->RecID);
}

} // namespace
} // namespace mirovane
