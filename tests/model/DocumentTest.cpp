#include "model/Document.h"

#include "model/Criteria.h"
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
    doc.newDatafile();
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
    EXPECT_FALSE(doc.modified() || doc.pendingChanges());
}

TEST_F(DocumentTest, DevicesTakeTheLowestFreeIDAndKeepTheirPlace) {
    doc.newDatafile();
    for (const std::int32_t type :
         {DeviceType::Jack, DeviceType::Computer, DeviceType::Printer, DeviceType::Switch})
        doc.addDevice(type);
    const std::array<std::int32_t, 2> gone = {3, 99};
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

TEST_F(DocumentTest, EveryChangeIsToldOnceWithBeforeAndAfter) {
    doc.newDatafile();
    Witness witness;
    doc.addObserver(witness);
    const CHardware& device = *doc.addDevice(DeviceType::Computer, [](CHardware& held) { held.Name = "a"; });
    const auto order = doc.orderRevision();
    clock.advance(std::chrono::seconds(60));
    doc.edit(device, [](CHardware& held) { held.Name = "b"; });
    EXPECT_NE(device.Modified, doc.now());
    doc.edit(device, [](CHardware& held) { held.Name = "b"; });
    doc.editByUser(device, [](CHardware& held) { held.Name = "c"; });
    EXPECT_EQ(device.Modified, doc.now());
    EXPECT_EQ(doc.orderRevision(), order);
    doc.setSelected(device, true);
    doc.setSelected(device, true);
    doc.exchange(0, doc.size() - 1);
    doc.remove(device);
    doc.newDatafile();
    doc.removeObserver(witness);
    doc.addDevice(DeviceType::Jack);
    const std::vector<std::string> expected = {"added a", "changed a to b", "changed b to c", "flags c",
                                               "order",   "removed c",      "replaced"};
    EXPECT_EQ(witness.told, expected);
}

TEST_F(DocumentTest, ChangedKeysAreFoundUnderTheNewOnes) {
    doc.newDatafile();
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

TEST_F(DocumentTest, EditedCriteriaMakeDevicesForgetTheirTextFiles) {
    doc.newDatafile();
    const auto stamped = [](CHardware& held) {
        held.RuleStamps.fill(9);
    };
    const CHardware& onFloor = *doc.addDevice(DeviceType::Printer, stamped);
    const CHardware& discovered = *doc.addDevice(DeviceType::Printer + 1000, stamped);
    const CHardware& jack = *doc.addDevice(DeviceType::Jack, stamped);

    doc.setCriteria(DeviceType::Printer, 7, static_cast<int>(CriteriaColumn::IfMatch), "F");
    EXPECT_EQ(doc.criteria(DeviceType::Printer, 7)->ReminderOn, 0);
    for (std::size_t row = 0; row < onFloor.RuleStamps.size(); ++row)
        EXPECT_EQ(onFloor.RuleStamps[row], row < 7 ? 9 : 0) << row;
    doc.setCriteria(DeviceType::Printer, 1, static_cast<int>(CriteriaColumn::SearchFor), "x");
    EXPECT_EQ(onFloor.RuleStamps[0], 0);
    EXPECT_EQ(discovered.RuleStamps[0], 9);
    EXPECT_EQ(jack.RuleStamps[11], 9);

    doc.remove(*doc.criteria(DeviceType::Jack, 4));
    doc.setCriteria(DeviceType::Jack, 4, static_cast<int>(CriteriaColumn::Argument), "$mvN");
    ASSERT_TRUE(doc.criteria(DeviceType::Jack, 4));
    EXPECT_EQ(criteriaFromRecord(*doc.criteria(DeviceType::Jack, 4)).Argument, "$mvN");

    const std::size_t size = doc.size();
    doc.edit(*doc.criteria(DeviceType::LocationMarker, 2), [](CHardware& held) { held.Name = "kept"; });
    doc.resetCriteria();
    EXPECT_EQ(doc.size(), size);
    EXPECT_EQ(doc.criteria(DeviceType::Printer, 1)->MACAddress, "");
    EXPECT_EQ(doc.criteria(DeviceType::LocationMarker, 2)->Name, "kept");
}

TEST_F(DocumentTest, FullDatafileRefusesOneMoreAndSaysSo) {
    doc.newDatafile();
    while (doc.size() < Datafile::maxRecords)
        doc.addDevice(DeviceType::Jack);
    EXPECT_EQ(doc.addDevice(DeviceType::Jack), nullptr);
    EXPECT_NE(lastLine.find("full"), std::string::npos);
    EXPECT_EQ(doc.size(), Datafile::maxRecords);
    ASSERT_FALSE(doc.saveAs(path));
    EXPECT_FALSE(other.open(path));
    EXPECT_EQ(other.size(), Datafile::maxRecords);

    // Without a VersionRecord no station could read it, and there is no room for one.
    doc.edit(doc.at(0), [](CHardware& held) { held.Type = DeviceType::Jack; });
    const std::string before = test::readBytes(path);
    const auto error = doc.save();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->kind, FileError::Kind::TooLarge);
    EXPECT_EQ(test::readBytes(path), before);
}

TEST_F(DocumentTest, FloorMapIsFoundBesideTheDatafile) {
    makeFloor(0);
    EXPECT_EQ(doc.floorMapPath(), "");
    EXPECT_TRUE(doc.setFloorMapPath("maps/floor.bmp"));
    EXPECT_TRUE(doc.setPhotoFolder("photos"));
    EXPECT_EQ(doc.size(), 160U);
    EXPECT_EQ(doc.floorMapPath(), "maps/floor.bmp");
    EXPECT_EQ(doc.resolvedFloorMapPath(), folder.file("maps/floor.bmp"));
    EXPECT_EQ(doc.resolvedPhotoFolder(), folder.file("photos"));
    doc.setFloorMapPath("/srv/floor.bmp");
    EXPECT_EQ(doc.resolvedFloorMapPath(), "/srv/floor.bmp");

    test::writeBytes(folder.file("second.bmp"), "BM");
    for (const char* foreign :
         {"C:\\plans\\second.bmp", "\\\\server\\share\\second.bmp", "d:/plans/second.bmp"}) {
        doc.setFloorMapPath(foreign);
        EXPECT_EQ(doc.resolvedFloorMapPath(), folder.file("second.bmp")) << foreign;
    }
    doc.setFloorMapPath("C:\\plans\\none.bmp");
    EXPECT_EQ(doc.resolvedFloorMapPath(), "C:\\plans\\none.bmp");
}

} // namespace

} // namespace mirovane
