#include "probes/SNMPSession.h"

#include "probes/SNMPException.h"
#include "probes/SNMPObject.h"
#include "probes/SNMPRemoteAgent.h"
#include "probes/SNMPRequest.h"

namespace mirovane {

SNMPSession::SNMPSession(SNMPManager& manager) : manager_(manager) {
    handle_ = transport().SnmpCreateSession(
        [this](std::uint32_t status, std::int32_t requestId) { OnMessage(status, requestId); });
    if (handle_ == SnmpSessionHandle{}) {
        raiseSnmp("SNMPSession", "Could not create WinSNMP session", lastError());
    }
    manager_.add(*this);
}

SNMPSession::~SNMPSession() {
    manager_.remove(*this);
    while (true) {
        SNMPRemoteAgent* agent = nullptr;
        {
            const std::lock_guard lock(*gate_);
            if (agents_.empty()) {
                break;
            }
            agent = agents_.begin()->second;
        }
        agent->disownSession();
        delete agent; // takes itself out
    }
    transport().SnmpClose(handle_);
}

std::int32_t SNMPSession::lastError() const {
    return static_cast<std::int32_t>(transport().SnmpGetLastError(handle_));
}

void SNMPSession::AddAgent(SNMPRemoteAgent& agent) {
    const std::lock_guard lock(*gate_);
    agents_[agent.context()] = &agent;
}

void SNMPSession::RemoveAgent(SNMPRemoteAgent& agent) {
    const std::lock_guard lock(*gate_);
    agents_.erase(agent.context());
}

SNMPRemoteAgent* SNMPSession::FindAgent(SnmpContextHandle context) const {
    const std::lock_guard lock(*gate_);
    const auto found = agents_.find(context);
    return found == agents_.end() ? nullptr : found->second;
}

SNMPRequest* SNMPSession::findRequest(SnmpContextHandle context, std::int32_t requestId) const {
    const auto found = agents_.find(context);
    return found == agents_.end() ? nullptr : found->second->FindRequest(requestId);
}

void SNMPSession::OnMessage(std::uint32_t status, std::int32_t requestId) {
    if (status != 0) {
        return;
    }
    SnmpReceived message;
    SnmpPduData data;
    const bool readable =
        transport().SnmpRecvMsg(handle_, message) && transport().SnmpGetPduData(message.pdu, data);
    {
        const std::lock_guard lock(*gate_);
        SNMPRequest* const request = findRequest(message.context, requestId);
        if (request != nullptr && !readable) {
            request->Complete(snmpLayerError);
        } else if (request != nullptr && data.type == static_cast<std::int32_t>(SnmpPduType::Response)) {
            answer(*request, data);
        }
    }
    transport().SnmpFreeVbl(data.bindings);
    transport().SnmpFreePdu(message.pdu);
}

void SNMPSession::answer(SNMPRequest& request, const SnmpPduData& data) {
    bool whole = false;
    try {
        whole = addResponses(request, data.bindings);
    } catch (const SNMPException* raised) {
        delete raised;
    } catch (const std::bad_alloc&) {
        whole = false;
    }
    request.Complete(whole ? data.errorStatus : snmpLayerError);
}

bool SNMPSession::addResponses(SNMPRequest& request, SnmpVblHandle list) {
    const std::size_t count = transport().SnmpCountVbl(list);
    for (std::size_t index = 1; index <= count; ++index) {
        SnmpOid name;
        SnmpValue value;
        if (!transport().SnmpGetVb(list, index, name, value)) {
            return false;
        }
        SNMPObject object(SnmpOidToStr(name).value_or(""));
        object.SetFromValue(value);
        request.AddResponse(object);
    }
    return true;
}

} // namespace mirovane
