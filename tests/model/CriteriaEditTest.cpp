#include "model/CriteriaEdit.h"

#include "model/records/Criteria.h"
#include "tests/model/DocumentFixture.h"

namespace mirovane {
namespace {

using CriteriaEditTest = test::DocumentFixture;

TEST_F(CriteriaEditTest, BringsWhatBelongsToTheAction) {
    link.newDatafile();
    const auto row = [this](int number) {
        return criteriaFromRecord(*doc.criteria(DeviceType::Camera, number));
    };
    for (const int number : {0, 4}) {
        setCriteria(doc, DeviceType::Camera, number, CriteriaColumn::Delimiter, ",");
        setCriteria(doc, DeviceType::Camera, number, CriteriaColumn::FieldPos, "3");
        chooseAction(doc, DeviceType::Camera, number, std::string(Action::SnmpGet));
    }
    EXPECT_EQ(row(0), (CriteriaRow{"SNMPGet", "$mvI", "", 0, "", "On", 0}));
    EXPECT_EQ(row(4), (CriteriaRow{"SNMPGet", "", ",", 3, "", "On", 0}));
    chooseAction(doc, DeviceType::Camera, 11, std::string(Action::WhosLogon));
    EXPECT_EQ(row(11).Argument, "$mvN $mvI");
}

TEST_F(CriteriaEditTest, EditedCriteriaMakeDevicesForgetTheirTextFiles) {
    link.newDatafile();
    const auto stamped = [](CHardware& held) {
        held.RuleStamps.fill(9);
    };
    const CHardware& onFloor = *doc.addDevice(DeviceType::Printer, stamped);
    const CHardware& discovered = *doc.addDevice(DeviceType::Printer + 1000, stamped);
    const CHardware& jack = *doc.addDevice(DeviceType::Jack, stamped);

    setCriteria(doc, DeviceType::Printer, 7, CriteriaColumn::IfMatch, "F");
    EXPECT_EQ(doc.criteria(DeviceType::Printer, 7)->ReminderOn, 0);
    for (std::size_t row = 0; row < onFloor.RuleStamps.size(); ++row)
        EXPECT_EQ(onFloor.RuleStamps[row], row < 7 ? 9 : 0) << row;
    setCriteria(doc, DeviceType::Printer, 1, CriteriaColumn::SearchFor, "x");
    EXPECT_EQ(onFloor.RuleStamps[0], 0);
    EXPECT_EQ(discovered.RuleStamps[0], 9);
    EXPECT_EQ(jack.RuleStamps[11], 9);

    doc.remove(*doc.criteria(DeviceType::Jack, 4));
    setCriteria(doc, DeviceType::Jack, 4, CriteriaColumn::Argument, "$mvN");
    ASSERT_TRUE(doc.criteria(DeviceType::Jack, 4));
    EXPECT_EQ(criteriaFromRecord(*doc.criteria(DeviceType::Jack, 4)).Argument, "$mvN");

    const std::size_t size = doc.size();
    doc.edit(*doc.criteria(DeviceType::LocationMarker, 2), [](CHardware& held) { held.Name = "kept"; });
    resetCriteria(doc);
    EXPECT_EQ(doc.size(), size);
    EXPECT_EQ(doc.criteria(DeviceType::Printer, 1)->MACAddress, "");
    EXPECT_EQ(doc.criteria(DeviceType::LocationMarker, 2)->Name, "kept");
}

} // namespace
} // namespace mirovane
