#include "model/records/FieldNames.h"

#include "model/records/Dates.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <set>

namespace mirovane {
namespace {

using testing::AllOf;
using testing::HasSubstr;

CHardware computer() {
    CHardware device;
    device.Type = DeviceType::Computer;
    return device;
}

std::optional<std::string> set(CHardware& device, std::string_view name, std::string_view text) {
    const RecordField* field = findRecordField(name);
    return field ? setFieldValue(device, *field, text) : "no such field";
}

TEST(FieldNamesTest, EveryValueThatMayBeSetReadsBackAsItself) {
    CHardware device = computer();
    device.State = DeviceState::Off;
    device.Type = 1007;
    device.Position = {-3, 2147483647};
    device.Comment = "two\r\nlines, \"quotes\" and $mvN, \xE9";
    device.ReminderDate = {DateTime::valid, 46348.604166666664};
    device.ReminderOn = 1;
    device.Priority = 4;
    CHardware copy = computer();
    std::set<const void*> seen;
    for (const RecordField& field : recordFields()) {
        if (field.keeper.empty()) {
            EXPECT_EQ(setFieldValue(copy, field, fieldValue(device, field)), std::nullopt) << field.name;
            EXPECT_EQ(fieldValue(copy, field), fieldValue(device, field)) << field.name;
        }
    }
    EXPECT_TRUE(sameStored(copy, device));
}

TEST(FieldNamesTest, AcceptsWhatPeopleWrite) {
    CHardware device = computer();
    EXPECT_EQ(set(device, "state", "off"), std::nullopt);
    EXPECT_EQ(device.State, DeviceState::Off);
    EXPECT_EQ(set(device, "State", "1"), std::nullopt);
    EXPECT_EQ(device.State, DeviceState::On);
    EXPECT_EQ(set(device, "Type", "card module"), std::nullopt);
    EXPECT_EQ(device.Type, DeviceType::CardModule);
    device.Type = 1002;
    EXPECT_EQ(set(device, "Type", "Printer"), std::nullopt);
    EXPECT_EQ(device.Type, 1003) << "a name leaves the device in the Discovered/Misc window";
    EXPECT_EQ(set(device, "Type", "3"), std::nullopt);
    EXPECT_EQ(device.Type, 3);
    EXPECT_EQ(set(device, "ReminderDate", "2026-11-22T14:30"), std::nullopt);
    EXPECT_EQ(isoDateTimeText(device.ReminderDate), "2026-11-22 14:30");
    EXPECT_EQ(set(device, "ReminderDate", ""), std::nullopt);
    EXPECT_EQ(device.ReminderDate, DateTime());
}

TEST(FieldNamesTest, ABadValueIsRefusedInOneSentenceAndChangesNothing) {
    const struct {
        std::string_view field, value, remedy;
    } cases[] = {
        {"Priority", "0", "1 to 5"},
        {"Priority", "6", "1 to 5"},
        {"Priority", "3 ", "1 to 5"},
        {"Priority", "", "1 to 5"},
        {"SlashDraw", "2", "0 or 1"},
        {"SlashDraw", "yes", "0 or 1"},
        {"State", "3", "Def, On or Off"},
        {"State", "Active", "Def, On or Off"},
        {"Type", "-100", "device type"},
        {"Type", "0", "device type"},
        {"Type", "14", "device type"},
        {"Type", "1000", "device type"},
        {"Type", "VersionRecord", "device type"},
        {"Position", "100", "100,200"},
        {"Position", "1,2,3", "100,200"},
        {"Position", "99999999999,1", "100,200"},
        {"ReminderDate", "2026-02-30 10:00", "2026-11-22 14:30"},
        {"ReminderDate", "2026-11-22 24:00", "2026-11-22 14:30"},
        {"ReminderDate", "2026-11-22", "2026-11-22 14:30"},
        {"ReminderDate", "2026-11-22 14:30 ", "2026-11-22 14:30"},
        {"RecID", "5", "cannot be set"},
        {"Modified", "5", "cannot be set"},
        {"RuleStamps", "0", "cannot be set"},
    };
    for (const auto& bad : cases) {
        CHardware device = computer();
        const auto refusal = set(device, bad.field, bad.value);
        ASSERT_TRUE(refusal) << bad.field << "=" << bad.value;
        EXPECT_THAT(*refusal, AllOf(HasSubstr(std::string(bad.field)), HasSubstr(std::string(bad.remedy))));
        EXPECT_EQ(device, computer());
    }
}

TEST(FieldNamesTest, ARefusalQuotesOnlyTheBeginningOfAHugeValue) {
    CHardware device = computer();
    EXPECT_LT(set(device, "Priority", std::string(10000, '9'))->size(), 200U);
}

TEST(DatesTest, CalendarIsKnownToItsEnds) {
    const struct {
        double value;
        std::string_view text;
    } cases[] = {
        {0.0, "1899-12-30 00:00"},        {-1.25, "1899-12-29 06:00"},
        {36526.0, "2000-01-01 00:00"},    {-657434.0, "0100-01-01 00:00"},
        {2958465.5, "9999-12-31 12:00"},  {1.0 / 86400, "1899-12-30 00:00:01"},
        {0.99999999, "1899-12-31 00:00"},
    };
    for (const auto& known : cases)
        EXPECT_EQ(isoDateTimeText({DateTime::valid, known.value}), known.text) << known.value;
    for (const double value : {-657435.0, 2958466.0, 1e300, std::numeric_limits<double>::quiet_NaN(),
                               -std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(isoDateTimeText({DateTime::valid, value}), "") << value;
        EXPECT_EQ(dateTimeText({DateTime::valid, value}), "") << value;
    }
    EXPECT_EQ(isoDateTimeText({DateTime::invalid, 1.0}), "");
}

} // namespace
} // namespace mirovane
