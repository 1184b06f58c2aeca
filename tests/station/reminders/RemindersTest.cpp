#include "model/records/Dates.h"
#include "tests/station/StationFixture.h"
#include "tests/support/LateWorkers.h"

#include <chrono>

namespace mirovane::test {
namespace {

using namespace std::chrono_literals;

class RemindersTest : public StationFixture {
protected:
    /// The first device's reminder, so many seconds from now.
    void remind(Site& site, int seconds) {
        const DateTime when = localDateTime(site.doc().now() + seconds);
        site.doc().edit(site.device(1), [&](CHardware& device) {
            device.ReminderOn = 1;
            device.ReminderDate = when;
        });
    }
    int due(Site& site) { return site.station->reminders().DueCount(); }
};

TEST_F(RemindersTest, ADueReminderBlinksUntilItIsCleared) {
    Site& site = open(a);
    const StationNews news(*site.station);
    remind(site, 8);
    timers.advance(5s);
    EXPECT_EQ(due(site), 0);
    EXPECT_TRUE(news.phases.empty()); // a title that shows nothing never changes
    timers.advance(5s);
    EXPECT_EQ(due(site), 1);
    EXPECT_EQ(site.device(1).ReminderDue, 1);
    EXPECT_EQ(site.device(2).ReminderDue, 0);

    // Shown for 5 s, hidden for 2 s.
    ASSERT_EQ(news.phases.size(), 1U);
    if (news.phases.back())
        timers.advance(5s);
    ASSERT_FALSE(news.phases.back());
    timers.advance(1999ms);
    EXPECT_FALSE(news.phases.back());
    timers.advance(1ms);
    EXPECT_TRUE(news.phases.back());
    timers.advance(4999ms);
    EXPECT_TRUE(news.phases.back());
    timers.advance(1ms);
    EXPECT_FALSE(news.phases.back());

    site.doc().edit(site.device(1), [](CHardware& device) { device.ReminderOn = 0; });
    const std::size_t told = news.phases.size();
    timers.advance(30s);
    EXPECT_EQ(due(site), 0);
    EXPECT_EQ(site.device(1).ReminderDue, 0);
    EXPECT_EQ(news.phases.size(), told + 1); // told once that none is due any more
}

TEST_F(RemindersTest, TheCheckGoesOnAfterAReload) {
    open(a);
    open(b);
    remind(b, 60);
    ASSERT_TRUE(b.station->saveDatafile().saved());
    timers.advance(3s); // a's watch reads it
    ASSERT_EQ(a.device(1).ReminderOn, 1);
    timers.advance(60s);
    EXPECT_EQ(due(a), 1);
}

/// A station that checks a device when another one saves.
class BusyRemindersTest : public RemindersTest {
protected:
    LateWorkers workers;
    Site late{clock, timers, {"L-HOST", "l-user"}, false, &workers};
};

TEST_F(BusyRemindersTest, TheCheckGoesOnAfterAnEditWhileAReloadWaited) {
    open(a);
    open(late);
    late.doc().setSelected(late.device(3), true);
    late.station->features().liveStat().performNow();
    timers.advance(3s);
    ASSERT_TRUE(workers.busy());
    rename(a, 2, "by a");
    ASSERT_TRUE(a.station->saveDatafile().saved());
    timers.advance(3s); // from here the reload waits, and nothing is checked
    remind(late, 10);
    EXPECT_TRUE(
        updateDevices(*late.station, std::vector{1}, [](CHardware& device) { device.Name = "x"; }).saved());
    timers.advance(15s);
    EXPECT_EQ(due(late), 1);
}

} // namespace
} // namespace mirovane::test
