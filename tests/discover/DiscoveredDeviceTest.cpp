#include "discover/DiscoveredDevice.h"

#include "tests/model/DocumentFixture.h"
#include "tests/support/NewFloor.h"

namespace mirovane {
namespace {

constexpr std::uint32_t address = 0x0a000005; // 10.0.0.5

class DiscoveredDeviceTest : public test::DocumentFixture {
protected:
    DiscoveredDeviceTest() { test::newFloor(doc); }

    const CHardware& addDevice(const std::string& ipAddress) {
        return *doc.addDevice(
            DeviceType::Printer, [&](CHardware& device) { device.IPAddress = ipAddress; });
    }

    CKnownAddresses known{doc};
};

TEST_F(DiscoveredDeviceTest, AnAddressIsKnownInEverySpellingThatAPingWouldReach) {
    for (const char* text : {"10.0.0.5", "10.0.0.5>>", "010.000.000.005", " 10.0.0.5 >>"}) {
        const CHardware& device = addDevice(text);
        EXPECT_TRUE(known.contains(address)) << text;
        doc.remove(device);
        EXPECT_FALSE(known.contains(address)) << text;
    }
    addDevice("10.0.0.50");
    addDevice("10.0.0.5 (old)");
    addDevice("");
    addDevice(">>");
    EXPECT_FALSE(known.contains(address));
    EXPECT_FALSE(known.contains(0));
}

TEST_F(DiscoveredDeviceTest, OnlyDevicesMakeAnAddressKnown) {
    CHardware range;
    range.Type = SpecialType::DiscoverRangeRecord;
    range.IPAddress = "10.0.0.5";
    doc.append(range);
    EXPECT_FALSE(known.contains(address));
    doc.addDevice(DeviceType::Computer + DeviceType::discoveredOffset,
                  [](CHardware& device) { device.IPAddress = "10.0.0.5"; });
    EXPECT_TRUE(known.contains(address));
}

TEST_F(DiscoveredDeviceTest, KnownAddressesFollowEveryChange) {
    EXPECT_FALSE(known.contains(address)); // built while the document is empty
    const CHardware& first = addDevice("10.0.0.5");
    const CHardware& second = addDevice("10.0.0.5");
    EXPECT_TRUE(known.contains(address));
    doc.edit(first, [](CHardware& device) { device.IPAddress = "10.0.0.6"; });
    EXPECT_TRUE(known.contains(address)) << "the second device still has it";
    EXPECT_TRUE(known.contains(address + 1));
    doc.remove(second);
    EXPECT_FALSE(known.contains(address));
    test::newFloor(doc);
    EXPECT_FALSE(known.contains(address + 1));
}

TEST_F(DiscoveredDeviceTest, AHostThatAnsweredBecomesANewUnknownDevice) {
    addDevice("10.0.0.1");
    clock.advance(std::chrono::hours(1));
    const CHardware* device = addDiscoveredDevice(doc, address, "printer-7");
    ASSERT_TRUE(device);
    EXPECT_EQ(device->Type, 1009);
    EXPECT_EQ(device->RecID, 2);
    EXPECT_EQ(device->State, DeviceState::On);
    EXPECT_EQ(device->IPAddress, "10.0.0.5");
    EXPECT_EQ(device->Name, "printer-7");
    EXPECT_EQ(device->Comment, "NEW");
    EXPECT_EQ(device->Modified, doc.now());
    EXPECT_EQ(device->Priority, 1);
    EXPECT_EQ(device->Selected, 0);
    EXPECT_TRUE(known.contains(address));
}

} // namespace
} // namespace mirovane
