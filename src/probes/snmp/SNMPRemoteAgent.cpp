#include "probes/snmp/SNMPRemoteAgent.h"

#include "probes/names/HostAddress.h"
#include "probes/names/Resolver.h"
#include "probes/snmp/SNMPException.h"
#include "probes/snmp/SNMPRequest.h"

namespace mirovane {

namespace {

constexpr const char* agentSource = "SNMPRemoteAgent";

} // namespace

SNMPRemoteAgent::SNMPRemoteAgent(SNMPManager& manager, const std::string& address,
                                 const std::string& community, std::uint32_t port, SNMPSession* session,
                                 std::stop_token stop)
    : ownSession_(session == nullptr ? std::make_unique<SNMPSession>(manager) : nullptr),
      session_(session == nullptr ? ownSession_.get() : session) {
    SNMPTransport& transport = session_->transport();
    entity_ = entityOfHost(address, std::move(stop));
    if (port != 0 && !transport.SnmpSetPort(session_->handle(), entity_, port))
        raiseSnmp(agentSource, "Could not set remote agent port", session_->lastError());
    auto context = transport.SnmpStrToContext(session_->handle(), community);
    if (!context)
        raiseSnmp(agentSource, "Could not convert community name to context", session_->lastError());
    context_ = std::move(*context);
    session_->AddAgent(*this);
}

SNMPEntity SNMPRemoteAgent::entityOfHost(const std::string& address, std::stop_token stop) const {
    SNMPTransport& transport = session_->transport();
    if (const auto entity = transport.SnmpStrToEntity(session_->handle(), address))
        return *entity;
    const auto found =
        session_->manager().resolver().addressOf(address, CResolver::defaultTimeout, std::move(stop));
    if (!found.found())
        raiseSnmp(agentSource, "Could not get host by name", snmpCallerError);
    const auto entity = transport.SnmpStrToEntity(session_->handle(), formatAddress(found.value));
    if (!entity)
        raiseSnmp(agentSource, "Could not convert remote agent address to entity", session_->lastError());
    return *entity;
}

SNMPRemoteAgent::~SNMPRemoteAgent() {
    session_->RemoveAgent(*this);
    const std::lock_guard lock(session_->manager().gate());
    while (!requests_.empty())
        requests_.begin()->second->onAgentGone(); // which takes it out
}

void SNMPRemoteAgent::disownSession() {
    static_cast<void>(ownSession_.release());
}

void SNMPRemoteAgent::Send(SNMPRequest& request, const SNMPPdu& pdu) {
    {
        // Before sending: the reply may be here before SnmpSendMsg() returns.
        const std::lock_guard lock(session_->manager().gate());
        requests_[pdu.requestId] = &request;
    }
    if (!session_->transport().SnmpSendMsg(session_->handle(), entity_, context_, pdu)) {
        const std::lock_guard lock(session_->manager().gate());
        request.Complete(snmpLayerError);
    }
}

bool SNMPRemoteAgent::sendingFailed() const {
    return session_->transport().SnmpGetLastError(&session_->handle()) == SNMPError::NotSent;
}

SNMPRequest* SNMPRemoteAgent::FindRequest(std::int32_t requestId) const {
    const auto found = requests_.find(requestId);
    return found == requests_.end() ? nullptr : found->second;
}

void SNMPRemoteAgent::ForgetRequest(std::int32_t requestId) {
    if (requests_.erase(requestId) != 0)
        session_->transport().SnmpCancelMsg(session_->handle(), requestId);
}

} // namespace mirovane
