#include "livestat/steps/Outcome.h"

#include "model/records/Criteria.h"

#include <gtest/gtest.h>

namespace mirovane {

namespace {

constexpr TimeStamp before = 1000;
constexpr TimeStamp now = 1'700'000'000;

class OutcomeTest : public testing::Test {
protected:
    OutcomeTest() {
        device.Type = DeviceType::Computer;
        device.Modified = device.StampsModified = before;
        device.RuleStamps.fill(7);
        outcome.acted = true;
        outcome.failed = false;
    }

    bool apply(int row, std::int32_t ifMatch = 0) {
        input.row = row;
        input.criteria.IfMatch = ifMatch;
        return applyOutcome(device, input, outcome, now) == Applied::Change;
    }

    CHardware device;
    StepInput input;
    StepOutcome outcome;
};

TEST_F(OutcomeTest, StateChangesCarryTheStampsAlongUnlessTheDeviceWasEdited) {
    EXPECT_TRUE(apply(0));
    EXPECT_EQ(device.State, DeviceState::On);
    EXPECT_EQ(device.Modified, now);
    EXPECT_EQ(device.StampsModified, now);
    EXPECT_EQ(device.RuleStamps[3], 7);
    device.StampsModified = before;
    outcome.failed = true;
    EXPECT_TRUE(apply(0));
    EXPECT_EQ(device.State, DeviceState::Off);
    EXPECT_EQ(device.StampsModified, before);
}

TEST_F(OutcomeTest, WhatIsAlreadySoIsNotStamped) {
    device.State = DeviceState::On;
    device.Name = "pc1";
    const CHardware untouched = device;
    EXPECT_FALSE(apply(0));
    outcome.result = "pc1";
    EXPECT_FALSE(apply(1));
    outcome.acted = false;
    outcome.result = "other";
    EXPECT_FALSE(apply(1));
    outcome.acted = outcome.cancelled = true;
    outcome.fileStamp = 777;
    outcome.stampsModified = now + 1;
    EXPECT_FALSE(apply(1));
    EXPECT_EQ(device, untouched);
}

TEST_F(OutcomeTest, StampsOfTextFilesAreKeptWithoutCountingAsAChange) {
    outcome.acted = false;
    outcome.fileStamp = 555;
    input.row = 4;
    EXPECT_EQ(applyOutcome(device, input, outcome, now), Applied::Stamps);
    EXPECT_EQ(applyOutcome(device, input, outcome, now), Applied::Nothing) << "known already";
    outcome.fileStamp.reset();
    outcome.stampsModified = 2000;
    EXPECT_EQ(applyOutcome(device, input, outcome, now), Applied::Stamps);
    EXPECT_EQ(device.Modified, before);
}

TEST_F(OutcomeTest, EveryRowWritesItsOwnField) {
    std::string CHardware::*const fields[] = {
        &CHardware::Name,     &CHardware::IPAddress, &CHardware::Username,  &CHardware::MACAddress,
        &CHardware::ToJack,   &CHardware::Comment,   &CHardware::SlashText, &CHardware::BackslashText,
        &CHardware::HorzText, &CHardware::VertText,  &CHardware::ToDo};
    for (int row = 1; row < criteriaRowCount; ++row) {
        outcome.result = "row " + std::to_string(row);
        EXPECT_TRUE(apply(row));
        EXPECT_EQ(device.*fields[row - 1], outcome.result);
    }
    EXPECT_EQ(device.Modified, now);
    EXPECT_EQ(device.StampsModified, before); // a changed field makes the text files be searched again
}

TEST_F(OutcomeTest, DrawFlagsFollowSuccessAndFailure) {
    struct Case {
        std::int32_t flag, ifMatch;
        bool failed;
        std::int32_t after;
    };
    const Case cases[] = {{0, 1, false, 1}, {1, 1, false, 1}, {1, 0, false, 0}, {1, 1, true, 0},
                          {0, 1, true, 0},  {0, 0, true, 1},  {1, 0, true, 1}};
    std::int32_t CHardware::*const flags[] = {&CHardware::SlashDraw, &CHardware::BackslashDraw,
                                              &CHardware::HorzDraw, &CHardware::VertDraw,
                                              &CHardware::ReminderOn};
    for (int row = 7; row < criteriaRowCount; ++row) {
        for (const Case& c : cases) {
            device.*flags[row - 7] = c.flag;
            device.Modified = before;
            outcome.failed = c.failed;
            EXPECT_EQ(apply(row, c.ifMatch), c.flag != c.after) << row;
            EXPECT_EQ(device.*flags[row - 7], c.after) << row;
            EXPECT_EQ(device.Modified, c.flag != c.after ? now : before);
        }
    }
}

TEST_F(OutcomeTest, AReminderThatIsSwitchedOnIsDueNow) {
    EXPECT_TRUE(apply(11, 1));
    ASSERT_EQ(device.ReminderDate.status, DateTime::valid);
    const std::time_t stamp = now;
    std::tm local{};
    localtime_r(&stamp, &local);
    EXPECT_NEAR(device.ReminderDate.value, 25569.0 + static_cast<double>(timegm(&local)) / 86400.0, 1e-9);

    device.ReminderDate = {};
    EXPECT_TRUE(apply(11, 0)); // switched off: the date stays
    EXPECT_EQ(device.ReminderDate.status, DateTime::null);
}

TEST_F(OutcomeTest, AResultHoldsOnlyForWhatItWasAskedAbout) {
    input.row = 2;
    input.criteria = {"NS Lookup", "$mvN", "", 0, "", "On/Off", 0};
    input.device = device;
    const auto holdsAfter = [&](const std::function<void(CHardware&, CriteriaRow&)>& change) {
        CHardware edited = device;
        CriteriaRow criteria = input.criteria;
        change(edited, criteria);
        return stillHolds(input, edited, criteria);
    };
    EXPECT_TRUE(holdsAfter([](CHardware&, CriteriaRow&) {}));
    EXPECT_TRUE(holdsAfter([](CHardware& d, CriteriaRow&) { d.Comment = d.MACAddress = "unrelated"; }));
    EXPECT_TRUE(holdsAfter([](CHardware& d, CriteriaRow&) { d.Type += DeviceType::discoveredOffset; }));
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.IPAddress = "typed by the user"; }));
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.Name = "another host"; }));
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.Type = DeviceType::Printer; }));
    EXPECT_FALSE(holdsAfter([](CHardware&, CriteriaRow& c) { c.Condition = "On"; }));

    input.criteria = {"Who's Logon", "", "", 0, "", "On/Off", 0}; // asks without an argument
    EXPECT_TRUE(holdsAfter([](CHardware& d, CriteriaRow&) { d.Comment = "unrelated"; }));
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.Name = "another host"; }));
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.IPAddress = "127.0.0.9"; }));

    input.criteria = {"SNMPGet", "agent public 1.3.6", "", 0, "^$mvU", "On/Off", 0}; // the pattern tells, too
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.Username = "another"; }));

    input.criteria = {"Match to Jack#", "", "", 0, "", "On", 0};
    EXPECT_TRUE(holdsAfter([](CHardware& d, CriteriaRow&) { d.Name = "unrelated"; }));
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.ToJack = "A-18"; }));

    input.criteria = {"Set Value", "x", "", 0, "", "On", 0}; // for devices that are On
    input.device.State = device.State = DeviceState::On;
    EXPECT_TRUE(holdsAfter([](CHardware&, CriteriaRow&) {}));
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.State = DeviceState::Off; }));
    input.row = 7; // with a draw flag
    EXPECT_TRUE(holdsAfter([](CHardware& d, CriteriaRow&) { d.HorzDraw = 1; }));
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.SlashDraw = 1; }));
    input.row = 0;
    EXPECT_TRUE(holdsAfter([](CHardware& d, CriteriaRow&) { d.SlashDraw = 1; }));
    EXPECT_FALSE(holdsAfter([](CHardware& d, CriteriaRow&) { d.State = DeviceState::Def; }));
}

} // namespace

} // namespace mirovane
