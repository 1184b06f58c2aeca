#include "model/records/Criteria.h"

#include <gtest/gtest.h>
#include <vector>

namespace mirovane {

namespace {

CriteriaRow defaultsOf(std::int32_t type, int row) {
    CHardware record;
    record.Type = criteriaRecordType(type, row);
    applyCriteriaDefaults(record);
    return criteriaFromRecord(record);
}

TEST(CriteriaTest, CodesOfTypesAndRows) {
    EXPECT_EQ(criteriaRecordType(DeviceType::Jack, 0), -100);
    EXPECT_EQ(criteriaRecordType(DeviceType::LocationMarker, 11), -351);
    EXPECT_EQ(criteriaRecordType(1002, 11), -131);
    EXPECT_EQ(criteriaTypeOf(-131), DeviceType::Computer);
    EXPECT_EQ(criteriaRowOf(-131), 11);
    EXPECT_TRUE(isCriteriaRecordType(-100) && isCriteriaRecordType(-351) && isCriteriaRecordType(-131));
    for (const std::int32_t other : {-6, -99, -112, -119, -352, -371, -400, 100, 0})
        EXPECT_FALSE(isCriteriaRecordType(other)) << other;
}

TEST(CriteriaTest, ARowKeepsItsPlacesInTheRecord) {
    CHardware record;
    toRecord({"Command", "Argument", "Delimiter", 3, "SearchFor", "Condition", 1}, record);
    for (const auto& [field, value] : {std::pair{"Name", record.Name},
                                       {"IPAddress", record.IPAddress},
                                       {"Username", record.Username},
                                       {"MACAddress", record.MACAddress},
                                       {"Comment", record.Comment}})
        EXPECT_EQ(criteriaMeaning(field), value) << "messages say the same as the record means";
    EXPECT_EQ(record.State, 3);
    EXPECT_EQ(record.ReminderOn, 1);
    EXPECT_EQ(criteriaMeaning("ToJack"), "ToJack") << "holds nothing of the row";
    EXPECT_EQ(criteriaFromRecord(record),
              (CriteriaRow{"Command", "Argument", "Delimiter", 3, "SearchFor", "Condition", 1}));
}

/// A new datafile pings everything, asks computers alone for their address and user, and searches jacks.
TEST(CriteriaTest, DefaultsOfANewDatafile) {
    EXPECT_EQ(defaultsOf(DeviceType::Jack, 0).Command, Action::MatchToJack);
    EXPECT_EQ(defaultsOf(DeviceType::Switch, 0), (CriteriaRow{"Ping", "$mvI", "", 0, "", "On", 0}));
    EXPECT_EQ(defaultsOf(DeviceType::Laptop, 0).Argument, "$mvN $mvI");
    EXPECT_EQ(defaultsOf(DeviceType::Computer, 2),
              (CriteriaRow{"NS Lookup", "$mvN", "", 0, "", "On/Off", 0}));
    EXPECT_EQ(defaultsOf(DeviceType::Laptop, 3).Command, Action::WhosLogon);
    EXPECT_EQ(defaultsOf(DeviceType::Printer, 2).Command, Action::DoNothing);
    EXPECT_EQ(defaultsOf(DeviceType::Printer, 3).Command, Action::DoNothing);
    EXPECT_EQ(defaultsOf(DeviceType::Computer, 6).IfMatch, 0);
    EXPECT_EQ(defaultsOf(DeviceType::Computer, 7).IfMatch, 1);
    EXPECT_EQ(defaultsOf(DeviceType::LocationMarker, 0), CriteriaRow{}) << "its rows are never used";
}

TEST(CriteriaTest, FieldPositionIsTheLeadingNumber) {
    const std::vector<std::pair<std::string, std::int32_t>> cases = {
        {"3", 3},   {" 12abc", 12}, {"", 0},  {"abc", 0}, {"x3", 0},
        {"-2", -2}, {"+4.7", 4},    {"-", 0}, {"  ", 0},  {"99999999999", 2147483647}};
    for (const auto& [text, expected] : cases) {
        CHardware record;
        record.State = 77;
        setCriteriaValue(record, CriteriaColumn::FieldPos, text);
        EXPECT_EQ(record.State, expected) << text;
    }
}

TEST(CriteriaTest, ActionsOfferedByARow) {
    EXPECT_EQ(actionsForRow(DeviceType::Jack, 0).back(), Action::MatchToJack);
    EXPECT_EQ(actionsForRow(1001, 0).back(), Action::MatchToJack);
    EXPECT_EQ(actionsForRow(DeviceType::Switch, 0).back(), Action::SnmpGet);
    EXPECT_EQ(actionsForRow(DeviceType::Jack, 5).size(), 9U);
    EXPECT_EQ(criteriaTargetField(8), &CHardware::BackslashText);
    EXPECT_EQ(criteriaDrawFlag(11), &CHardware::ReminderOn);
}

TEST(HardwareTest, TypesHaveNamesAndPriorities) {
    EXPECT_EQ(typeName(10), "UPS");
    EXPECT_EQ(typeName(1011), "Card Module");
    for (const std::int32_t none : {0, 14, 1000, 1014, -6, 2002})
        EXPECT_EQ(typeName(none), "") << none;
    EXPECT_EQ(typeFromName("card module"), DeviceType::CardModule);
    EXPECT_EQ(typeFromName("toaster"), 0);
    const std::vector<std::int32_t> priorities = {1, 5, 4, 5, 2, 2, 4, 3, 1, 2, 3, 3, 1};
    for (std::int32_t type = 1; type <= 13; ++type)
        EXPECT_EQ(newDevicePriority(type + 1000), priorities[static_cast<std::size_t>(type - 1)]) << type;
}

} // namespace

} // namespace mirovane
