#pragma once

#include "probes/SnmpEvent.h"
#include "probes/SnmpSockets.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace mirovane {

/// Who reads the sockets: one thread at any time. That is the receive thread, but for stretches in which one
/// caller after the other waits for its own reply: then the waiting caller reads, which spares the switch
/// from thread to thread that would cost more than the rest of a query. The receive thread steps back when
/// nothing is outstanding any more and comes back when a caller leaves others behind, or when no caller has
/// waited for a moment.
class SnmpReading {
public:
    /// `outstanding` tells whether any reply is waited for. Both functions are called on any thread.
    SnmpReading(SnmpSockets& sockets, SnmpSockets::Handler handler, std::function<bool()> outstanding)
        : sockets_(sockets), handler_(std::move(handler)), outstanding_(std::move(outstanding)) {}

    /// The receive thread's work, until stop().
    void run();
    void stop();

    /// Waits for the event, reading meanwhile where that is useful. The caller holds no lock that a callback
    /// takes.
    SnmpEvent::WaitResult wait(SnmpEvent& event, SnmpEvent::Deadline deadline, const std::stop_token& stop);

private:
    using Clock = std::chrono::steady_clock;

    bool takeSeat();
    void leaveSeat();
    bool callersMayRead() const;
    void stepBack(std::unique_lock<std::mutex>& lock);

    SnmpSockets& sockets_;
    const SnmpSockets::Handler handler_;
    const std::function<bool()> outstanding_;

    std::mutex mutex_;
    std::condition_variable changed_;
    std::atomic<bool> stopping_{false}; ///< written under the lock
    bool callerReads_ = false;
    bool receiverReads_ = true; ///< or is about to
    std::size_t others_ = 0;    ///< callers who wait without reading
    Clock::time_point lastWait_{};
};

} // namespace mirovane
