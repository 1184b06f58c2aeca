#include "model/FloorMap.h"
#include "model/records/Criteria.h"
#include "tests/model/DocumentFixture.h"

#include <array>

namespace mirovane {

namespace {

using DocumentTest = test::DocumentFixture;

/// Writes down what it is told.
class Witness final : public DocumentObserver {
public:
    void recordAdded(const CHardware& record) override { tell("added", record); }
    void recordChanged(const CHardware& before, const CHardware& after) override {
        told.push_back("changed " + before.Name + " to " + after.Name);
    }
    void flagsChanged(const CHardware& record) override { tell("flags", record); }
    void recordRemoved(const CHardware& record) override { tell("removed", record); }
    void orderChanged() override { told.push_back("order"); }
    void documentReplaced() override { told.push_back("replaced"); }

    std::vector<std::string> told;

private:
    void tell(const char* what, const CHardware& record) {
        told.push_back(std::string(what) + " " + record.Name);
    }
};

TEST_F(DocumentTest, NewDatafileHoldsSharedSettingsAndCriteria) {
    link.newDatafile();
    ASSERT_EQ(doc.size(), 159U);
    EXPECT_EQ(doc.at(0).Type, SpecialType::VersionRecord);
    EXPECT_EQ(doc.at(0).Modified, doc.now());
    for (std::size_t owner : {1U, 2U}) {
        EXPECT_EQ(doc.at(owner).Name, "host");
        EXPECT_EQ(doc.at(owner).Username, "user");
        EXPECT_EQ(doc.at(owner).State, 0);
    }
    EXPECT_EQ(doc.at(1).Type, SpecialType::LiveStatOwnerRecord);
    EXPECT_EQ(doc.at(3).Type, -100);
    EXPECT_EQ(doc.at(158).Type, -351);
    EXPECT_EQ(criteriaFromRecord(*doc.criteria(1004, 0)).Command, "Ping");
    // 20 times the last one ends, in 32 bits, at a row of the jacks.
    for (const std::int32_t noType : {14, 1000, 1014, 214'749'366})
        EXPECT_EQ(doc.criteria(noType, 0), nullptr) << noType;
    EXPECT_EQ(doc.deviceCount(), 0U);
    EXPECT_EQ(doc.nextRecordID(), 1);
    EXPECT_FALSE(doc.modified());
}

TEST_F(DocumentTest, DevicesTakeTheLowestFreeIDAndKeepTheirPlace) {
    link.newDatafile();
    for (const std::int32_t type :
         {DeviceType::Jack, DeviceType::Computer, DeviceType::Printer, DeviceType::Switch})
        doc.addDevice(type);
    const std::array<DeviceKey, 2> gone = {DeviceKey{3}, DeviceKey{99}};
    EXPECT_EQ(doc.removeDevices(gone), 1U);
    EXPECT_EQ(doc.findDevice(3), nullptr);
    const CHardware* added = doc.addDevice(DeviceType::discoveredOffset + DeviceType::Camera,
                                           [](CHardware& device) { device.Name = "cam"; });
    EXPECT_EQ(added->RecID, 3);
    EXPECT_EQ(added->Priority, 3);
    EXPECT_EQ(added->Modified, doc.now());
    EXPECT_EQ(doc.indexOfDevice(3), doc.size() - 1);
    EXPECT_EQ(doc.findDevice(4)->Type, DeviceType::Switch);
    EXPECT_EQ(doc.nextRecordID(), 5);
}

TEST_F(DocumentTest, ATwinInADamagedFileIsNeverTakenForTheOther) {
    link.newDatafile();
    for (const char* name : {"first", "second", "third"})
        doc.addDevice(DeviceType::Switch, [name](CHardware& device) {
            device.RecID = 7;
            device.Name = name;
        });
    const CHardware& second = *doc.findDevice(DeviceKey{7, 1});
    EXPECT_EQ(second.Name, "second");
    EXPECT_EQ(doc.keyOf(second), (DeviceKey{7, 1}));
    EXPECT_EQ(doc.findDevice(DeviceKey{7, 3}), nullptr);
    doc.setSelected(second, true);
    const std::array<DeviceKey, 2> outer = {DeviceKey{7, 0}, DeviceKey{7, 2}};
    EXPECT_EQ(doc.removeDevices(outer), 2U);
    EXPECT_EQ(doc.findDevice(7), &second);

    doc.addDevice(DeviceType::Switch, [](CHardware& device) { device.RecID = 7; });
    ASSERT_FALSE(link.saveAs(path).failed());
    ASSERT_FALSE(link.reload());
    EXPECT_EQ(doc.findDevice(DeviceKey{7, 0})->Selected, 1);
    EXPECT_EQ(doc.findDevice(DeviceKey{7, 1})->Selected, 0);
}

TEST_F(DocumentTest, EveryChangeIsToldOnceWithBeforeAndAfter) {
    link.newDatafile();
    Witness witness;
    doc.addObserver(witness);
    const CHardware& device = *doc.addDevice(DeviceType::Computer, [](CHardware& held) { held.Name = "a"; });
    const auto order = doc.orderRevision();
    clock.advance(std::chrono::seconds(60));
    doc.edit(device, [](CHardware& held) { held.Name = "b"; });
    EXPECT_NE(device.Modified, doc.now());
    doc.edit(
        device, [](CHardware& held) { held.Name = "b"; });
    doc.editByUser(device, [](CHardware& held) { held.Name = "c"; });
    EXPECT_EQ(device.Modified, doc.now());
    EXPECT_EQ(doc.orderRevision(), order);
    doc.setSelected(device, true);
    doc.setSelected(device, true);
    doc.exchange(0, doc.size() - 1);
    doc.remove(device);
    link.newDatafile();
    doc.removeObserver(witness);
    doc.addDevice(DeviceType::Jack);
    const std::vector<std::string> expected = {"added a", "changed a to b", "changed b to c", "flags c",
                                               "order",   "removed c",      "replaced"};
    EXPECT_EQ(witness.told, expected);
}

TEST_F(DocumentTest, ChangedKeysAreFoundUnderTheNewOnes) {
    link.newDatafile();
    const CHardware& device = *doc.addDevice(DeviceType::Unknown);
    const auto order = doc.orderRevision();
    doc.edit(device, [](CHardware& held) { held.RecID = 40; });
    EXPECT_EQ(doc.findDevice(40), &device);
    EXPECT_EQ(doc.findDevice(1), nullptr);
    doc.edit(device, [](CHardware& held) { held.Type += DeviceType::discoveredOffset; });
    EXPECT_EQ(doc.findDevice(40), &device);
    EXPECT_GT(doc.orderRevision(), order);
    doc.exchange(1, *doc.indexOfDevice(40));
    EXPECT_EQ(doc.indexOfDevice(40), 1U);
    EXPECT_EQ(doc.findSpecial(SpecialType::LiveStatOwnerRecord), &doc.at(doc.size() - 1));
    CHardware stranger;
    EXPECT_THROW(doc.remove(stranger), std::logic_error);
}

TEST_F(DocumentTest, FullDatafileRefusesOneMoreAndSaysSo) {
    link.newDatafile();
    while (doc.size() < Datafile::maxRecords)
        doc.addDevice(DeviceType::Jack);
    EXPECT_EQ(doc.addDevice(DeviceType::Jack), nullptr);
    EXPECT_NE(lastLine.find("full"), std::string::npos);
    EXPECT_EQ(doc.size(), Datafile::maxRecords);
    ASSERT_FALSE(link.saveAs(path).failed());
    EXPECT_FALSE(otherLink.open(path));
    EXPECT_EQ(other.size(), Datafile::maxRecords);

    // Without a VersionRecord no station could read it, and there is no room for one.
    doc.edit(doc.at(0), [](CHardware& held) { held.Type = DeviceType::Jack; });
    const std::string before = test::readBytes(path);
    const auto error = link.save().error;
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::TooLarge);
    EXPECT_EQ(test::readBytes(path), before);
}

TEST_F(DocumentTest, TheFloorMapsRecordIsMadeOnce) {
    makeFloor(0);
    EXPECT_EQ(floorMapOf(doc), FloorMapValues());
    EXPECT_TRUE(setFloorMap(doc, {"maps/floor.bmp", "photos"}));
    EXPECT_TRUE(setFloorMap(doc, {"other.bmp", "photos"}));
    EXPECT_EQ(doc.size(), 160U);
    EXPECT_EQ(floorMapOf(doc), (FloorMapValues{"other.bmp", "photos"}));
}

} // namespace

} // namespace mirovane
