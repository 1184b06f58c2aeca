#pragma once

#include "probes/SNMPObject.h"
#include "probes/SNMPSession.h"
#include "probes/SnmpEvent.h"

#include <atomic>
#include <cstdint>
#include <span>
#include <stop_token>
#include <vector>

namespace mirovane {

class SNMPRemoteAgent;

/// One request: what it asks for and, once answered, the objects of the reply. Sent and waited for by one
/// thread; a reply is written by the transport's thread. It may be sent again from any state.
class SNMPRequest {
public:
    enum class Status { NONE = 0, ONGOING = 1, TIMEDOUT = 3, SUCCEEDED = 4, ERROR = 5, CANCELLED = 6 };

    /// Copies the objects. Raises SNMPException when no event can be made.
    SNMPRequest(SnmpPduType pduType, std::span<const SNMPObject> objects,
                const SnmpEventMaker& makeEvent = makeSnmpConditionEvent);

    /// An outstanding request is cancelled.
    virtual ~SNMPRequest();
    SNMPRequest(const SNMPRequest&) = delete;
    SNMPRequest& operator=(const SNMPRequest&) = delete;

    /// Sends it once. What is outstanding is cancelled first, the responses from before are gone. Raises
    /// SNMPException when the message can't be made; when the network refuses it, the request ends in ERROR.
    void Send(SNMPRemoteAgent& agent);

    /// Blocks until the request has ended, at most the time-out; afterwards status(), errorStatus() and
    /// responses() tell how. A stop request ends it as CANCELLED. Raises SNMPException when it can't wait.
    void Wait(std::uint32_t timeoutMs, const std::stop_token& stop = {});

    /// Only while ONGOING.
    void Cancel();

    // The reply, or a failure to send; with the session's gate held.
    void Complete(std::int32_t errorStatus);
    void AddResponse(const SNMPObject& object) { responses_.push_back(object); }
    void onAgentGone();

    Status status() const { return status_; }

    /// Of the reply (0 is none; 2 is "no such name"), or 5 when the layer itself failed.
    std::int32_t errorStatus() const { return errorStatus_; }
    const std::vector<SNMPObject>& responses() const { return responses_; }
    std::int32_t requestId() const { return requestId_; }
    SnmpPduHandle pdu() const { return pdu_; }

private:
    [[noreturn]] void failSend(SNMPSession& session, const char* message);
    void makePdu(SNMPSession& session);
    void forgetAtAgent();
    void freeMessage();
    void endCancelled();

    const SnmpPduType pduType_;
    const std::vector<SNMPObject> objects_;
    const std::unique_ptr<SnmpEvent> event_;
    SNMPSession::Gate gate_; ///< of the session that it was last sent through; guards what follows

    std::atomic<Status> status_ = Status::NONE;
    std::int32_t errorStatus_ = 0;
    std::vector<SNMPObject> responses_;
    SnmpTransport* transport_ = nullptr;
    SnmpVblHandle vbl_{};
    SnmpPduHandle pdu_{};
    std::int32_t requestId_ = 0;
    SNMPRemoteAgent* agent_ = nullptr; ///< null when it has gone
};

} // namespace mirovane
