#include "platform/AbandonableCalls.h"

#include <atomic>
#include <gtest/gtest.h>
#include <semaphore>
#include <thread>

namespace mirovane {
namespace {

using End = CAbandonableCalls::End;

TEST(AbandonableCallsTest, AtMostThreeHangInOnePlaceAndTheOthersGoOn) {
    struct Shared {
        std::counting_semaphore<> share{0};
        std::atomic<int> begun = 0, over = 0;
    };
    const auto shared = std::make_shared<Shared>();
    const auto hang = [shared] {
        ++shared->begun;
        shared->share.acquire();
        ++shared->over;
    };
    CAbandonableCalls calls({3, 5, std::chrono::milliseconds(0)});
    const std::chrono::milliseconds none{0};
    for (int call = 0; call < 50; ++call)
        EXPECT_EQ(calls.run("/share", hang, none), call < 3 ? End::Abandoned : End::Refused);
    const std::chrono::hours aDay{24};
    bool done = false;
    EXPECT_EQ(calls.run(
                  "/elsewhere", [&done] { done = true; }, aDay),
              End::Done);
    EXPECT_TRUE(done);
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(calls.run("/stopped", hang, aDay, stop.get_token()), End::Refused);
    while (shared->begun < 3)
        std::this_thread::yield();
    shared->share.release(3);
    while (shared->over < 3)
        std::this_thread::yield();
    End end = End::Refused;
    while (end == End::Refused)
        end = calls.run(
            "/share", [] {}, aDay);
    EXPECT_EQ(end, End::Done);
    EXPECT_EQ(shared->begun, 3);
}

} // namespace
} // namespace mirovane
