#include "livestat/steps/HostActions.h"

#include "probes/names/HostAddress.h"

#include <optional>
#include <utility>

namespace mirovane {

namespace {

ProbeAnswer ping(CActionRun& run, const std::string& host) {
    PingReply reply;
    std::optional<std::uint32_t> resolved;
    ProbeAnswer answer = run.probes.hosts.PingHost(host, reply, resolved, pingTtl, pingTimeoutMs,
                                                   pingPayloadSize, run.input.stop);
    run.say([&] {
        const std::string shown = resolved ? host + " (" + formatAddress(*resolved) + ")" : host;
        if (answer.isYes())
            return shown + ": reply from " + formatAddress(reply.address) + " after " +
                   std::to_string(reply.roundTripMs) + " ms";
        return shown + ": " + answer.why;
    });
    return answer;
}

/// A yes or a no, with what was found in `found`.
using LookUp = ProbeAnswer (*)(CActionRun& run, const std::string& host, std::string& found);

ProbeAnswer addressOf(CActionRun& run, const std::string& name, std::string& found) {
    if (parseDottedAddress(name))
        return ProbeAnswer::no("is an address already, not looked up");
    std::uint32_t address = 0;
    std::string unused;
    ProbeAnswer answer = run.probes.hosts.ResolveHost(name, address, unused, run.input.stop);
    if (answer.isYes() && address == 0)
        return ProbeAnswer::no("no IPv4 address is known for this name");
    if (answer.isYes())
        found = formatAddress(address);
    return answer;
}

ProbeAnswer nameOf(CActionRun& run, const std::string& address, std::string& found) {
    if (!parseDottedAddress(address))
        return ProbeAnswer::no("is not an IPv4 address, not looked up");
    std::uint32_t unused = 0;
    ProbeAnswer answer = run.probes.hosts.ResolveHost(address, unused, found, run.input.stop);
    if (answer.isYes() && found.empty())
        return ProbeAnswer::no("no name is known for this address");
    return answer;
}

/// The last host decides, so only there it matters that it could not be asked.
void lookUpAll(CActionRun& run, LookUp one) {
    run.outcome.failed = false;
    ProbeAnswer last = ProbeAnswer::yes();
    std::string lastHost;
    for (const std::string& host : argumentTokens(run.argument)) {
        std::string found;
        last = one(run, host, found);
        lastHost = host;
        run.say([&] { return host + ": " + (last.isYes() ? found : last.why); });
        run.outcome.failed = !last.isYes();
        run.outcome.result = last.isYes() ? found : std::string();
        if (run.stopRequested())
            break;
    }
    run.endedBy(last, lastHost);
}

} // namespace

/// One host that answers is enough. Off takes a no of each: where one of them could not be asked, the device
/// may be alive.
void pingHosts(CActionRun& run) {
    run.outcome.failed = true;
    std::optional<std::pair<ProbeAnswer, std::string>> notAsked;
    for (const std::string& host : argumentTokens(run.argument)) {
        ProbeAnswer answer = ping(run, host);
        if (answer.isYes()) {
            run.outcome.failed = false;
            return;
        }
        if (run.stopRequested()) {
            run.outcome.cancelled = true;
            return;
        }
        if (answer.couldNotBeAsked() && !notAsked)
            notAsked = {std::move(answer), host};
    }
    if (notAsked)
        run.endedBy(notAsked->first, notAsked->second);
}

void lookUpAddresses(CActionRun& run) {
    lookUpAll(run, addressOf);
}

void lookUpNames(CActionRun& run) {
    lookUpAll(run, nameOf);
}

} // namespace mirovane
