#pragma once

#include "probes/SNMPManager.h"
#include "probes/SnmpTransport.h"

#include <map>
#include <memory>
#include <mutex>

namespace mirovane {

class SNMPRemoteAgent;
class SNMPRequest;

/// A transport session: takes the messages that arrive, on the transport's thread, and hands each to the
/// agent and the request that it belongs to. Made with new by an agent or by somebody who wants several
/// agents on one session; whoever made it destroys it, or else the manager at the program's end.
///
/// Its gate is one lock for its agents, their requests and what a reply writes into a request. The callback
/// holds it from the look-up to the end of the reply, so that whoever has forgotten a request under the gate
/// knows that no reply touches it any more.
class SNMPSession {
public:
    using Gate = std::shared_ptr<std::mutex>; ///< requests keep it beyond the session

    /// Raises SNMPException when the transport refuses.
    explicit SNMPSession(SNMPManager& manager);

    /// Destroys the agents that are left in it. Waits for a callback that runs.
    virtual ~SNMPSession();
    SNMPSession(const SNMPSession&) = delete;
    SNMPSession& operator=(const SNMPSession&) = delete;

    /// By the agent's context. These and FindAgent() take the gate themselves.
    void AddAgent(SNMPRemoteAgent& agent);
    void RemoveAgent(SNMPRemoteAgent& agent);
    SNMPRemoteAgent* FindAgent(SnmpContextHandle context) const;

    /// A message has arrived (status 0); on the transport's thread. Never raises: a message that can't be
    /// read ends its request with an error status.
    void OnMessage(std::uint32_t status, std::int32_t requestId);

    SnmpSessionHandle handle() const { return handle_; }
    SnmpTransport& transport() const { return manager_.transport(); }
    SNMPManager& manager() const { return manager_; }
    std::int32_t lastError() const;
    const Gate& gate() const { return gate_; }

private:
    SNMPRequest* findRequest(SnmpContextHandle context, std::int32_t requestId) const;
    void answer(SNMPRequest& request, const SnmpPduData& data);
    bool addResponses(SNMPRequest& request, SnmpVblHandle list);

    SNMPManager& manager_;
    const Gate gate_ = std::make_shared<std::mutex>();
    SnmpSessionHandle handle_{};
    std::map<SnmpContextHandle, SNMPRemoteAgent*> agents_;
};

} // namespace mirovane
