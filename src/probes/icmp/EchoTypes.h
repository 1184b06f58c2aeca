#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace mirovane {

/// What Live Stat and Live Discover send: a host more than ten hops away counts as Off.
constexpr std::uint8_t pingTtl = 10;
constexpr std::uint32_t pingTimeoutMs = 5000;
constexpr std::uint8_t pingPayloadSize = 32;

/// A successful echo.
struct PingReply {
    std::uint32_t address = 0;     ///< IPv4 address that answered, network byte order
    std::uint32_t roundTripMs = 0; ///< milliseconds
};

/// How one echo request ended.
enum class EchoKind {
    Reply,        ///< the right reply from the right host: the only kind that means "it answers"
    TimedOut,     ///< nothing came within the time-out
    TtlExpired,   ///< a router on the way says that the request took too many hops
    Unreachable,  ///< a router or the host itself refuses; see icmpType and icmpCode
    WrongPayload, ///< the host's reply carries other bytes than were sent
    WrongLength,  ///< the host's reply carries more or fewer bytes than were sent
    Stopped,      ///< the caller's stop token was requested, or the engine is going away
    NotPermitted, ///< this process may not send echoes at all; see CIcmpEngine::unusable()
    SendFailed,   ///< the system refused to send it; see systemError
};

struct EchoOptions {
    std::uint8_t ttl = pingTtl;                 ///< hops; 0 can't be sent
    std::uint32_t timeoutMs = pingTimeoutMs;    ///< counts from the moment at which the request leaves
    std::uint8_t payloadSize = pingPayloadSize; ///< bytes
};

struct EchoResult {
    EchoKind kind = EchoKind::TimedOut;
    std::uint32_t target = 0; ///< whom the request was for, network byte order
    /// Who sent the reply or the ICMP error, network byte order; 0 when nobody did.
    std::uint32_t reporter = 0;
    std::chrono::nanoseconds roundTrip{0}; ///< replies only
    std::uint8_t icmpType = 0;             ///< of an ICMP error
    std::uint8_t icmpCode = 0;
    int systemError = 0; ///< errno of a failed send

    bool answered() const { return kind == EchoKind::Reply; }
    std::uint32_t roundTripMs() const;
};

using EchoCallback = std::function<void(const EchoResult&)>;

/// What one caller asks of the engine: one request to each address, one call for each result.
struct EchoOrder {
    std::vector<std::uint32_t> addresses; ///< network byte order
    EchoOptions options;
    EchoCallback callback;
};

/// For people: "no reply within 5000 ms", "host unreachable, says 10.0.0.1".
std::string describeEcho(const EchoResult& result, const EchoOptions& options);

} // namespace mirovane
