#include "probes/SnmpProbe.h"

#include "probes/SNMPException.h"
#include "probes/SNMPObject.h"
#include "probes/SNMPRemoteAgent.h"
#include "probes/SNMPRequest.h"

#include <array>
#include <memory>

namespace mirovane {

namespace {

SnmpAnswer answerOf(const SNMPRequest& request) {
    switch (request.status()) {
    case SNMPRequest::Status::SUCCEEDED:
        if (request.responses().empty()) {
            return {SnmpAnswer::Kind::Failed, "the answer holds no value", 0};
        }
        return {SnmpAnswer::Kind::Value, request.responses().front().ValueText(), 0};
    case SNMPRequest::Status::ERROR:
        return {SnmpAnswer::Kind::ErrorStatus, "", request.errorStatus()};
    case SNMPRequest::Status::CANCELLED:
        return {SnmpAnswer::Kind::Stopped, "", 0};
    default:
        return {SnmpAnswer::Kind::TimedOut, "", 0};
    }
}

/// The first letter in lower case: the text goes on after a colon.
std::string continued(std::string message) {
    if (!message.empty() && message[0] >= 'A' && message[0] <= 'Z') {
        message[0] = static_cast<char>(message[0] - 'A' + 'a');
    }
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

SnmpAnswer SystemSnmpProbe::SnmpGet(const SnmpQuery& query, std::stop_token stop) {
    try {
        manager_.Startup();
        SNMPRemoteAgent agent(manager_, query.host, query.community, query.port, nullptr, stop);
        SNMPObject object("");
        object.SetOid(query.oid);
        SNMPRequest request(SnmpPduType::GetRequest, {&object, 1});
        request.Send(agent);
        request.Wait(query.timeoutMs, stop);
        return answerOf(request);
    } catch (SNMPException* raised) {
        const std::unique_ptr<SNMPException> owned(raised);
        if (stop.stop_requested()) {
            return {SnmpAnswer::Kind::Stopped, "", 0};
        }
        return {SnmpAnswer::Kind::Failed, continued(owned->message()), 0};
    }
}

std::optional<std::string> SystemSnmpProbe::snmpUnusable() {
    try {
        manager_.Startup();
        return std::nullopt;
    } catch (SNMPException* raised) {
        const std::unique_ptr<SNMPException> owned(raised);
        return "SNMP cannot be used: no socket can be opened (code " + std::to_string(owned->code()) +
               "); every SNMPGet row fails until this station is started again.";
    }
}

std::string describeSnmpAnswer(const SnmpAnswer& answer, const SnmpQuery& query) {
    switch (answer.kind) {
    case SnmpAnswer::Kind::Value:
        return "";
    case SnmpAnswer::Kind::ErrorStatus:
        return "error status " + std::to_string(answer.errorStatus) + nameOfStatus(answer.errorStatus);
    case SnmpAnswer::Kind::TimedOut:
        return "no answer within " + std::to_string(query.timeoutMs) + " ms";
    case SnmpAnswer::Kind::Stopped:
        return "stopped";
    case SnmpAnswer::Kind::Failed:
        break;
    }
    return answer.text;
}

} // namespace mirovane
