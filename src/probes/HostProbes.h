#pragma once

#include "platform/ProbeAnswer.h"
#include "probes/icmp/EchoTypes.h"

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>

namespace mirovane {

/// Reachability and names of hosts, as Live Stat and Live Discover ask for them. Any thread, any number at
/// once; each call blocks its caller until it knows, until its time-out or until `stop` is requested. Never
/// throws, shows nothing.
class HostProbes {
public:
    virtual ~HostProbes() = default;

    /// One echo request, no retry. Yes when the right reply came in time; only then is `reply` written.
    /// `target` is a dotted IPv4 address or a host name; `resolvedAddress` (network byte order) is written
    /// only when a name had to be looked up and was found, whether or not the probe then succeeds.
    virtual ProbeAnswer PingHost(const std::string& target, PingReply& reply,
                                 std::optional<std::uint32_t>& resolvedAddress, std::uint8_t ttl,
                                 std::uint32_t timeoutMs, std::uint8_t payloadSize, std::stop_token stop) = 0;

    /// A dotted address: reverse look-up into `hostName`, yes even when it has no name (`hostName` then
    /// stays). A name: forward look-up, the first IPv4 address into `address` (network byte order), no when
    /// it has none.
    virtual ProbeAnswer ResolveHost(const std::string& target, std::uint32_t& address, std::string& hostName,
                                    std::stop_token stop) = 0;

    /// Why no echo can be sent on this computer and what to do about it, one line; nothing while echoes work.
    /// Starts the echo service if that has not happened yet.
    virtual std::optional<std::string> echoUnusable() = 0;
};

} // namespace mirovane
