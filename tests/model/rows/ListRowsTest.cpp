#include "model/rows/ListRows.h"

#include <cstdlib>
#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

using testing::ElementsAre;

CHardware device(std::int32_t recID, std::int32_t type, const std::string& name) {
    CHardware record;
    record.RecID = recID;
    record.Type = type;
    record.Name = name;
    return record;
}

std::vector<std::int32_t> sortedIDs(const std::vector<CHardware>& records, ListColumn column,
                                    bool greatestFirst) {
    std::vector<const CHardware*> rows;
    for (const CHardware& record : records)
        rows.push_back(&record);
    sortListRows(rows, column, greatestFirst);
    std::vector<std::int32_t> ids;
    for (const CHardware* row : rows)
        ids.push_back(row->RecID);
    return ids;
}

TEST(ListRowsTest, CellsThatAreNotTheFieldItself) {
    setenv("TZ", "UTC", 1);
    tzset();
    CHardware record = device(7, 1002, "pc-7");
    record.Modified = 86400;
    record.State = 1;
    record.ToJack = "A-12";
    record.ReminderDate = {DateTime::valid, 1.5};
    EXPECT_EQ(listCellText(record, ListColumn::ID), "7");
    EXPECT_EQ(listCellText(record, ListColumn::Device), "Computer");
    EXPECT_EQ(listCellText(record, ListColumn::LS), "Active");
    EXPECT_EQ(listCellText(record, ListColumn::Modified), "Fri Jan  2 00:00:00 1970");
    EXPECT_EQ(listCellText(record, ListColumn::Reminder), "") << "a date without a reminder is not shown";
    EXPECT_EQ(listCellText(record, ListColumn::ToJack), "A-12");

    record.ReminderOn = 1;
    EXPECT_EQ(listCellText(record, ListColumn::Reminder), "Sun Dec 31 12:00:00 1899");
    record.ReminderDate = {};
    EXPECT_EQ(listCellText(record, ListColumn::Reminder), "");

    record.Type = 1013;
    EXPECT_EQ(listCellText(record, ListColumn::ToJack), "") << "a marker keeps its area there";

    for (const auto& [state, text] :
         {std::pair{0, ""}, {2, "Inactive"}, {-5, "Inactive"}, {99, "Inactive"}}) {
        record.State = state;
        EXPECT_EQ(listCellText(record, ListColumn::LS), text) << state;
    }
}

TEST(ListRowsTest, ColumnsAreFoundByTitleAndByField) {
    EXPECT_EQ(listColumnFromName("to jack/#"), ListColumn::ToJack);
    EXPECT_EQ(listColumnFromName("IPAddress"), ListColumn::IPAddress);
    EXPECT_EQ(listColumnFromName("ip address"), ListColumn::IPAddress);
    EXPECT_EQ(listColumnFromName("RecID"), ListColumn::ID);
    EXPECT_EQ(listColumnFromName(""), std::nullopt);
}

TEST(ListRowsTest, FilterKnowsPlacesAndHiddenTypes) {
    ListFilter filter;
    EXPECT_FALSE(filter.shows(device(0, -6, "")));
    EXPECT_FALSE(filter.shows(device(0, 0, "")));
    EXPECT_FALSE(filter.shows(device(1, 1000, "")))
        << "neither on the floor nor in the Discovered/Misc window";
    EXPECT_TRUE(filter.shows(device(1, 999, ""))) << "a row is the only way to find a damaged device";
    filter.hiddenTypes = 1U << (DeviceType::Computer - 1);
    EXPECT_FALSE(filter.shows(device(1, 2, "")));
    EXPECT_FALSE(filter.shows(device(1, 1002, "")));
    EXPECT_TRUE(filter.shows(device(1, 3, "")));
    filter = {.floor = false};
    EXPECT_FALSE(filter.shows(device(1, 3, "")));
    EXPECT_TRUE(filter.shows(device(1, 1003, "")));
}

TEST(ListRowsTest, SortsTextsWithoutCaseAndKeepsListOrderForEqualKeys) {
    const std::vector<CHardware> records{device(1, 2, "beta"),     device(2, 2, "Alpha"),
                                         device(3, 2, "BETA"),     device(4, 2, "alpha"),
                                         device(5, 2, "\xC3\xA9"), device(6, 2, "")};
    EXPECT_THAT(sortedIDs(records, ListColumn::Name, false), ElementsAre(6, 2, 4, 1, 3, 5));
    EXPECT_THAT(sortedIDs(records, ListColumn::Name, true), ElementsAre(5, 1, 3, 2, 4, 6));
}

TEST(ListRowsTest, SortsNumbersAsNumbersAndDatesAsDates) {
    std::vector<CHardware> records{device(10, 2, ""), device(9, 2, ""), device(-1, 2, "")};
    EXPECT_THAT(sortedIDs(records, ListColumn::ID, false), ElementsAre(-1, 9, 10));
    records[0].ReminderDate = {DateTime::valid, 40000.25};
    records[1].ReminderDate = {DateTime::valid, 9000.0};
    EXPECT_THAT(sortedIDs(records, ListColumn::Reminder, true), ElementsAre(10, 9, -1));
    records[0].Modified = -5;
    EXPECT_THAT(sortedIDs(records, ListColumn::Modified, false), ElementsAre(10, 9, -1));
}

TEST(ListRowsTest, DevicesSortByTheirDisplayName) {
    const std::vector<CHardware> records{device(1, DeviceType::Ups, ""), device(2, DeviceType::Unknown, ""),
                                         device(3, DeviceType::Jack + 1000, "")};
    EXPECT_THAT(sortedIDs(records, ListColumn::Device, false), ElementsAre(3, 2, 1));
}

} // namespace
} // namespace mirovane
