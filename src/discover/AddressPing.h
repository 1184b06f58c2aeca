#pragma once

#include "platform/Workers.h"
#include "probes/HostProbes.h"

#include <chrono>
#include <cstdint>
#include <future>
#include <optional>
#include <stop_token>
#include <string>

namespace mirovane {

/// Live Discover's one ping in flight. Main thread only; the ping runs on `workers`, which see an address and
/// a stop token and nothing else.
class CAddressPing {
public:
    /// Both must outlive the ping; it may end after this object, which then stops it.
    CAddressPing(HostProbes& probes, Workers& workers) : probes_(probes), workers_(workers) {}
    ~CAddressPing() { forget(); }
    CAddressPing(const CAddressPing&) = delete;
    CAddressPing& operator=(const CAddressPing&) = delete;

    /// False when the system gives no thread for it. None may be in flight, and the answer of the one before
    /// must have been taken.
    bool start(std::uint32_t address);

    bool inFlight() const { return ping_ && !answered(); }

    /// Until the answer has come in: milliseconds after stop().
    void wait() const {
        if (ping_)
            ping_->answer.wait();
    }

    struct Answer {
        enum class Kind { Silent, Answered, NotAsked, Stopped };
        Kind kind;
        std::uint32_t address;
        std::string why; ///< it could not be asked
    };

    /// Of a ping that has ended, once. A ping that was told to stop has no answer that counts.
    std::optional<Answer> take();

    /// One that has ended needs no second try.
    void stop();

    /// Stops it, and nobody wants the answer.
    void forget();

private:
    struct Ping {
        std::uint32_t address;
        std::stop_source stop;
        std::future<ProbeAnswer> answer;
    };

    bool answered() const {
        return ping_->answer.wait_for(std::chrono::milliseconds(0)) == std::future_status::ready;
    }

    HostProbes& probes_;
    Workers& workers_;
    std::optional<Ping> ping_; ///< in flight, or its answer not taken yet
};

} // namespace mirovane
