#include "probes/SystemHostProbes.h"

#include "probes/HostAddress.h"

#include <cerrno>

namespace mirovane {

SystemHostProbes::SystemHostProbes()
    : SystemHostProbes(std::make_unique<IcmpEngine>(), std::make_unique<Resolver>()) {}

SystemHostProbes::SystemHostProbes(std::unique_ptr<IcmpEngine> engine, std::unique_ptr<Resolver> resolver)
    : engine_(std::move(engine)), resolver_(std::move(resolver)) {}

PingOutcome SystemHostProbes::ping(const std::string& target, const EchoOptions& options,
                                   std::stop_token stop) {
    PingOutcome outcome;
    if (engine_->unusable()) {
        outcome.echo.kind = EchoKind::NotPermitted;
        return outcome;
    }
    if (const auto dotted = parseDottedAddress(target)) {
        outcome.address = *dotted;
    } else {
        const auto found = resolver_->addressOf(target, Resolver::Milliseconds(options.timeoutMs), stop);
        if (!found) {
            outcome.echo.kind = stop.stop_requested() ? EchoKind::Stopped : EchoKind::SendFailed;
            return outcome;
        }
        outcome.lookedUp = true;
        outcome.address = *found;
    }
    outcome.found = true;
    if (outcome.address == 0) { // the system would take that for itself
        outcome.echo.kind = EchoKind::SendFailed;
        outcome.echo.systemError = EDESTADDRREQ;
        return outcome;
    }
    outcome.echo = engine_->echo(outcome.address, options, std::move(stop));
    return outcome;
}

bool SystemHostProbes::PingHost(const std::string& target, PingReply& reply,
                                std::optional<std::uint32_t>& resolvedAddress, std::uint8_t ttl,
                                std::uint32_t timeoutMs, std::uint8_t payloadSize, std::stop_token stop) {
    const PingOutcome outcome = ping(target, {ttl, timeoutMs, payloadSize}, std::move(stop));
    if (outcome.lookedUp) {
        resolvedAddress = outcome.address;
    }
    if (!outcome.answered()) {
        return false;
    }
    reply = {outcome.echo.reporter, outcome.echo.roundTripMs()};
    return true;
}

bool SystemHostProbes::ResolveHost(const std::string& target, std::uint32_t& address, std::string& hostName,
                                   std::stop_token stop) {
    if (const auto dotted = parseDottedAddress(target)) {
        if (auto name = resolver_->nameOf(*dotted, Resolver::defaultTimeout, std::move(stop))) {
            hostName = std::move(*name);
        }
        return true;
    }
    const auto found = resolver_->addressOf(target, Resolver::defaultTimeout, std::move(stop));
    if (found) {
        address = *found;
    }
    return found.has_value();
}

std::string describePing(const std::string& target, const PingOutcome& outcome, const EchoOptions& options) {
    if (!outcome.found && outcome.echo.kind == EchoKind::SendFailed) {
        return target + ": unknown host";
    }
    return target + ": " + describeEcho(outcome.echo, options);
}

} // namespace mirovane
