#pragma once

#include "probes/SnmpTransport.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <thread>

namespace mirovane {

/// One session as the transport keeps it: what arrived for it and how to tell. Any thread.
class SnmpTransportSession {
public:
    explicit SnmpTransportSession(SnmpCallback callback) : callback_(std::move(callback)) {}

    /// Keeps the message and calls back, on the calling thread. False when the session is closed.
    bool deliver(const SnmpReceived& message, std::int32_t requestId);

    std::optional<SnmpReceived> take();

    /// No callback runs or will run when this returns, unless it is called from one. Returns what nobody
    /// took.
    std::deque<SnmpReceived> close();

    std::atomic<SnmpError> lastError{SnmpError::None};

    /// How many requests wait for a reply. The request table's, under its lock.
    std::size_t outstanding = 0;

private:
    const SnmpCallback callback_;
    std::mutex mutex_;
    std::condition_variable idle_;
    std::deque<SnmpReceived> inbox_;
    std::optional<std::thread::id> calling_;
    bool closed_ = false;
};

} // namespace mirovane
