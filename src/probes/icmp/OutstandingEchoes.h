#pragma once

#include "probes/icmp/EchoSocket.h"
#include "probes/icmp/EchoTokens.h"
#include "probes/icmp/EchoTypes.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace mirovane {

/// A request that has ended and whose caller is to be told.
struct EndedEcho {
    std::shared_ptr<const EchoOrder> order;
    EchoResult result;
};

/// The requests that wait for their reply: who holds which sequence number and until when. Pure bookkeeping
/// on values: no socket, no clock, no thread. The engine's thread owns it.
///
/// A host may answer from another of its addresses. What makes a reply the right one is the number that
/// nobody else knows; only a payload too short for it has to come from the address that was asked.
///
/// A sequence number has one holder at a time. The numbers go round in a circle, so that a reply that comes
/// too late meets a number that nobody holds.
class COutstandingEchoes {
public:
    using Time = std::chrono::steady_clock::time_point;

    COutstandingEchoes();

    /// Every number has a holder.
    bool full() const { return deadlines_.size() == probes_.size(); }

    /// Gives a request a number and starts its time-out. Call only while full() is false.
    EchoRequest add(std::shared_ptr<const EchoOrder> order, std::uint32_t address, Time now);

    /// The request leaves now. Its time-out starts again, because it may have waited for full buffers.
    void noteLeft(std::uint16_t sequence, Time now);

    /// The number's holder has not left yet.
    bool waitsToLeave(std::uint16_t sequence) const;

    /// Ends the request that the message is about; nothing when it is about none.
    std::optional<EndedEcho> match(const EchoArrival& arrival);

    /// Ends a request that can't be sent. `error` is an errno.
    EndedEcho fail(std::uint16_t sequence, int error);

    /// Ends one request whose deadline has come: TimedOut, or SendFailed when it never left.
    std::optional<EndedEcho> expireOne(Time now);

    /// Ends any one request as Stopped; nothing when no request is left.
    std::optional<EndedEcho> stopOne();

    /// When to call expireOne() next.
    std::optional<Time> nextDeadline() const;

private:
    using Deadlines = std::set<std::pair<Time, std::uint16_t>>;
    struct Probe {
        std::shared_ptr<const EchoOrder> order;
        std::uint32_t address = 0;
        std::uint64_t token = 0;
        Time sentAt;
        bool left = false;
        Deadlines::iterator deadline;
    };

    void startTimeout(Probe& probe, std::uint16_t sequence, Time now);
    EndedEcho end(std::uint16_t sequence, EchoKind kind);

    static bool isAbout(const Probe& probe, const EchoMessage& message);

    CEchoTokens tokens_;
    std::vector<std::unique_ptr<Probe>> probes_; ///< by sequence number
    Deadlines deadlines_;
    std::uint16_t nextNumber_ = 0;
};

} // namespace mirovane
