#include "probes/snmp/SNMPRequest.h"

#include "probes/snmp/SNMPException.h"
#include "probes/snmp/SNMPRemoteAgent.h"

#include <utility>

namespace mirovane {

namespace {

constexpr const char* requestSource = "SNMPRequest";

} // namespace

SNMPRequest::SNMPRequest(SNMPPduType pduType, std::span<const SNMPObject> objects)
    : pduType_(pduType), objects_(objects.begin(), objects.end()) {}

SNMPRequest::~SNMPRequest() {
    Cancel();
}

void SNMPRequest::failSend(const SNMPSession& session, const char* message) {
    status_ = Status::ERROR;
    raiseSnmp(requestSource, message, session.lastError());
}

SNMPPdu SNMPRequest::makePdu(const SNMPSession& session) {
    SNMPTransport& transport = session.transport();
    auto list = transport.SnmpCreateVbl(session.handle());
    if (!list)
        failSend(session, "Could not create variable bindings list");
    for (const SNMPObject& object : objects_) {
        const SNMPOid* oid = object.GetOid();
        if (!transport.SnmpSetVb(session.handle(), *list, oid != nullptr ? *oid : SNMPOid(), SNMPValue()))
            failSend(session, "Could not add object to the variable bindings list");
    }
    auto pdu = transport.SnmpCreatePdu(session.handle(), pduType_, std::move(*list));
    if (!pdu)
        failSend(session, "Could not create PDU");
    if (pdu->requestId == 0)
        failSend(session, "Could not query PDU request id");
    return std::move(*pdu);
}

void SNMPRequest::Send(SNMPRemoteAgent& agent) {
    Cancel();
    // No lock: until the agent records it, no other thread knows this request.
    hasEnded_ = false;
    responses_.clear();
    errorStatus_ = 0;
    requestId_ = 0;
    status_ = Status::ONGOING;
    const SNMPPdu pdu = makePdu(agent.session());
    requestId_ = pdu.requestId;
    gate_ = &agent.session().manager().gate();
    agent_ = &agent;
    agent.Send(*this, pdu);
}

void SNMPRequest::Wait(std::uint32_t timeoutMs, const std::stop_token& stop) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    std::mutex neverSent;
    std::mutex& gate = gate_ != nullptr ? *gate_ : neverSent;
    const std::stop_callback wakeUp(stop, [&] { // before the lock, which it takes
        const std::lock_guard lock(gate);
        ended_.notify_all();
    });
    std::unique_lock lock(gate);
    ended_.wait_until(lock, deadline, [&] { return hasEnded_ || stop.stop_requested(); });
    const bool hasEnded = hasEnded_;
    hasEnded_ = false;
    forgetAtAgent();
    if (hasEnded)
        return;
    if (stop.stop_requested()) {
        endCancelled();
    } else {
        status_ = Status::TIMEDOUT;
        errorStatus_ = 0;
    }
}

void SNMPRequest::Cancel() {
    if (gate_ == nullptr)
        return;
    const std::lock_guard lock(*gate_);
    if (status_ != Status::ONGOING)
        return;
    forgetAtAgent();
    endCancelled();
}

void SNMPRequest::endCancelled() {
    requestId_ = 0;
    errorStatus_ = 0;
    status_ = Status::CANCELLED;
}

void SNMPRequest::Complete(std::int32_t errorStatus) {
    if (status_ != Status::ONGOING)
        return;
    forgetAtAgent();
    errorStatus_ = errorStatus;
    status_ = errorStatus == 0 ? Status::SUCCEEDED : Status::ERROR;
    hasEnded_ = true;
    ended_.notify_all();
}

/// Nothing will come any more: who waits need not.
void SNMPRequest::onAgentGone() {
    forgetAtAgent();
    endCancelled();
    hasEnded_ = true;
    ended_.notify_all();
}

void SNMPRequest::forgetAtAgent() {
    if (agent_ != nullptr)
        std::exchange(agent_, nullptr)->ForgetRequest(requestId_);
}

} // namespace mirovane
