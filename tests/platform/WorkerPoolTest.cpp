#include "platform/WorkerPool.h"

#include <atomic>
#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>

namespace mirovane {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Jobs that wait to be let go, counted.
class CGate {
public:
    void pass() {
        std::unique_lock lock(mutex_);
        ++inside_;
        changed_.notify_all();
        changed_.wait(lock, [this] { return open_; });
    }
    bool waitForJobs(int count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, seconds(20), [&] { return inside_ >= count; });
    }
    int inside() {
        const std::lock_guard lock(mutex_);
        return inside_;
    }
    void open() {
        const std::lock_guard lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int inside_ = 0;
    bool open_ = false;
};

bool comesTo(const CWorkerPool& pool, std::size_t threads) {
    const auto giveUp = std::chrono::steady_clock::now() + seconds(20);
    while (pool.threadCount() != threads && std::chrono::steady_clock::now() < giveUp)
        std::this_thread::yield();
    return pool.threadCount() == threads;
}

TEST(WorkerPoolTest, EndsThreadsThatHaveNothingToDo) {
    CWorkerPool pool(4, milliseconds(1));
    std::atomic<int> done = 0;
    for (int round = 1; round <= 2; ++round) {
        for (int i = 0; i < 100; ++i)
            ASSERT_TRUE(pool.start([&done] { ++done; }));
        EXPECT_LE(pool.threadCount(), 4U);
        ASSERT_TRUE(pool.waitUntilIdle(seconds(20)));
        EXPECT_EQ(done, 100 * round);
        EXPECT_TRUE(comesTo(pool, 0));
    }
}

TEST(WorkerPoolTest, RunsAsManyJobsAtOnceAsItMay) {
    CGate gate;
    CWorkerPool pool(2, seconds(600));
    for (int i = 0; i < 5; ++i)
        ASSERT_TRUE(pool.start([&gate] { gate.pass(); }));
    ASSERT_TRUE(gate.waitForJobs(2));
    EXPECT_EQ(pool.threadCount(), 2U);
    EXPECT_FALSE(pool.waitUntilIdle(milliseconds(20)));
    EXPECT_EQ(gate.inside(), 2) << "the others wait for a thread";

    pool.setLimit(3);
    ASSERT_TRUE(pool.start([&gate] { gate.pass(); }));
    ASSERT_TRUE(gate.waitForJobs(3));
    gate.open();
    ASSERT_TRUE(pool.waitUntilIdle(seconds(20)));
    EXPECT_EQ(gate.inside(), 6);
    EXPECT_EQ(pool.threadCount(), 3U) << "idle ones stay for the next job";
    ASSERT_TRUE(pool.start([] {}));
    EXPECT_EQ(pool.threadCount(), 3U) << "which takes one of them";
    ASSERT_TRUE(pool.waitUntilIdle(seconds(20)));
    pool.setLimit(0); // is taken for 1
    EXPECT_TRUE(comesTo(pool, 1));
}

TEST(WorkerPoolTest, RunsWhatIsQueuedBeforeItEnds) {
    std::atomic<int> done = 0;
    {
        CWorkerPool pool(1, seconds(600));
        for (int i = 0; i < 20; ++i)
            pool.start([&done] { ++done; });
    }
    EXPECT_EQ(done, 20);
}

} // namespace
} // namespace mirovane
