#include "model/Dates.h"
#include "tests/station/StationFixture.h"

#include <chrono>

namespace mirovane::test {
namespace {

using namespace std::chrono_literals;

class ReminderCheckTest : public StationFixture {};

TEST_F(ReminderCheckTest, ADueReminderBlinksUntilItIsCleared) {
    Site& site = open(a);
    std::vector<bool> phases;
    site.station->onReminders = [&] {
        phases.push_back(site.station->reminders().ReminderPhase());
    };
    const DateTime inTenSeconds = localDateTime(site.doc().now() + 10);
    site.doc().edit(site.device(1), [&](CHardware& device) {
        device.ReminderOn = 1;
        device.ReminderDate = inTenSeconds;
    });

    timers.advance(9s);
    EXPECT_EQ(site.station->reminders().DueCount(), 0);
    EXPECT_TRUE(phases.empty()); // a title that shows nothing never changes

    timers.advance(21s);
    EXPECT_EQ(site.station->reminders().DueCount(), 1);
    EXPECT_EQ(site.device(1).ReminderDue, 1);
    EXPECT_EQ(site.device(2).ReminderDue, 0);
    ASSERT_GE(phases.size(), 4u); // shown for 5 s, hidden for 2 s
    for (std::size_t i = 1; i < phases.size(); ++i)
        EXPECT_NE(phases[i], phases[i - 1]);

    site.doc().edit(site.device(1), [](CHardware& device) { device.ReminderOn = 0; });
    phases.clear();
    timers.advance(30s);
    EXPECT_EQ(site.station->reminders().DueCount(), 0);
    EXPECT_EQ(site.device(1).ReminderDue, 0);
    EXPECT_EQ(phases.size(), 1u); // told once that none is due any more
}

} // namespace
} // namespace mirovane::test
