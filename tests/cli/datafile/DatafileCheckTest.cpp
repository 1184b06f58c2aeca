#include "cli/datafile/DatafileCheck.h"

#include "model/records/Criteria.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

CHardware& add(Datafile::Content& content, std::int32_t type, std::int32_t recID = 0) {
    content.records.push_back(std::make_unique<CHardware>());
    content.records.back()->Type = type;
    content.records.back()->RecID = recID;
    return *content.records.back();
}

/// A datafile without anything odd, from before the To Do row where `rows` is 11.
Datafile::Content healthy(int rows = criteriaRowCount) {
    Datafile::Content content;
    content.fileVersion = 2008;
    add(content, SpecialType::VersionRecord).State = 2008;
    add(content, SpecialType::LiveStatOwnerRecord);
    add(content, SpecialType::LiveDiscoverOwnerRecord);
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        for (int row = 0; row < rows; ++row)
            applyCriteriaDefaults(add(content, criteriaRecordType(type, row)));
    return content;
}

std::vector<std::string> oddTexts(const Datafile::Content& content) {
    std::vector<std::string> texts;
    for (const Oddity& oddity : inspectDatafile(content).oddities)
        texts.push_back(oddity.text);
    return texts;
}

TEST(DatafileCheckTest, FindsNothingInHealthyFiles) {
    EXPECT_THAT(oddTexts(healthy()), IsEmpty());
    EXPECT_THAT(oddTexts(healthy(11)), IsEmpty());
    Datafile::Content content = healthy();
    add(content, SpecialType::ApplicationRecord);
    add(content, SpecialType::ApplicationRecord);
    add(content, DeviceType::Computer, 1).Name = "caf\xE9"; // Windows-1252
    add(content, DeviceType::Printer + 1000, 2).Comment = "caf\xC3\xA9";
    EXPECT_THAT(oddTexts(content), IsEmpty());
    content.records[1]->State = 1;
    content.records[1]->Name = "A-HOST";
    content.records[1]->Modified = 77;
    const DatafileReport report = inspectDatafile(content);
    EXPECT_EQ(report.liveStat.Name, "A-HOST");
    EXPECT_EQ(report.liveStat.Modified, 77);
    EXPECT_EQ(report.liveDiscover.State, 0);
    EXPECT_EQ(report.devices.at(DeviceType::Computer).onFloor, 1U);
    EXPECT_EQ(report.devices.at(DeviceType::Printer).discovered, 1U);
    EXPECT_EQ(report.special.at(SpecialType::ApplicationRecord), 2U);
    EXPECT_EQ(report.special.at(DatafileReport::criteriaType), 156U);
}

TEST(DatafileCheckTest, FindsWhatIsWrongWithADevice) {
    const struct {
        std::function<void(CHardware&)> damage;
        std::string text;
    } cases[] = {
        {[](CHardware& d) { d.RecID = 1; }, "same record ID 1"},
        {[](CHardware& d) { d.RecID = 0; }, "record ID 0 is not above 0"},
        {[](CHardware& d) { d.Type = 14; }, "device type 14 is unknown"},
        {[](CHardware& d) { d.Type = 1000; }, "device type 1000 is unknown"},
        {[](CHardware& d) { d.Type = -7; }, "type -7 is unknown"},
        {[](CHardware& d) { d.Type = 0; }, "type 0 is unknown"},
        {[](CHardware& d) { d.Priority = 6; }, "Priority is 6, outside 1 to 5"},
        {[](CHardware& d) { d.State = -1; }, "State is -1, outside 0 to 2"},
        {[](CHardware& d) { d.VertDraw = 2; }, "VertDraw is 2, outside 0 to 1"},
        {[](CHardware& d) { d.ReminderOn = 1; }, "reminder is set without a date"},
        {[](CHardware& d) { d.ReminderDate.status = 3; }, "ReminderDate is not a date"},
        {[](CHardware& d) { d.ToDo = "\x8F"; }, "ToDo holds text"},
    };
    for (const auto& damaged : cases) {
        Datafile::Content content = healthy();
        add(content, DeviceType::Computer, 1);
        damaged.damage(add(content, DeviceType::Computer, 2));
        const DatafileReport report = inspectDatafile(content);
        EXPECT_THAT(report.oddities, ElementsAre(AllOf(Field(&Oddity::text, HasSubstr(damaged.text)),
                                                       Field(&Oddity::record, content.records.size() - 1))));
    }
}

TEST(DatafileCheckTest, FindsWhatIsWrongWithTheSpecialRecords) {
    Datafile::Content second = healthy();
    add(second, SpecialType::VersionRecord).State = 2004;
    EXPECT_THAT(oddTexts(second),
                ElementsAre("a second VersionRecord", "the VersionRecord is not the first record",
                            "the VersionRecord says 2004, the layout is that of 2008"));

    Datafile::Content bare;
    bare.fileVersion = 2008;
    const auto texts = oddTexts(bare);
    EXPECT_THAT(texts,
                AllOf(Contains("there is no VersionRecord"), Contains("there is no LiveStatOwnerRecord"),
                      Contains("there is no LiveDiscoverOwnerRecord"),
                      Contains("criteria rows 0 to 10 of Wireless are missing")));

    Datafile::Content doubled = healthy();
    doubled.records.erase(doubled.records.begin() + 5, doubled.records.begin() + 7);
    doubled.records.erase(doubled.records.begin() + 3);
    add(doubled, criteriaRecordType(DeviceType::Computer, 4)).Name = "Pong";
    EXPECT_THAT(oddTexts(doubled),
                ElementsAre("a second criteria row Computer 4",
                            "criteria row Computer 4 holds the action \"Pong\", which it does not offer",
                            "criteria rows 0, 2 to 3 of Jack are missing"));
}

} // namespace
} // namespace mirovane
