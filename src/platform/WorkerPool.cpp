#include "platform/WorkerPool.h"

#include <algorithm>
#include <system_error>

namespace mirovane {

CWorkerPool::CWorkerPool(std::size_t limit, std::chrono::milliseconds idleTime)
    : idleTime_(idleTime), limit_(std::max<std::size_t>(limit, 1)) {}

CWorkerPool::~CWorkerPool() {
    {
        std::unique_lock lock(mutex_);
        closing_ = true;
        wake_.notify_all();
        becameIdle_.wait(lock, [this] { return threads_.empty(); });
    }
    joinEnded();
}

bool CWorkerPool::start(std::function<void()> job) {
    joinEnded();
    const std::lock_guard lock(mutex_);
    if (queue_.size() >= idle_ && threads_.size() < limit_ && !startThread() && threads_.empty())
        return false;
    queue_.push_back(std::move(job));
    wake_.notify_one();
    return true;
}

bool CWorkerPool::startThread() {
    const auto self = threads_.emplace(threads_.end());
    try {
        *self = std::thread([this, self] { work(self); });
    } catch (const std::system_error&) {
        threads_.erase(self);
        return false;
    }
    return true;
}

void CWorkerPool::setLimit(std::size_t limit) {
    {
        const std::lock_guard lock(mutex_);
        limit_ = std::max<std::size_t>(limit, 1);
    }
    wake_.notify_all();
}

bool CWorkerPool::waitUntilIdle(std::chrono::milliseconds patience) {
    std::unique_lock lock(mutex_);
    return becameIdle_.wait_for(lock, patience, [this] { return queue_.empty() && running_ == 0; });
}

std::size_t CWorkerPool::threadCount() const {
    const std::lock_guard lock(mutex_);
    return threads_.size();
}

void CWorkerPool::work(std::list<std::thread>::iterator self) {
    std::unique_lock lock(mutex_);
    while (threads_.size() <= limit_) {
        ++idle_;
        const bool woken = wake_.wait_for(
            lock, idleTime_, [this] { return !queue_.empty() || closing_ || threads_.size() > limit_; });
        --idle_;
        if (!woken || queue_.empty())
            break;
        auto job = std::move(queue_.front());
        queue_.pop_front();
        ++running_;
        lock.unlock();
        job();
        job = nullptr; // what it holds goes before the pool counts as idle
        lock.lock();
        if (--running_ == 0 && queue_.empty())
            becameIdle_.notify_all();
    }
    ended_.splice(ended_.end(), threads_, self);
    becameIdle_.notify_all();
}

void CWorkerPool::joinEnded() {
    std::list<std::thread> leaving;
    {
        const std::lock_guard lock(mutex_);
        leaving.splice(leaving.end(), ended_);
    }
    for (std::thread& thread : leaving)
        thread.join();
}

} // namespace mirovane
