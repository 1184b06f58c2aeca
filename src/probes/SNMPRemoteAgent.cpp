#include "probes/SNMPRemoteAgent.h"

#include "probes/HostAddress.h"
#include "probes/Resolver.h"
#include "probes/SNMPException.h"
#include "probes/SNMPRequest.h"

namespace mirovane {

namespace {

constexpr const char* source = "SNMPRemoteAgent";

} // namespace

SNMPRemoteAgent::SNMPRemoteAgent(SNMPManager& manager, const std::string& address,
                                 const std::string& community, std::uint32_t port, SNMPSession* session,
                                 std::stop_token stop)
    : address_(address), community_(community), port_(port), session_(session) {
    if (session_ == nullptr) {
        session_ = new SNMPSession(manager);
        ownsSession_ = true;
    }
    try {
        makeHandles(std::move(stop));
        session_->AddAgent(*this);
        initialized_ = true;
    } catch (...) { // a constructor that fails has no destructor to run
        release();
        throw;
    }
}

void SNMPRemoteAgent::makeHandles(std::stop_token stop) {
    SnmpTransport& transport = session_->transport();
    if (session_->handle() == SnmpSessionHandle{}) {
        raiseSnmp(source, "Invalid session", session_->lastError());
    }
    entity_ = entityOfHost(std::move(stop));
    if (port_ != 0 && !transport.SnmpSetPort(entity_, port_)) {
        raiseSnmp(source, "Could not set remote agent port", session_->lastError());
    }
    context_ = transport.SnmpStrToContext(session_->handle(), community_);
    if (context_ == SnmpContextHandle{}) {
        raiseSnmp(source, "Could not convert community name to context", session_->lastError());
    }
}

SnmpEntityHandle SNMPRemoteAgent::entityOfHost(std::stop_token stop) {
    SnmpTransport& transport = session_->transport();
    SnmpEntityHandle entity = transport.SnmpStrToEntity(session_->handle(), address_);
    if (entity != SnmpEntityHandle{}) {
        return entity;
    }
    const auto found =
        session_->manager().resolver().addressOf(address_, Resolver::defaultTimeout, std::move(stop));
    if (!found) {
        raiseSnmp(source, "Could not get host by name", snmpCallerError);
    }
    entity = transport.SnmpStrToEntity(session_->handle(), formatAddress(*found));
    if (entity == SnmpEntityHandle{}) {
        raiseSnmp(source, "Could not convert remote agent address to entity", session_->lastError());
    }
    return entity;
}

SNMPRemoteAgent::~SNMPRemoteAgent() {
    if (initialized_) {
        session_->RemoveAgent(*this);
        initialized_ = false;
    }
    release();
}

void SNMPRemoteAgent::release() {
    SnmpTransport& transport = session_->transport();
    if (context_ != SnmpContextHandle{}) {
        transport.SnmpFreeContext(context_);
    }
    if (entity_ != SnmpEntityHandle{}) {
        transport.SnmpFreeEntity(entity_);
    }
    {
        const std::lock_guard lock(*session_->gate());
        while (!requests_.empty()) {
            SNMPRequest& request = *requests_.begin()->second;
            ForgetRequest(requests_.begin()->first);
            request.onAgentGone();
        }
    }
    if (ownsSession_) {
        delete session_;
    }
}

void SNMPRemoteAgent::Send(SNMPRequest& request) {
    if (!initialized_) {
        {
            const std::lock_guard lock(*session_->gate());
            request.Complete(snmpLayerError);
        }
        raiseSnmp(source, "Not initialized", snmpCallerError);
    }
    SnmpPduHandle pdu{};
    {
        // Before sending: the reply may be here before SnmpSendMsg() returns.
        const std::lock_guard lock(*session_->gate());
        requests_[request.requestId()] = &request;
        pdu = request.pdu();
    }
    if (!session_->transport().SnmpSendMsg(session_->handle(), entity_, context_, pdu)) {
        const std::lock_guard lock(*session_->gate());
        request.Complete(snmpLayerError);
    }
}

SNMPRequest* SNMPRemoteAgent::FindRequest(std::int32_t requestId) const {
    const auto found = requests_.find(requestId);
    return found == requests_.end() ? nullptr : found->second;
}

void SNMPRemoteAgent::ForgetRequest(std::int32_t requestId) {
    if (requests_.erase(requestId) != 0) {
        session_->transport().SnmpCancelMsg(session_->handle(), requestId);
    }
}

} // namespace mirovane
