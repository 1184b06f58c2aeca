#include "probes/names/LookUpThreads.h"

#include "platform/BlockedSignals.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>

namespace mirovane {

namespace {

constexpr std::chrono::seconds idleLife{10};

} // namespace

bool CLookUpThreads::run(std::shared_ptr<Job> job) {
    const std::lock_guard lock(mutex_);
    if (closed_)
        return false;
    jobs_.push_back(std::move(job));
    if (idle_ < jobs_.size() && workers_ < maxWorkers_ && !addWorker() && workers_ == 0) {
        jobs_.pop_back();
        return false;
    }
    work_.notify_one();
    return true;
}

/// With the mutex held.
bool CLookUpThreads::addWorker() {
    try {
        const CBlockedSignals noSignals;
        std::thread([self = shared_from_this()] { self->work(); }).detach();
    } catch (const std::system_error&) {
        return false; // the workers there are will have to do
    }
    ++workers_;
    return true;
}

void CLookUpThreads::forget(const std::shared_ptr<Job>& job) {
    const std::lock_guard lock(mutex_);
    const auto place = std::find(jobs_.begin(), jobs_.end(), job);
    if (place != jobs_.end())
        jobs_.erase(place);
}

void CLookUpThreads::close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    jobs_.clear();
    work_.notify_all();
}

void CLookUpThreads::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        ++idle_;
        const bool awake = work_.wait_for(lock, idleLife, [this] { return closed_ || !jobs_.empty(); });
        --idle_;
        if (!awake || closed_) {
            --workers_;
            return;
        }
        const std::shared_ptr<Job> job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        (*job)(*service_);
        lock.lock();
    }
}

} // namespace mirovane
