#pragma once

#include "probes/HostProbes.h"
#include "probes/icmp/EchoTypes.h"
#include "probes/icmp/IcmpEngine.h"
#include "probes/names/Resolver.h"

#include <memory>

namespace mirovane {

/// A probe with its reasons, for those who show them.
struct PingOutcome {
    bool found = false;        ///< the target is an address, or a name that was found
    bool lookedUp = false;     ///< the target is a name that was found
    std::uint32_t address = 0; ///< network byte order, when found
    EchoResult echo;           ///< SendFailed for a name that was not found

    bool answered() const { return found && echo.answered(); }
};

/// The probes of the real network: one echo engine and one resolver for the whole program, owned by its main
/// object.
class CSystemHostProbes final : public HostProbes {
public:
    CSystemHostProbes();
    CSystemHostProbes(std::unique_ptr<CIcmpEngine> engine, std::unique_ptr<CResolver> resolver);

    bool PingHost(const std::string& target, PingReply& reply, std::optional<std::uint32_t>& resolvedAddress,
                  std::uint8_t ttl, std::uint32_t timeoutMs, std::uint8_t payloadSize,
                  std::stop_token stop) override;

    bool ResolveHost(const std::string& target, std::uint32_t& address, std::string& hostName,
                     std::stop_token stop) override;

    std::optional<std::string> echoUnusable() override { return engine_->unusable(); }

    /// PingHost() with its reasons. A name's look-up and the echo each take at most the time-out.
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
