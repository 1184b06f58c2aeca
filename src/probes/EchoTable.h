#pragma once

#include "probes/EchoSocket.h"
#include "probes/EchoTypes.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

namespace mirovane {

using ProbeId = std::uint64_t;

/// A probe that has ended and whose caller is still to be told.
struct EchoCompletion {
    std::shared_ptr<const EchoCallback> callback;
    EchoResult result;
};

/// The probes in flight: who waits for which sequence number and until when. Pure bookkeeping on values, no
/// socket, no clock, no thread of its own; its owner guards it.
///
/// A sequence number is never given to a second probe while the first waits for its reply, and the numbers
/// are handed out in a circle, so that a reply that comes too late finds its number unused. With all 65,536
/// numbers in flight further probes stand in line in the order of their start; their time-out begins when
/// they get a number.
class EchoTable {
public:
    using Time = std::chrono::steady_clock::time_point;

    explicit EchoTable(std::size_t capacity = 65536); ///< numbers that may be in flight, at most 65,536

    /// Adds a probe. Its request is to be sent now, unless it has to stand in line: because it may not leave
    /// yet, no number is free or others stand there already.
    struct Added {
        ProbeId id = 0;
        std::optional<EchoRequest> request;
    };
    Added add(std::uint32_t address, const EchoOptions& options, std::shared_ptr<const EchoCallback> callback,
              Time now, bool mayLeave = true);

    /// Ends the probe that the message is for, if it is for one.
    std::optional<EchoCompletion> match(const EchoArrival& arrival);

    /// Ends a probe without a message; nothing when it has ended already.
    std::optional<EchoCompletion> end(ProbeId id, EchoKind kind, int systemError = 0);

    /// Ends one probe whose deadline is not after `now`; nothing when there is none.
    std::optional<EchoCompletion> expireOne(Time now);

    /// Ends any one probe, for the shut-down.
    std::optional<EchoCompletion> endAny();

    /// Gives the first probe in line a free number; nothing when none stands there or no number is free.
    std::optional<EchoRequest> admitOne(Time now);

    /// A request that was refused leaves at last (`refusal` 0), or the system refuses it for now (an errno).
    /// False when the probe has ended meanwhile.
    bool noteSending(ProbeId id, std::uint16_t sequence, Time now, int refusal);

    /// The probe that holds the number at present.
    ProbeId holder(std::uint16_t sequence) const;

    /// When to call expireOne() next.
    std::optional<Time> nextDeadline();

    bool canAdmit() const { return inFlight_ < probes_.size(); } ///< a number is free
    std::size_t inFlight() const { return inFlight_; }
    std::size_t inLine() const { return line_.size(); }

private:
    struct Probe {
        ProbeId id = 0;
        std::uint32_t address = 0;
        EchoOptions options;
        std::shared_ptr<const EchoCallback> callback;
        Time sentAt{};
        int refusal = 0; ///< errno while the request has not left yet
    };
    struct Due {
        Time at;
        ProbeId id;
        std::uint16_t sequence;
    };

    std::uint16_t takeNumber();
    EchoRequest place(std::unique_ptr<Probe> probe, Time now);
    std::unique_ptr<Probe> remove(std::uint16_t sequence);
    std::unique_ptr<Probe> find(ProbeId id);
    void forgetEndedDeadlines();
    bool stillDue(const Due& due) const;
    static EchoCompletion complete(const Probe& probe, EchoKind kind);

    std::vector<std::unique_ptr<Probe>> probes_; ///< by sequence number
    std::vector<Due> dues_; ///< heap, earliest first; holds entries of ended probes for a while
    std::deque<std::unique_ptr<Probe>> line_;
    std::unordered_map<ProbeId, std::uint16_t> admitted_; ///< numbers of the probes that stood in line
    std::size_t inFlight_ = 0;
    std::size_t nextNumber_ = 0;
    ProbeId nextSerial_ = 1;
};

} // namespace mirovane
