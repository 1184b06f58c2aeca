#pragma once

#include "probes/snmp/SNMPSession.h"
#include "probes/snmp/transport/SNMPTransport.h"

#include <cstdint>
#include <map>
#include <memory>
#include <stop_token>
#include <string>

namespace mirovane {

class SNMPRequest;

/// An agent on the network: host, community and port, on a session. Made with new or as a local object; one
/// that was made with a session of somebody else's must go before that session or be made with new, since
/// the session destroys the agents left in it. One thread at a time.
class SNMPRemoteAgent {
public:
    /// Without a session it makes one of its own. Port 0 is the protocol's own. A host name is looked up,
    /// which blocks until it is known, the resolver's time-out passes or `stop` is requested. Raises
    /// SNMPException.
    SNMPRemoteAgent(SNMPManager& manager, const std::string& address, const std::string& community,
                    std::uint32_t port = 0, SNMPSession* session = nullptr, std::stop_token stop = {});

    /// Requests that are still outstanding end as cancelled.
    virtual ~SNMPRemoteAgent();
    SNMPRemoteAgent(const SNMPRemoteAgent&) = delete;
    SNMPRemoteAgent& operator=(const SNMPRemoteAgent&) = delete;

    /// For SNMPRequest::Send(): records the request and hands its PDU to the transport. When the transport
    /// refuses it, the request has ended with an error status.
    void Send(SNMPRequest& request, const SNMPPdu& pdu);

    /// The last request did not leave this computer.
    bool sendingFailed() const;

    // With the manager's gate held.
    SNMPRequest* FindRequest(std::int32_t requestId) const;
    void ForgetRequest(std::int32_t requestId);

    /// The session is destroyed by somebody else.
    void disownSession();

    SNMPSession& session() const { return *session_; }

private:
    SNMPEntity entityOfHost(const std::string& address, std::stop_token stop) const;

    std::unique_ptr<SNMPSession> ownSession_;
    SNMPSession* session_;
    SNMPEntity entity_;
    SNMPContext context_;
    std::map<std::int32_t, SNMPRequest*> requests_; ///< those that are outstanding, by id; under the gate
};

} // namespace mirovane
