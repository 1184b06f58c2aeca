#include "probes/SNMPProbe.h"

#include "platform/Descriptor.h"
#include "probes/names/HostAddress.h"
#include "probes/names/Resolver.h"
#include "probes/snmp/SNMPException.h"
#include "probes/snmp/SNMPObject.h"
#include "probes/snmp/SNMPRemoteAgent.h"
#include "probes/snmp/SNMPRequest.h"

#include <array>
#include <cerrno>
#include <memory>
#include <sys/socket.h>
#include <system_error>

namespace mirovane {

namespace {

SNMPAnswer answerOf(const SNMPRequest& request) {
    switch (request.status()) {
    case SNMPRequest::Status::SUCCEEDED:
        if (request.responses().empty())
            return {SNMPAnswer::Kind::Failed, "the answer holds no value", 0};
        return {SNMPAnswer::Kind::Value, request.responses().front().ValueText(), 0};
    case SNMPRequest::Status::ERROR:
        return {SNMPAnswer::Kind::ErrorStatus, "", request.errorStatus()};
    case SNMPRequest::Status::CANCELLED:
        return {SNMPAnswer::Kind::Stopped, "", 0};
    default:
        return {SNMPAnswer::Kind::TimedOut, "", 0};
    }
}

/// The layer says that there is no socket, not why: too many open files, most likely.
std::string whyNoSocket() {
    const CDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    return socket ? std::string("try again") : std::generic_category().message(errno);
}

/// The first letter in lower case: the text goes on after a colon.
std::string continued(std::string message) {
    if (!message.empty() && message[0] >= 'A' && message[0] <= 'Z')
        message[0] = static_cast<char>(message[0] - 'A' + 'a');
    return message;
}

std::string nameOfStatus(std::int32_t status) {
    constexpr std::array names{"no error",     "too big",
                               "no such name", "bad value",
                               "read only",    "general error, or the message could not be sent or read"};
    const auto index = static_cast<std::size_t>(status);
    return status >= 0 && index < names.size() ? std::string(" (") + names[index] + ")" : "";
}

} // namespace

SNMPAnswer CSystemSNMPProbe::SnmpGet(const SNMPQuery& query, std::stop_token stop) {
    try {
        manager_.Startup();
    } catch (SNMPException* raised) {
        const std::unique_ptr<SNMPException> owned(raised);
        return {SNMPAnswer::Kind::NotAsked, "no socket can be opened: " + whyNoSocket()};
    }
    if (SNMPEntity::parse(query.host))
        return ask(query, query.host, stop);
    const auto found = manager_.resolver().addressOf(query.host, CResolver::defaultTimeout, stop);
    switch (found.answer.kind) {
    case ProbeAnswer::Kind::Yes:
        return ask(query, formatAddress(found.value), stop);
    case ProbeAnswer::Kind::No:
        return {SNMPAnswer::Kind::Failed, found.answer.why};
    case ProbeAnswer::Kind::CouldNotAsk:
        return {SNMPAnswer::Kind::NotAsked, found.answer.why, 0, found.answer.through};
    case ProbeAnswer::Kind::Stopped:
        break;
    }
    return {SNMPAnswer::Kind::Stopped, {}};
}

SNMPAnswer CSystemSNMPProbe::ask(const SNMPQuery& query, const std::string& address,
                                 const std::stop_token& stop) {
    try {
        SNMPRemoteAgent agent(manager_, address, query.community, query.port, nullptr, stop);
        SNMPObject object("");
        object.SetOid(query.oid);
        SNMPRequest request(SNMPPduType::GetRequest, {&object, 1});
        request.Send(agent);
        request.Wait(query.timeoutMs, stop);
        if (agent.sendingFailed())
            return {SNMPAnswer::Kind::NotAsked, "the query cannot be sent"};
        return answerOf(request);
    } catch (SNMPException* raised) {
        const std::unique_ptr<SNMPException> owned(raised);
        if (stop.stop_requested())
            return {SNMPAnswer::Kind::Stopped, {}};
        return {SNMPAnswer::Kind::Failed, continued(owned->message())};
    }
}

ProbeAnswer answerOf(const SNMPAnswer& answer, const SNMPQuery& query) {
    switch (answer.kind) {
    case SNMPAnswer::Kind::Value:
        return ProbeAnswer::yes();
    case SNMPAnswer::Kind::Stopped:
        return ProbeAnswer::stopped();
    case SNMPAnswer::Kind::NotAsked:
        return ProbeAnswer::couldNotAsk(answer.through, answer.text);
    default:
        return ProbeAnswer::no(describeSnmpAnswer(answer, query));
    }
}

std::string describeSnmpAnswer(const SNMPAnswer& answer, const SNMPQuery& query) {
    switch (answer.kind) {
    case SNMPAnswer::Kind::Value:
        return "";
    case SNMPAnswer::Kind::ErrorStatus:
        return "error status " + std::to_string(answer.errorStatus) + nameOfStatus(answer.errorStatus);
    case SNMPAnswer::Kind::TimedOut:
        return "no answer within " + std::to_string(query.timeoutMs) + " ms";
    case SNMPAnswer::Kind::Stopped:
        return "stopped";
    case SNMPAnswer::Kind::Failed:
    case SNMPAnswer::Kind::NotAsked:
        break;
    }
    return answer.text;
}

} // namespace mirovane
