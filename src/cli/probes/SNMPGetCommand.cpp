#include "cli/probes/SNMPGetCommand.h"

#include "cli/probes/OrderedResults.h"
#include "cli/probes/ProbeCommands.h"
#include "probes/SNMPProbe.h"
#include "probes/names/Resolver.h"
#include "probes/snmp/SNMPException.h"
#include "probes/snmp/transport/SNMPUdpTransport.h"

#include <algorithm>
#include <memory>

namespace mirovane {

namespace {

constexpr std::size_t mostAtOnce = 64; ///< identifiers asked for at the same time

struct Target {
    std::string shown; ///< as the user wrote it
    HostAndPort host;
    std::string community;
};

ExitStatus getAll(SNMPManager& manager, const Target& target, const std::vector<std::string>& oids,
                  COutput& out) {
    CSystemSNMPProbe probe(manager);
    const auto query = [&](std::size_t index) {
        return SNMPQuery{target.host.host, target.community, oids[index], target.host.port, snmpTimeoutMs};
    };
    COrderedResults<SNMPAnswer> answers(oids.size());
    const CParallelWork work(oids.size(), mostAtOnce, [&](std::size_t index) {
        answers.set(index, probe.SnmpGet(query(index), std::stop_token()));
    });
    ExitStatus status = ExitStatus::Done;
    for (std::size_t index = 0; index < oids.size(); ++index) {
        const SNMPAnswer answer = answers.take(index);
        if (answer.hasValue()) {
            out.printLine(printable(answer.text));
            continue;
        }
        out.diagnose(printable("cannot get " + oids[index] + " from " + target.shown.substr(0, 300)),
                     describeSnmpAnswer(answer, query(index)));
        status = ExitStatus::No;
    }
    return status;
}

} // namespace

std::optional<HostAndPort> parseHostAndPort(const std::string& text) {
    HostAndPort result{text, 0};
    const std::size_t lastColon = text.rfind(':');
    std::optional<std::string> port;
    if (text.starts_with('[')) {
        const std::size_t end = text.find(']');
        if (end == std::string::npos || (end + 1 < text.size() && lastColon != end + 1))
            return std::nullopt;
        result.host = text.substr(1, end - 1);
        if (end + 1 < text.size())
            port = text.substr(end + 2);
    } else if (std::count(text.begin(), text.end(), ':') == 1) {
        result.host = text.substr(0, lastColon);
        port = text.substr(lastColon + 1);
    }
    if (port) {
        const auto number = numberArgument(*port, 1, UINT16_MAX);
        if (!number)
            return std::nullopt;
        result.port = static_cast<std::uint32_t>(*number);
    }
    return result.host.empty() ? std::nullopt : std::optional(result);
}

namespace {

constexpr std::string_view snmpGetDetails =
    "Prints the text of each value as a device field shows it, one line each, in the order given. Why one\n"
    "has no value goes to standard error: the agent's error status, or that nobody answered in a second.\n"
    "Exit status 1 when any of them has no value.\n"
    "OID: numbers joined by dots, such as 1.3.6.1.2.1.1.5.0.\n";

ExitStatus runSnmpGet(CommandContext& context) {
    const std::vector<std::string>& words = context.arguments.positionals;
    const auto host = parseHostAndPort(words[0]);
    if (!host) {
        return usageError(context, "invalid HOST \"" + printable(words[0]) +
                                       "\": give HOST, HOST:PORT or [ADDRESS]:PORT");
    }
    const std::vector<std::string> oids(words.begin() + 2, words.end());
    for (const std::string& oid : oids) {
        if (!SnmpStrToOid(oid)) {
            return usageError(context, "invalid OID \"" + printable(oid) +
                                           "\": give numbers joined by dots, such as 1.3.6.1.2.1.1.5.0");
        }
    }
    SNMPUdpTransport transport;
    CResolver resolver;
    SNMPManager manager(transport, resolver);
    try {
        manager.Startup();
    } catch (SNMPException* raised) {
        const std::unique_ptr<SNMPException> owned(raised);
        context.out.diagnose("cannot start SNMP",
                             "no socket can be opened (code " + std::to_string(owned->code()) + ")");
        return ExitStatus::No;
    }
    return getAll(manager, {words[0], *host, words[1]}, oids, context.out);
}

} // namespace

constinit const Command snmpGetCommand{
    .name = "snmpget",
    .help = "ask an SNMP agent for values, as Live Stat does",
    .usage = "HOST[:PORT] COMMUNITY OID...",
    .least = 3,
    .most = anyNumber,
    .details = snmpGetDetails,
    .run = runSnmpGet,
};

} // namespace mirovane
