#include "platform/qt/QtTimers.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <gtest/gtest.h>

namespace mirovane {

namespace {

using namespace std::chrono_literals;

class QtTimersTest : public testing::Test {
protected:
    /// Runs the event loop until `done`, but not for ever.
    template <typename Condition>
    bool runUntil(Condition done) {
        const QDeadlineTimer deadline(5000);
        while (!done() && !deadline.hasExpired())
            app.processEvents(QEventLoop::WaitForMoreEvents, 10);
        return done();
    }

    int argc = 1;
    char name[5] = "test";
    char* argv[2] = {name, nullptr};
    QCoreApplication app{argc, argv};
    CQtTimerFactory factory;
};

TEST_F(QtTimersTest, TicksUntilStopped) {
    int ticks = 0;
    auto timer = factory.makeTimer([&ticks] { ++ticks; });
    EXPECT_FALSE(timer->active());
    ASSERT_TRUE(timer->start(1h));
    ASSERT_TRUE(timer->start(1ms));
    EXPECT_TRUE(runUntil([&ticks] { return ticks >= 3; }));
    timer->stop();
    EXPECT_FALSE(timer->active());
}

TEST_F(QtTimersTest, MayBeDestroyedInItsOwnTick) {
    int ticks = 0;
    std::unique_ptr<Timer> timer;
    timer = factory.makeTimer([&] {
        if (++ticks == 2)
            timer.reset();
        else
            timer->start(2ms);
    });
    timer->start(1ms);
    EXPECT_TRUE(runUntil([&timer] { return !timer; }));
    EXPECT_EQ(ticks, 2);
}

TEST_F(QtTimersTest, MayBeDestroyedWhileItsTickAsksAQuestion) {
    bool answered = false;
    std::unique_ptr<Timer> asking;
    auto closing = factory.makeTimer([&asking] { asking.reset(); });
    asking = factory.makeTimer([&] {
        closing->start(1ms);
        answered = runUntil([&asking] { return !asking; }); // the question's own event loop
    });
    asking->start(1ms);
    EXPECT_TRUE(runUntil([&answered] { return answered; }));
}

} // namespace

} // namespace mirovane
