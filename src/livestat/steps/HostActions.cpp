#include "livestat/steps/HostActions.h"

#include "probes/names/HostAddress.h"

#include <optional>

namespace mirovane {

namespace {

bool answers(CActionRun& run, const std::string& host) {
    PingReply reply;
    std::optional<std::uint32_t> resolved;
    const bool answered = run.probes.hosts.PingHost(host, reply, resolved, pingTtl, pingTimeoutMs,
                                                    pingPayloadSize, run.input.stop);
    run.say([&] {
        const std::string shown = resolved ? host + " (" + formatAddress(*resolved) + ")" : host;
        if (answered)
            return shown + ": reply from " + formatAddress(reply.address) + " after " +
                   std::to_string(reply.roundTripMs) + " ms";
        if (run.stopRequested())
            return shown + ": stopped";
        if (const auto trouble = run.probes.hosts.echoUnusable())
            return shown + ": " + *trouble;
        if (!resolved && !parseDottedAddress(host))
            return shown + ": unknown host";
        return shown + ": no reply within " + std::to_string(pingTimeoutMs) + " ms";
    });
    return answered;
}

std::string addressOf(CActionRun& run, const std::string& name) {
    std::uint32_t address = 0;
    std::string unused;
    if (parseDottedAddress(name)) {
        run.say([&] { return name + ": is an address already, not looked up"; });
        return {};
    }
    const bool found = run.probes.hosts.ResolveHost(name, address, unused, run.input.stop) && address != 0;
    run.say([&] { return name + ": " + (found ? formatAddress(address) : "no IPv4 address is known"); });
    return found ? formatAddress(address) : std::string();
}

std::string nameOf(CActionRun& run, const std::string& address) {
    std::uint32_t unused = 0;
    std::string name;
    if (!parseDottedAddress(address)) {
        run.say([&] { return address + ": is not an IPv4 address, not looked up"; });
        return {};
    }
    if (!run.probes.hosts.ResolveHost(address, unused, name, run.input.stop))
        name.clear();
    run.say([&] { return address + ": " + (name.empty() ? "no name is known" : name); });
    return name;
}

template <typename LookUp>
void lookUpAll(CActionRun& run, LookUp one) {
    run.outcome.failed = false;
    for (const std::string& host : argumentTokens(run.argument)) {
        run.outcome.result = one(run, host);
        run.outcome.failed = run.outcome.result.empty();
        if (run.stopRequested()) {
            run.outcome.cancelled = true;
            return;
        }
    }
}

} // namespace

void pingHosts(CActionRun& run) {
    run.outcome.failed = true;
    for (const std::string& host : argumentTokens(run.argument)) {
        if (answers(run, host)) {
            run.outcome.failed = false;
            return;
        }
        if (run.stopRequested()) {
            run.outcome.cancelled = true;
            return;
        }
    }
}

void lookUpAddresses(CActionRun& run) {
    lookUpAll(run, addressOf);
}

void lookUpNames(CActionRun& run) {
    lookUpAll(run, nameOf);
}

} // namespace mirovane
