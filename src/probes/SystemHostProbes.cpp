#include "probes/SystemHostProbes.h"

#include "probes/names/HostAddress.h"

#include <arpa/inet.h>
#include <cerrno>

namespace mirovane {

CSystemHostProbes::CSystemHostProbes()
    : CSystemHostProbes(std::make_unique<CIcmpEngine>(), std::make_unique<CResolver>()) {}

CSystemHostProbes::CSystemHostProbes(std::unique_ptr<CIcmpEngine> engine, std::unique_ptr<CResolver> resolver)
    : engine_(std::move(engine)), resolver_(std::move(resolver)) {}

namespace {

/// The kernel refuses a ping to everybody of a network in the same words as one to a forbidden route, and
/// only the latter is this computer's trouble: nobody can be found on at the former.
bool isToEverybody(const EchoResult& echo) {
    constexpr std::uint32_t lastPart = 0xFF;
    return echo.kind == EchoKind::SendFailed && echo.systemError == EACCES &&
           (ntohl(echo.target) & lastPart) == lastPart;
}

} // namespace

ProbeAnswer answerOf(const EchoResult& echo, const EchoOptions& options) {
    if (isToEverybody(echo))
        return ProbeAnswer::no("this is the address of all hosts of a network");
    switch (echo.kind) {
    case EchoKind::Reply:
        return ProbeAnswer::yes();
    case EchoKind::Stopped:
        return ProbeAnswer::stopped();
    case EchoKind::NotPermitted:
    case EchoKind::SendFailed:
        return ProbeAnswer::couldNotAsk(AskedThrough::Echo, describeEcho(echo, options));
    default:
        return ProbeAnswer::no(describeEcho(echo, options));
    }
}

PingOutcome CSystemHostProbes::ping(const std::string& target, const EchoOptions& options,
                                    const std::stop_token& stop) {
    PingOutcome outcome;
    if (const auto unusable = engine_->unusable()) {
        outcome.answer = ProbeAnswer::couldNotAsk(AskedThrough::Echo, *unusable);
        outcome.echo.kind = EchoKind::NotPermitted;
        return outcome;
    }
    if (const auto dotted = parseDottedAddress(target)) {
        outcome.address = *dotted;
    } else {
        auto found = resolver_->addressOf(target, CResolver::Milliseconds(options.timeoutMs), stop);
        outcome.answer = std::move(found.answer);
        if (!outcome.answer.isYes())
            return outcome;
        outcome.lookedUp = true;
        outcome.address = found.value;
    }
    outcome.echo = engine_->echo(outcome.address, options, stop);
    outcome.answer = answerOf(outcome.echo, options);
    return outcome;
}

ProbeAnswer CSystemHostProbes::PingHost(const std::string& target, PingReply& reply,
                                        std::optional<std::uint32_t>& resolvedAddress, std::uint8_t ttl,
                                        std::uint32_t timeoutMs, std::uint8_t payloadSize,
                                        std::stop_token stop) {
    PingOutcome outcome = ping(target, {ttl, timeoutMs, payloadSize}, stop);
    if (outcome.lookedUp)
        resolvedAddress = outcome.address;
    if (outcome.answer.isYes())
        reply = {outcome.echo.reporter, outcome.echo.roundTripMs()};
    return std::move(outcome.answer);
}

ProbeAnswer CSystemHostProbes::ResolveHost(const std::string& target, std::uint32_t& address,
                                           std::string& hostName, std::stop_token stop) {
    if (const auto dotted = parseDottedAddress(target)) {
        auto name = resolver_->nameOf(*dotted, CResolver::defaultTimeout, std::move(stop));
        if (name.found())
            hostName = std::move(name.value);
        // Without a name it is a yes with an empty one: the address itself was right.
        return name.answer.kind == ProbeAnswer::Kind::No ? ProbeAnswer::yes() : std::move(name.answer);
    }
    auto found = resolver_->addressOf(target, CResolver::defaultTimeout, std::move(stop));
    if (found.found())
        address = found.value;
    return std::move(found.answer);
}

} // namespace mirovane
