#include "probes/SnmpReading.h"

#include <algorithm>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds stepBackFor{20};

/// How long a caller reads without looking whether its wait was ended from elsewhere.
constexpr std::chrono::milliseconds longestRead{50};

constexpr std::chrono::milliseconds untilWoken{-1};

} // namespace

/// Callers may read as long as they come one by one: every reply that is waited for has come, and no two of
/// them have been waiting.
bool SnmpReading::callersMayRead() const {
    return !stopping_ && others_ <= 1 && !outstanding_() && Clock::now() - lastWait_ < stepBackFor;
}

void SnmpReading::stepBack(std::unique_lock<std::mutex>& lock) {
    receiverReads_ = false;
    while (!receiverReads_) {
        changed_.wait_for(lock, stepBackFor);
        const bool nobodyComes = !callerReads_ && Clock::now() - lastWait_ >= stepBackFor;
        receiverReads_ = receiverReads_ || nobodyComes || (stopping_ && !callerReads_);
    }
}

void SnmpReading::run() {
    std::unique_lock lock(mutex_);
    while (!stopping_) {
        lock.unlock();
        sockets_.read(untilWoken, handler_);
        lock.lock();
        if (callersMayRead()) {
            stepBack(lock);
        }
    }
}

void SnmpReading::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        changed_.notify_all();
    }
    sockets_.wake();
}

bool SnmpReading::takeSeat() {
    const std::lock_guard lock(mutex_);
    lastWait_ = Clock::now();
    if (callerReads_ || receiverReads_ || stopping_) {
        ++others_;
        return false;
    }
    callerReads_ = true;
    return true;
}

void SnmpReading::leaveSeat() {
    const std::lock_guard lock(mutex_);
    callerReads_ = false;
    lastWait_ = Clock::now();
    if (others_ > 0 || stopping_) {
        receiverReads_ = true; // from now on, though it has yet to wake up
        changed_.notify_all();
    }
}

SnmpEvent::WaitResult SnmpReading::wait(SnmpEvent& event, SnmpEvent::Deadline deadline,
                                        const std::stop_token& stop) {
    if (!takeSeat()) {
        const auto result = event.wait(deadline, stop);
        const std::lock_guard lock(mutex_);
        --others_;
        return result;
    }
    {
        const std::stop_callback wakeUp(stop, [this] { sockets_.wake(); });
        for (auto now = Clock::now();
             !event.isSet() && now < deadline && !stop.stop_requested() && !stopping_; now = Clock::now()) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - now);
            sockets_.read(std::min(left, longestRead), handler_);
        }
    }
    leaveSeat();
    return event.wait(deadline, stop);
}

} // namespace mirovane
