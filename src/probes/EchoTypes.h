#pragma once

#include "probes/HostProbes.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

namespace mirovane {

/// How one echo request ended.
enum class EchoKind {
    Reply,        ///< the right reply from the right host: the only kind that means "it answers"
    TimedOut,     ///< nothing came within the time-out
    TtlExpired,   ///< a router on the way says that the request took too many hops
    Unreachable,  ///< a router or the host itself refuses; see icmpType and icmpCode
    WrongPayload, ///< the host's reply carries other bytes than were sent
    WrongLength,  ///< the host's reply carries more or fewer bytes than were sent
    Stopped,      ///< cancelled, its stop token was requested, or the engine is going away
    NotPermitted, ///< this process may not send echoes at all; see IcmpEngine::unusable()
    SendFailed,   ///< the system refused to send it; see systemError
};

struct EchoOptions {
    std::uint8_t ttl = pingTtl;                 ///< hops; 0 can't be sent
    std::uint32_t timeoutMs = pingTimeoutMs;    ///< counts from the moment of sending
    std::uint8_t payloadSize = pingPayloadSize; ///< bytes
};

struct EchoResult {
    EchoKind kind = EchoKind::TimedOut;
    std::uint32_t target = 0; ///< whom the request was for, network byte order
    std::uint32_t reporter =
        0; ///< who sent the reply or the ICMP error, network byte order; 0 when nobody did
    std::chrono::nanoseconds roundTrip{0}; ///< replies only
    std::uint8_t icmpType = 0;             ///< of an ICMP error
    std::uint8_t icmpCode = 0;
    int systemError = 0; ///< errno of a failed send

    bool answered() const { return kind == EchoKind::Reply; }
    std::uint32_t roundTripMs() const;
};

using EchoCallback = std::function<void(const EchoResult&)>;

/// One line for people: "answered in 0.34 ms", "no reply within 5000 ms", "host unreachable, says 10.0.0.1".
std::string describeEcho(const EchoResult& result, const EchoOptions& options);

} // namespace mirovane
