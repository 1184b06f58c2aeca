#include "cli/probes/ProbeCommands.h"

#include "cli/probes/OrderedResults.h"
#include "probes/SystemHostProbes.h"
#include "probes/names/HostAddress.h"

#include <array>
#include <cstdio>
#include <stop_token>

namespace mirovane {

namespace {

constexpr std::size_t mostLookUps = 256; ///< as many as the resolver runs at once

using Outcomes = COrderedResults<PingOutcome>;

std::string milliseconds(std::chrono::nanoseconds span) {
    std::array<char, 32> text{};
    const double value = std::chrono::duration<double, std::milli>(span).count();
    const int length = std::snprintf(text.data(), text.size(), "%.2f ms", value);
    return {text.data(), static_cast<std::size_t>(length)};
}

std::string pingLine(const std::string& host, const PingOutcome& outcome) {
    if (outcome.address == 0)
        return host + " - " + outcome.answer.why;
    const std::string line = host + " " + formatAddress(outcome.address) + " ";
    if (!outcome.answer.isYes())
        return line + outcome.answer.why;
    const bool byAnother = outcome.echo.reporter != outcome.address;
    return line + milliseconds(outcome.echo.roundTrip) +
           (byAnother ? ", answered by " + formatAddress(outcome.echo.reporter) : std::string());
}

/// Addresses go out at once; names need a thread each for their look-up.
class CAllPings {
public:
    CAllPings(CSystemHostProbes& probes, const std::vector<std::string>& hosts, const EchoOptions& options)
        : outcomes_(hosts.size()),
          names_(namesAmong(hosts)),
          lookUps_(names_.size(), mostLookUps, [this, &probes, &hosts, options](std::size_t index) {
              const std::size_t host = names_[index];
              outcomes_.set(host, probes.ping(hosts[host], options, std::stop_token()));
          }) {
        for (std::size_t host = 0; host < hosts.size(); ++host) {
            if (const auto address = parseDottedAddress(hosts[host]))
                probes.engine().start(
                    *address, options,
                    [this, host, address, options](const EchoResult& echo) {
                        outcomes_.set(host, {answerOf(echo, options), false, *address, echo});
                    });
        }
    }

    PingOutcome take(std::size_t host) { return outcomes_.take(host); }

private:
    static std::vector<std::size_t> namesAmong(const std::vector<std::string>& hosts) {
        std::vector<std::size_t> names;
        for (std::size_t host = 0; host < hosts.size(); ++host)
            if (!parseDottedAddress(hosts[host]))
                names.push_back(host);
        return names;
    }

    Outcomes outcomes_;
    std::vector<std::size_t> names_;
    CParallelWork lookUps_;
};

struct LookUp {
    ProbeAnswer answer;
    std::string result;
};

LookUp lookUp(CSystemHostProbes& probes, const std::string& target) {
    std::uint32_t address = 0;
    std::string name;
    ProbeAnswer answer = probes.ResolveHost(target, address, name, std::stop_token());
    if (!parseDottedAddress(target))
        return {answer, answer.isYes() ? formatAddress(address) : std::string()};
    if (answer.isYes() && name.empty())
        answer = ProbeAnswer::no("no name is known for this address");
    return {answer, name};
}

constexpr std::array pingOptions{
    OptionDefinition{"-v", 0, "", "say first by which kind of socket, or what to do when none is allowed"},
};

constexpr std::string_view pingDetails = "Exit status 1 when any of them is silent.\n";

ExitStatus runPing(CommandContext& context) {
    const std::vector<std::string>& hosts = context.arguments.positionals;
    const EchoOptions options;
    CSystemHostProbes probes;
    if (context.arguments.has("-v")) {
        const auto unusable = probes.echoUnusable();
        context.out.printLine("socket: " + (unusable ? *unusable : probes.socketKind()));
    }
    CAllPings pings(probes, hosts, options);
    ExitStatus status = ExitStatus::Done;
    for (std::size_t host = 0; host < hosts.size(); ++host) {
        const PingOutcome outcome = pings.take(host);
        context.out.printLine(printable(pingLine(hosts[host], outcome)));
        context.out.flush();
        if (!outcome.answer.isYes())
            status = ExitStatus::No;
    }
    return status;
}

} // namespace

constinit const Command pingCommand{
    .name = "ping",
    .help = "send one echo to each host, as Live Stat does",
    .usage = "[-v] HOST...",
    .least = 1,
    .most = anyNumber,
    .options = pingOptions,
    .details = pingDetails,
    .run = runPing,
};

namespace {

constexpr std::string_view lookupDetails = "Exit status 1 when any of them is not found.\n";

ExitStatus runLookup(CommandContext& context) {
    const std::vector<std::string>& targets = context.arguments.positionals;
    CSystemHostProbes probes;
    COrderedResults<LookUp> results(targets.size());
    const CParallelWork work(targets.size(), mostLookUps,
                             [&](std::size_t index) { results.set(index, lookUp(probes, targets[index])); });
    ExitStatus status = ExitStatus::Done;
    for (std::size_t index = 0; index < targets.size(); ++index) {
        const LookUp found = results.take(index);
        if (found.answer.isYes()) {
            context.out.printLine(printable(targets[index] + " " + found.result));
            continue;
        }
        context.out.diagnose("cannot look up " + targets[index].substr(0, 300), found.answer.why);
        status = ExitStatus::No;
    }
    return status;
}

} // namespace

constinit const Command lookupCommand{
    .name = "lookup",
    .help = "look up addresses of names and names of addresses",
    .usage = "HOST_OR_ADDRESS...",
    .least = 1,
    .most = anyNumber,
    .details = lookupDetails,
    .run = runLookup,
};

} // namespace mirovane
