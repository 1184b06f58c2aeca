#pragma once

#include "probes/snmp/SNMPManager.h"
#include "probes/snmp/transport/SNMPTransport.h"

#include <memory>
#include <set>

namespace mirovane {

class SNMPRemoteAgent;
class SNMPRequest;

/// A transport session: takes the messages that arrive, on the transport's thread, and hands each to the
/// agent and the request that it belongs to. Made with new by an agent or by somebody who wants several
/// agents on one session; whoever made it destroys it, or else the manager at the program's end.
class SNMPSession {
public:
    /// Raises SNMPException when the transport refuses.
    explicit SNMPSession(SNMPManager& manager);

    /// Destroys the agents that are left in it. Waits for a callback that runs.
    virtual ~SNMPSession();
    SNMPSession(const SNMPSession&) = delete;
    SNMPSession& operator=(const SNMPSession&) = delete;

    void AddAgent(SNMPRemoteAgent& agent);
    void RemoveAgent(SNMPRemoteAgent& agent);

    /// The agent that waits for this request, null when no agent does. With the manager's gate held.
    SNMPRemoteAgent* FindAgent(std::int32_t requestId) const;

    /// A message has arrived (status 0); on the transport's thread. Never raises: a message that can't be
    /// read ends its request with an error status.
    void OnMessage(std::uint32_t status, std::int32_t requestId);

    /// The transport's session.
    SNMPTransportSession& handle() const { return *handle_; }
    SNMPTransport& transport() const { return manager_.transport(); }
    SNMPManager& manager() const { return manager_; }
    std::int32_t lastError() const;

private:
    void answer(std::int32_t requestId, const SNMPPdu* response);

    SNMPManager& manager_;
    std::unique_ptr<SNMPTransportSession> handle_;
    std::set<SNMPRemoteAgent*> agents_;
};

} // namespace mirovane
