#include "model/Criteria.h"

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

TEST(Criteria, CodesOfTypesAndRows) {
    EXPECT_EQ(criteriaRecordType(DeviceType::Jack, 0), -100);
    EXPECT_EQ(criteriaRecordType(DeviceType::LocationMarker, 11), -351);
    EXPECT_EQ(criteriaRecordType(1002, 11), criteriaRecordType(2, 11));
    EXPECT_TRUE(isCriteriaRecordType(-100) && isCriteriaRecordType(-351) && isCriteriaRecordType(-131));
    for (const std::int32_t other : {-6, -99, -112, -119, -352, -371, -400, 100, 0})
        EXPECT_FALSE(isCriteriaRecordType(other)) << other;
}

TEST(Criteria, Defaults) {
    for (std::int32_t type = 1; type <= 12; ++type) {
        const bool computer = type == DeviceType::Computer || type == DeviceType::Laptop;
        for (int row = 0; row < criteriaRowCount; ++row) {
            CriteriaRow expected{"Do Nothing", "", "", 0, "", "On", row >= 7 ? 1 : 0};
            if (row == 0 && type == DeviceType::Jack)
                expected.Command = "Match to Jack#";
            else if (row == 0)
                expected.Command = "Ping", expected.Argument = computer ? "$mvN $mvI" : "$mvI";
            else if (row == 2 && computer)
                expected.Command = "NS Lookup", expected.Argument = "$mvN", expected.Condition = "On/Off";
            else if (row == 3 && computer)
                expected.Command = "Who's Logon", expected.Argument = "$mvN $mvI";
            EXPECT_EQ(defaultsOf(type, row), expected) << type << " row " << row;
        }
    }
    EXPECT_EQ(defaultsOf(DeviceType::LocationMarker, 0), CriteriaRow{});
}

TEST(Criteria, FieldPositionIsTheLeadingNumber) {
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

TEST(Criteria, ActionsOfferedByARow) {
    EXPECT_EQ(actionsForRow(DeviceType::Jack, 0).back(), Action::MatchToJack);
    EXPECT_EQ(actionsForRow(1001, 0).back(), Action::MatchToJack);
    EXPECT_EQ(actionsForRow(DeviceType::Switch, 0).back(), Action::SnmpGet);
    EXPECT_EQ(actionsForRow(DeviceType::Jack, 5).size(), 9U);
    EXPECT_EQ(criteriaTargetField(8), &CHardware::BackslashText);
    EXPECT_EQ(criteriaDrawFlag(11), &CHardware::ReminderOn);
}

TEST(Hardware, TypesHaveNamesAndPriorities) {
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
