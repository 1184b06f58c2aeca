#pragma once

#include "probes/snmp/SNMPObject.h"
#include "probes/snmp/transport/SNMPTypes.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <span>
#include <stop_token>
#include <vector>

namespace mirovane {

class SNMPRemoteAgent;
class SNMPSession;

/// One request: what it asks for and, once answered, the objects of the reply. Sent and waited for by one
/// thread; a reply is written by the transport's thread. It may be sent again from any state, through the
/// same agent or another. The managers of its agents outlive it.
class SNMPRequest {
public:
    enum class Status { NONE = 0, ONGOING = 1, TIMEDOUT = 3, SUCCEEDED = 4, ERROR = 5, CANCELLED = 6 };

    /// Copies the objects.
    SNMPRequest(SNMPPduType pduType, std::span<const SNMPObject> objects);

    /// An outstanding request is cancelled.
    virtual ~SNMPRequest();
    SNMPRequest(const SNMPRequest&) = delete;
    SNMPRequest& operator=(const SNMPRequest&) = delete;

    /// Sends it once. What is outstanding is cancelled first, the responses from before are gone. Raises
    /// SNMPException when the message can't be made; when the network refuses it, the request ends in ERROR.
    void Send(SNMPRemoteAgent& agent);

    /// Blocks until the request has ended, at most the time-out; afterwards status(), errorStatus() and
    /// responses() tell how. A stop request ends it as CANCELLED. A wait reports one end: a second one
    /// without a Send() in between times out.
    void Wait(std::uint32_t timeoutMs, const std::stop_token& stop = {});

    /// Only while ONGOING.
    void Cancel();

    // The reply, a failure to send, the agent's end; with the gate of the agent's manager held.
    void SetResponses(std::vector<SNMPObject> objects) { responses_ = std::move(objects); }
    void Complete(std::int32_t errorStatus);
    void onAgentGone();

    Status status() const { return status_; }

    /// Of the reply (0: no error; 2 is "no such name"), or 5 when the layer itself failed.
    std::int32_t errorStatus() const { return errorStatus_; }
    const std::vector<SNMPObject>& responses() const { return responses_; }
    std::int32_t requestId() const { return requestId_; }

private:
    [[noreturn]] void failSend(const SNMPSession& session, const char* message);
    SNMPPdu makePdu(const SNMPSession& session);
    void forgetAtAgent();
    void endCancelled();

    const SNMPPduType pduType_;
    const std::vector<SNMPObject> objects_;
    std::mutex* gate_ = nullptr; ///< of the manager it was last sent through; guards what follows

    std::atomic<Status> status_ = Status::NONE;
    std::int32_t errorStatus_ = 0;
    std::vector<SNMPObject> responses_;
    std::int32_t requestId_ = 0;
    SNMPRemoteAgent* agent_ = nullptr; ///< that knows this request: only while ONGOING
    bool hasEnded_ = false;            ///< and no Wait() has reported it
    std::condition_variable ended_;
};

} // namespace mirovane
