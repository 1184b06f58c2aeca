#pragma once

#include "probes/SNMPSession.h"
#include "probes/SnmpTransport.h"

#include <cstdint>
#include <map>
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

    /// For SNMPRequest::Send(): records the request and hands it to the transport, which may end it at once
    /// with an error status. Raises SNMPException when this agent is not usable.
    void Send(SNMPRequest& request);

    // With the session's gate held.
    SNMPRequest* FindRequest(std::int32_t requestId) const;
    void ForgetRequest(std::int32_t requestId);

    /// The session is destroyed by somebody else.
    void disownSession() { ownsSession_ = false; }

    const std::string& address() const { return address_; }
    const std::string& community() const { return community_; }
    std::uint32_t port() const { return port_; }
    SNMPSession& session() const { return *session_; }
    SnmpContextHandle context() const { return context_; }

private:
    void makeHandles(std::stop_token stop);
    SnmpEntityHandle entityOfHost(std::stop_token stop);
    void release();

    std::string address_;
    std::string community_;
    std::uint32_t port_;
    SNMPSession* session_;
    bool ownsSession_ = false;
    SnmpEntityHandle entity_{};
    SnmpContextHandle context_{};
    bool initialized_ = false;
    std::map<std::int32_t, SNMPRequest*> requests_; ///< by request id; under the gate
};

} // namespace mirovane
