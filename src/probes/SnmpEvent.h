#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <system_error>

namespace mirovane {

/// The hand-over between a request's thread and the callback: stays set until it is reset.
class SnmpEvent {
public:
    using Deadline = std::chrono::steady_clock::time_point;
    enum class WaitResult { Signalled, TimedOut, Stopped, Failed };

    virtual ~SnmpEvent() = default;
    virtual void set() = 0;
    virtual void reset() = 0;
    virtual bool isSet() = 0;
    virtual WaitResult wait(Deadline deadline, const std::stop_token& stop) = 0;
};

using SnmpEventMaker = std::function<std::unique_ptr<SnmpEvent>()>; ///< null when none can be made

class SnmpConditionEvent final : public SnmpEvent {
public:
    void set() override {
        const std::lock_guard lock(mutex_);
        set_ = true;
        changed_.notify_all();
    }
    void reset() override {
        const std::lock_guard lock(mutex_);
        set_ = false;
    }
    bool isSet() override {
        const std::lock_guard lock(mutex_);
        return set_;
    }
    WaitResult wait(Deadline deadline, const std::stop_token& stop) override {
        try {
            std::unique_lock lock(mutex_);
            if (changed_.wait_until(lock, stop, deadline, [this] { return set_; })) {
                return WaitResult::Signalled;
            }
            return stop.stop_requested() ? WaitResult::Stopped : WaitResult::TimedOut;
        } catch (const std::system_error&) {
            return WaitResult::Failed;
        }
    }

private:
    std::mutex mutex_;
    std::condition_variable_any changed_;
    bool set_ = false;
};

inline std::unique_ptr<SnmpEvent> makeSnmpConditionEvent() {
    return std::make_unique<SnmpConditionEvent>();
}

} // namespace mirovane
