#include "probes/snmp/SNMPSession.h"

#include "probes/snmp/SNMPException.h"
#include "probes/snmp/SNMPObject.h"
#include "probes/snmp/SNMPRemoteAgent.h"
#include "probes/snmp/SNMPRequest.h"

#include <algorithm>
#include <new>

namespace mirovane {

namespace {

/// The objects of a reply in the order of its bindings. Nothing when one of them can't be read.
std::optional<std::vector<SNMPObject>> objectsOf(const SNMPPdu& response) {
    if (response.damaged)
        return std::nullopt;
    std::vector<SNMPObject> objects;
    try {
        for (const SNMPBinding& binding : response.bindings) {
            objects.emplace_back(SnmpOidToStr(binding.name).value_or(""));
            objects.back().SetFromValue(binding.value);
        }
    } catch (const SNMPException* raised) {
        delete raised;
        return std::nullopt;
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
    return objects;
}

} // namespace

SNMPSession::SNMPSession(SNMPManager& manager)
    : manager_(manager),
      handle_(transport().SnmpCreateSession(
          [this](std::uint32_t status, std::int32_t requestId) { OnMessage(status, requestId); })) {
    if (!handle_)
        raiseSnmp("SNMPSession", "Could not create WinSNMP session", lastError());
    manager_.add(*this);
}

SNMPSession::~SNMPSession() {
    manager_.remove(*this);
    while (true) {
        SNMPRemoteAgent* agent = nullptr;
        {
            const std::lock_guard lock(manager_.gate());
            if (agents_.empty())
                break;
            agent = *agents_.begin();
        }
        agent->disownSession();
        delete agent; // takes itself out
    }
    transport().SnmpClose(*handle_);
}

std::int32_t SNMPSession::lastError() const {
    return static_cast<std::int32_t>(transport().SnmpGetLastError(handle_.get()));
}

void SNMPSession::AddAgent(SNMPRemoteAgent& agent) {
    const std::lock_guard lock(manager_.gate());
    agents_.insert(&agent);
}

void SNMPSession::RemoveAgent(SNMPRemoteAgent& agent) {
    const std::lock_guard lock(manager_.gate());
    agents_.erase(&agent);
}

SNMPRemoteAgent* SNMPSession::FindAgent(std::int32_t requestId) const {
    const auto found = std::find_if(agents_.begin(), agents_.end(), [&](const SNMPRemoteAgent* agent) {
        return agent->FindRequest(requestId) != nullptr;
    });
    return found == agents_.end() ? nullptr : *found;
}

void SNMPSession::OnMessage(std::uint32_t status, std::int32_t requestId) {
    if (status != 0)
        return;
    const auto message = transport().SnmpRecvMsg(*handle_);
    if (!message)
        answer(requestId, nullptr);
    else if (message->pdu.type == static_cast<std::int32_t>(SNMPPduType::Response))
        answer(requestId, &message->pdu);
}

/// Without a response, or with one that can't be read, the request ends with an error.
void SNMPSession::answer(std::int32_t requestId, const SNMPPdu* response) {
    auto objects = response != nullptr ? objectsOf(*response) : std::nullopt;
    const std::lock_guard lock(manager_.gate());
    const SNMPRemoteAgent* const agent = FindAgent(requestId);
    if (agent == nullptr)
        return; // it came too late
    SNMPRequest& request = *agent->FindRequest(requestId);
    if (objects)
        request.SetResponses(std::move(*objects));
    request.Complete(objects ? response->errorStatus : snmpLayerError);
}

} // namespace mirovane
