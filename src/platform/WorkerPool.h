#pragma once

#include "platform/Workers.h"

#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <thread>

namespace mirovane {

/// The threads of one station's Live Stat. A job takes an idle thread, or a new one while there are fewer
/// than the limit, or waits for one. A thread without work for `idleTime` ends, so that a quiet station holds
/// none. The destructor runs what is queued and joins; whoever wants that to be quick stops the jobs first.
class CWorkerPool final : public Workers {
public:
    explicit CWorkerPool(std::size_t limit, std::chrono::milliseconds idleTime = std::chrono::seconds(30));
    ~CWorkerPool() override;
    CWorkerPool(const CWorkerPool&) = delete;
    CWorkerPool& operator=(const CWorkerPool&) = delete;

    bool start(std::function<void()> job) override;
    void setLimit(std::size_t limit) override;
    bool waitUntilIdle(std::chrono::milliseconds patience) override;

    /// Only tests ask: a thread too many, or one that never ends, shows nowhere else.
    std::size_t threadCount() const;

private:
    void work(std::list<std::thread>::iterator self);
    bool startThread();
    void joinEnded();

    const std::chrono::milliseconds idleTime_;
    mutable std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable becameIdle_;
    std::deque<std::function<void()>> queue_;
    std::list<std::thread> threads_;
    std::list<std::thread> ended_; ///< have left work() or are about to; joined by the main thread
    std::size_t limit_;
    std::size_t idle_ = 0;
    std::size_t running_ = 0;
    bool closing_ = false;
};

} // namespace mirovane
