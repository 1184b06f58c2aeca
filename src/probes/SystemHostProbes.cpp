#include "probes/SystemHostProbes.h"

#include "probes/names/HostAddress.h"

namespace mirovane {

CSystemHostProbes::CSystemHostProbes()
    : CSystemHostProbes(std::make_unique<CIcmpEngine>(), std::make_unique<CResolver>()) {}

CSystemHostProbes::CSystemHostProbes(std::unique_ptr<CIcmpEngine> engine, std::unique_ptr<CResolver> resolver)
    : engine_(std::move(engine)), resolver_(std::move(resolver)) {}

PingOutcome CSystemHostProbes::ping(const std::string& target, const EchoOptions& options,
                                    const std::stop_token& stop) {
    PingOutcome outcome;
    if (engine_->unusable()) {
        outcome.echo.kind = EchoKind::NotPermitted;
        return outcome;
    }
    if (const auto dotted = parseDottedAddress(target)) {
        outcome.address = *dotted;
    } else {
        const auto found = resolver_->addressOf(target, CResolver::Milliseconds(options.timeoutMs), stop);
        if (!found) {
            outcome.echo.kind = stop.stop_requested() ? EchoKind::Stopped : EchoKind::SendFailed;
            return outcome;
        }
        outcome.lookedUp = true;
        outcome.address = *found;
    }
    outcome.found = true;
    outcome.echo = engine_->echo(outcome.address, options, stop);
    return outcome;
}

bool CSystemHostProbes::PingHost(const std::string& target, PingReply& reply,
                                 std::optional<std::uint32_t>& resolvedAddress, std::uint8_t ttl,
                                 std::uint32_t timeoutMs, std::uint8_t payloadSize, std::stop_token stop) {
    const PingOutcome outcome = ping(target, {ttl, timeoutMs, payloadSize}, stop);
    if (outcome.lookedUp)
        resolvedAddress = outcome.address;
    if (!outcome.answered())
        return false;
    reply = {outcome.echo.reporter, outcome.echo.roundTripMs()};
    return true;
}

bool CSystemHostProbes::ResolveHost(const std::string& target, std::uint32_t& address, std::string& hostName,
                                    std::stop_token stop) {
    if (const auto dotted = parseDottedAddress(target)) {
        if (auto name = resolver_->nameOf(*dotted, CResolver::defaultTimeout, std::move(stop)))
            hostName = std::move(*name);
        return true;
    }
    const auto found = resolver_->addressOf(target, CResolver::defaultTimeout, std::move(stop));
    if (found)
        address = *found;
    return found.has_value();
}

} // namespace mirovane
