#include "probes/SNMPRequest.h"

#include "probes/SNMPException.h"
#include "probes/SNMPRemoteAgent.h"

#include <new>

namespace mirovane {

namespace {

constexpr const char* source = "SNMPRequest";

std::unique_ptr<SnmpEvent> madeEvent(const SnmpEventMaker& makeEvent) {
    auto event = makeEvent();
    if (!event) {
        raiseSnmp(source, "Failed to create event", snmpLayerError);
    }
    return event;
}

} // namespace

SNMPRequest::SNMPRequest(SnmpPduType pduType, std::span<const SNMPObject> objects,
                         const SnmpEventMaker& makeEvent)
    : pduType_(pduType), objects_(objects.begin(), objects.end()), event_(madeEvent(makeEvent)) {}

SNMPRequest::~SNMPRequest() {
    Cancel();
    if (gate_) { // answered, but never waited for: the agent still knows it
        const std::lock_guard lock(*gate_);
        forgetAtAgent();
    }
}

void SNMPRequest::failSend(SNMPSession& session, const char* message) {
    const std::int32_t code = session.lastError();
    freeMessage();
    agent_ = nullptr; // which has not heard of this request
    status_ = Status::ERROR;
    raiseSnmp(source, message, code);
}

void SNMPRequest::makePdu(SNMPSession& session) {
    vbl_ = transport_->SnmpCreateVbl(session.handle());
    if (vbl_ == SnmpVblHandle{}) {
        failSend(session, "Could not create variable bindings list");
    }
    for (const SNMPObject& object : objects_) {
        const SnmpOid* oid = object.GetOid();
        if (!transport_->SnmpSetVb(vbl_, oid != nullptr ? *oid : SnmpOid(), SnmpValue())) {
            failSend(session, "Could not add object to the variable bindings list");
        }
    }
    pdu_ = transport_->SnmpCreatePdu(session.handle(), pduType_, vbl_);
    if (pdu_ == SnmpPduHandle{}) {
        failSend(session, "Could not create PDU");
    }
    SnmpPduData data;
    if (!transport_->SnmpGetPduData(pdu_, data)) {
        failSend(session, "Could not query PDU request id");
    }
    transport_->SnmpFreeVbl(data.bindings);
    requestId_ = data.requestId;
}

void SNMPRequest::Send(SNMPRemoteAgent& agent) {
    Cancel();
    if (gate_) {
        const std::lock_guard lock(*gate_);
        forgetAtAgent();
    }
    gate_ = agent.session().gate();
    {
        const std::lock_guard lock(*gate_);
        event_->reset();
        responses_.clear();
        errorStatus_ = 0;
        requestId_ = 0;
        status_ = Status::ONGOING;
        agent_ = &agent;
        transport_ = &agent.session().transport();
        makePdu(agent.session());
    }
    agent.Send(*this);
}

void SNMPRequest::Wait(std::uint32_t timeoutMs, const std::stop_token& stop) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    const SnmpEvent::WaitResult result =
        transport_ != nullptr ? transport_->wait(*event_, deadline, stop) : event_->wait(deadline, stop);
    event_->reset();
    const SNMPSession::Gate gate = gate_ ? gate_ : std::make_shared<std::mutex>();
    const std::lock_guard lock(*gate);
    forgetAtAgent();
    freeMessage();
    if (result == SnmpEvent::WaitResult::Failed) {
        status_ = Status::ERROR;
        errorStatus_ = snmpLayerError;
        requestId_ = 0;
        raiseSnmp(source, "Wait failed", snmpLayerError);
    }
    if (result == SnmpEvent::WaitResult::Stopped) {
        endCancelled();
    } else if (result == SnmpEvent::WaitResult::TimedOut || status_ == Status::ONGOING) {
        status_ = Status::TIMEDOUT;
        errorStatus_ = 0;
    }
}

void SNMPRequest::Cancel() {
    if (!gate_) {
        return;
    }
    const std::lock_guard lock(*gate_);
    if (status_ != Status::ONGOING) {
        return;
    }
    forgetAtAgent();
    freeMessage();
    endCancelled();
    event_->reset();
}

void SNMPRequest::endCancelled() {
    requestId_ = 0;
    errorStatus_ = 0;
    status_ = Status::CANCELLED;
}

void SNMPRequest::Complete(std::int32_t errorStatus) {
    if (status_ != Status::ONGOING) {
        return;
    }
    freeMessage();
    errorStatus_ = errorStatus;
    status_ = errorStatus == 0 ? Status::SUCCEEDED : Status::ERROR;
    event_->set();
}

void SNMPRequest::onAgentGone() {
    agent_ = nullptr;
    if (status_ == Status::ONGOING) {
        freeMessage();
        endCancelled();
        event_->set(); // nothing will come; who waits need not
    }
}

void SNMPRequest::forgetAtAgent() {
    if (agent_ != nullptr) {
        agent_->ForgetRequest(requestId_);
        agent_ = nullptr;
    }
}

void SNMPRequest::freeMessage() {
    if (vbl_ != SnmpVblHandle{}) {
        transport_->SnmpFreeVbl(vbl_);
        vbl_ = {};
    }
    if (pdu_ != SnmpPduHandle{}) {
        transport_->SnmpFreePdu(pdu_);
        pdu_ = {};
    }
}

} // namespace mirovane
