#pragma once

#include "probes/HostProbes.h"
#include "probes/icmp/EchoTypes.h"
#include "probes/icmp/IcmpEngine.h"
#include "probes/names/Resolver.h"

#include <memory>

namespace mirovane {

/// A probe with its details, for those who show them.
struct PingOutcome {
    ProbeAnswer answer;
    bool lookedUp = false;     ///< the target is a name that was found
    std::uint32_t address = 0; ///< whom the echo was for, network byte order; 0 when nobody was found
    EchoResult echo;           ///< when somebody was
};

/// What an echo's end says about the host.
ProbeAnswer answerOf(const EchoResult& echo, const EchoOptions& options);

/// The probes of the real network: one echo engine and one resolver for the whole program, owned by its main
/// object.
class CSystemHostProbes final : public HostProbes {
public:
    CSystemHostProbes();
    CSystemHostProbes(std::unique_ptr<CIcmpEngine> engine, std::unique_ptr<CResolver> resolver);

    ProbeAnswer PingHost(const std::string& target, PingReply& reply,
                         std::optional<std::uint32_t>& resolvedAddress, std::uint8_t ttl,
                         std::uint32_t timeoutMs, std::uint8_t payloadSize, std::stop_token stop) override;

    ProbeAnswer ResolveHost(const std::string& target, std::uint32_t& address, std::string& hostName,
                            std::stop_token stop) override;

    std::optional<std::string> echoUnusable() override { return engine_->unusable(); }

    /// PingHost() with its details. A name's look-up and the echo each take at most the time-out.
    PingOutcome ping(const std::string& target, const EchoOptions& options, const std::stop_token& stop);

    /// Which kind of socket the echoes use.
    std::string socketKind() { return engine_->socketKind(); }

    /// For sweeps, which keep many probes in flight from one thread. Lives as long as this object.
    CIcmpEngine& engine() { return *engine_; }
    CResolver& resolver() { return *resolver_; }

private:
    const std::unique_ptr<CIcmpEngine> engine_;
    const std::unique_ptr<CResolver> resolver_;
};

} // namespace mirovane
