#include "model/format/TwinRepair.h"

#include <gtest/gtest.h>

namespace mirovane {
namespace {

struct Numbered {
    std::int32_t type;
    std::int32_t recID;
    std::string name;
};

Datafile::RecordList listOf(const std::vector<Numbered>& rows) {
    Datafile::RecordList records;
    for (const Numbered& row : rows) {
        records.push_back(std::make_unique<CHardware>());
        records.back()->Type = row.type;
        records.back()->RecID = row.recID;
        (row.type == DeviceType::Jack ? records.back()->ToJack : records.back()->Name) = row.name;
    }
    return records;
}

std::vector<std::int32_t> recIDs(const Datafile::RecordList& records) {
    std::vector<std::int32_t> numbers;
    for (const auto& record : records)
        numbers.push_back(record->RecID);
    return numbers;
}

constexpr std::int32_t waiting = DeviceType::Phone + DeviceType::discoveredOffset;

TEST(TwinRepairTest, LaterTwinsGetNumbersThatNobodyHas) {
    // 1 and 4 are free; 2 belongs to a device behind the twins. Settings share numbers with devices freely.
    auto records = listOf({{SpecialType::ApplicationRecord, 1, "browse"},
                           {DeviceType::Computer, 3, "first"},
                           {DeviceType::Jack, 3, "A-7"},
                           {waiting, 3, "phone"},
                           {DeviceType::Printer, 2, "printer"},
                           {SpecialType::VersionRecord, 3, ""},
                           {DeviceType::Printer, 0, "unnumbered"},
                           {DeviceType::Printer, 0, "also"}});

    const auto renumbered = renumberTwins(records);

    EXPECT_EQ(renumbered, (std::vector<TwinRenumbering>{{3, 1, "A-7"}, {3, 4, "phone"}, {0, 5, "also"}}));
    EXPECT_EQ(recIDs(records), (std::vector<std::int32_t>{1, 3, 1, 4, 2, 3, 0, 5}));
    EXPECT_TRUE(renumberTwins(records).empty()); // nothing is left to repair
}

} // namespace
} // namespace mirovane
