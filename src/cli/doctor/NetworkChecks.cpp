#include "cli/doctor/Check.h"
#include "model/records/Text.h"
#include "platform/Host.h"
#include "probes/names/HostAddress.h"
#include "probes/snmp/transport/SNMPMessage.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

CheckResult checkEchoes(const DoctorPlaces& places) {
    const EchoSocketOpening opening = places.openEcho();
    if (opening.socket)
        return CheckResult::works(opening.socket->kind());
    return CheckResult::fails("the system does not let this program send pings",
                              "sudo setcap cap_net_raw+ep " + places.program);
}

/// A name with other characters is refused before any server is asked.
bool isAskedFor(const std::string& name) {
    const auto usual = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
               c == '.';
    };
    return classifyHostText(name) == HostTextKind::Name && std::ranges::all_of(name, usual);
}

/// What Live Stat would ask for first: the name of a device, else this computer's own.
std::string nameToAsk(const DoctorPlaces& places) {
    if (places.content)
        for (const auto& record : places.content.value().records)
            if (record->isDevice() && isAskedFor(record->Name))
                return record->Name;
    return computerName();
}

CheckResult checkNames(const DoctorPlaces& places) {
    const std::string name = nameToAsk(places);
    const LookedUp<std::uint32_t> found = places.names->addressOf(name);
    const std::string shown = "\"" + displayText(name) + "\"";
    if (found.found())
        return CheckResult::works(shown + " is " + formatAddress(found.value));
    if (!found.answer.couldNotBeAsked())
        return CheckResult::works("an answer came: " + shown + " is not known");
    return CheckResult::fails("no name server answers (" + found.answer.why + ")",
                              "look at the nameserver lines of /etc/resolv.conf: getent hosts " + name);
}

/// There and back again: the library that writes messages is another package's.
CheckResult checkSnmp(const DoctorPlaces&) {
    constexpr std::int32_t anyRequest = 4711;
    SNMPMessage message;
    message.context.community = "public";
    message.pdu.type = static_cast<std::int32_t>(SNMPPduType::GetRequest);
    message.pdu.requestId = anyRequest;
    if (const auto name = SnmpStrToOid("1.3.6.1.2.1.1.1.0"))
        message.pdu.bindings.push_back({*name, {}});
    const auto bytes = encodeSnmpMessage(message);
    const auto back = bytes ? decodeSnmpMessage(*bytes) : std::nullopt;
    if (back && back->context == message.context && back->pdu.requestId == anyRequest)
        return CheckResult::works("messages of version 1 are written and read");
    return CheckResult::fails("messages cannot be written", "sudo apt-get install --reinstall libsnmp40");
}

CheckResult checkRegistry(const DoctorPlaces& places) {
    const auto version = places.ask({places.registry.program, "--version"});
    if (!version)
        return CheckResult::note("no registries of other computers: Samba's \"net\" is not installed",
                                 "sudo apt-get install samba-common-bin");
    if (const auto trouble = credentialsTrouble(places.registry.credentialsFile)) {
        const std::string& file = places.registry.credentialsFile;
        return CheckResult::note("no account for registries of other computers: " + *trouble,
                                 "write username, password and domain into " + file + ", then chmod 600 " +
                                     file);
    }
    return CheckResult::works(*version + ", account in " + places.registry.credentialsFile);
}

constexpr std::array networkTable{
    Check{"echoes", checkEchoes, always, "start the computer anew: a socket does not hang"},
    Check{"names", checkNames, always, "look at the nameserver lines of /etc/resolv.conf"},
    Check{"snmp", checkSnmp, always, "sudo apt-get install --reinstall libsnmp40"},
    Check{"registry", checkRegistry, always, "sudo apt-get install --reinstall samba-common-bin"},
};

} // namespace

std::span<const Check> networkChecks() {
    return networkTable;
}

} // namespace mirovane
