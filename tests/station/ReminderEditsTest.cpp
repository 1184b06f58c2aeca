#include "station/ReminderEdits.h"

#include "model/records/Dates.h"
#include "tests/station/StationFixture.h"

#include <chrono>

namespace mirovane::test {
namespace {

using namespace std::chrono_literals;

class ReminderEditsTest : public StationFixture {
protected:
    /// Devices 1 and 2 are due, 1 and 3 are selected; the reminder of 3 lies ahead.
    void SetUp() override {
        open(a);
        for (const std::int32_t recID : {1, 2, 3})
            a.doc().edit(a.device(recID), [&](CHardware& device) {
                device.ReminderOn = 1;
                device.ReminderDate = localDateTime(a.doc().now() + (recID == 3 ? 86'400 : -60));
                device.ToDo = "toner";
            });
        timers.advance(5s);
        ASSERT_EQ(a.station->reminders().DueCount(), 2);
        a.station->selection().add(a.device(1));
        a.station->selection().add(a.device(3));
    }

    std::string when(std::int32_t recID) { return isoDateTimeText(a.device(recID).ReminderDate); }
};

TEST_F(ReminderEditsTest, OnlySelectedDueRemindersArePutOff) {
    const std::string ahead = when(3);
    const std::string late = when(2);
    EXPECT_TRUE(putOffReminders(*a.station, ReminderDelay::Hour).saved());
    EXPECT_EQ(when(1), isoDateTimeText(localDateTime(a.doc().now() + 3600)));
    EXPECT_EQ(a.device(1).ReminderDue, 0) << "at once, not with the next check";
    EXPECT_EQ(when(2), late);
    EXPECT_EQ(when(3), ahead);
    EXPECT_EQ(a.station->edits().history().steps().back().name, "Put off 1 reminder");
    timers.advance(10s);
    EXPECT_EQ(a.station->reminders().DueCount(), 1);
    timers.advance(3600s);
    EXPECT_EQ(a.station->reminders().DueCount(), 2);
}

TEST_F(ReminderEditsTest, ADoneReminderKeepsItsText) {
    EXPECT_TRUE(endReminders(*a.station).saved());
    EXPECT_EQ(a.device(1).ReminderOn, 0);
    EXPECT_EQ(a.device(1).ToDo, "toner");
    EXPECT_EQ(a.device(3).ReminderOn, 1);
    EXPECT_FALSE(endReminders(*a.station).saved()) << "nothing is left to do";
}

TEST(ReminderDelayTest, TomorrowIsNineInTheMorning) {
    const TimeStamp now = 1'790'000'000;
    const std::string today = isoDateTimeText(localDateTime(now)).substr(0, 10);
    const DateTime tomorrow = putOffTo(ReminderDelay::UntilTomorrow, now);
    EXPECT_EQ(isoDateTimeText(tomorrow).substr(10), " 09:00");
    EXPECT_EQ(isoDateTimeText(DateTime{DateTime::valid, tomorrow.value - 1}).substr(0, 10), today);
    EXPECT_EQ(isoDateTimeText(putOffTo(ReminderDelay::TenMinutes, now)),
              isoDateTimeText(localDateTime(now + 600)));
}

} // namespace
} // namespace mirovane::test
