#pragma once

#include "probes/names/NameService.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace mirovane {

/// Threads for calls that may never return. They are detached and own a share of this object, so that neither
/// its owner nor the end of the program waits for them.
class CLookUpThreads : public std::enable_shared_from_this<CLookUpThreads> {
public:
    using Job = std::function<void(NameService&)>;

    CLookUpThreads(std::shared_ptr<NameService> service, std::size_t maxWorkers)
        : service_(std::move(service)), maxWorkers_(maxWorkers) {}

    /// Runs `job` as soon as a worker is free. False when there is no worker and none can be had.
    bool run(std::shared_ptr<Job> job);

    /// Takes back a job that nobody has begun yet.
    void forget(const std::shared_ptr<Job>& job);

    /// Idle workers end at once, busy ones after their call; what nobody has begun is dropped.
    void close();

private:
    void work();
    bool addWorker();

    const std::shared_ptr<NameService> service_;
    const std::size_t maxWorkers_;
    std::mutex mutex_;
    std::condition_variable work_;
    std::deque<std::shared_ptr<Job>> jobs_;
    std::size_t workers_ = 0;
    std::size_t idle_ = 0;
    bool closed_ = false;
};

} // namespace mirovane
