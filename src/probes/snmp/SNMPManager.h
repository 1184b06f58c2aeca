#pragma once

#include "probes/snmp/transport/SNMPTransport.h"

#include <mutex>
#include <set>

namespace mirovane {

class CResolver;
class SNMPSession;

/// Starts and ends the SNMP transport and knows the sessions that live. One for the program, owned by its
/// main object and handed down; it outlives everybody who queries. Any thread.
class SNMPManager {
public:
    /// Both outlive the manager. The resolver looks up agents that are given by name.
    SNMPManager(SNMPTransport& transport, CResolver& resolver) : transport_(transport), resolver_(resolver) {}

    ~SNMPManager();
    SNMPManager(const SNMPManager&) = delete;
    SNMPManager& operator=(const SNMPManager&) = delete;

    /// Does nothing when it has been started. Raises SNMPException when the transport can't be started; then
    /// a later call tries again.
    void Startup();

    /// Destroys the sessions that are left (which were made with new), then ends the transport. Nobody starts
    /// it or queries meanwhile; afterwards it can be started again.
    void Cleanup();

    bool started() const;

    /// What start-up reported.
    SNMPStartupInfo startupInfo() const;

    SNMPTransport& transport() { return transport_; }
    CResolver& resolver() { return resolver_; }

    /// One lock for the sessions, their agents and what a reply writes into a request. A callback holds it
    /// from the look-up of the request to the end of the reply, so that whoever has forgotten a request under
    /// the gate knows that no reply touches it any more.
    std::mutex& gate() const { return gate_; }

private:
    friend class SNMPSession;
    void add(SNMPSession& session);
    void remove(SNMPSession& session);

    SNMPTransport& transport_;
    CResolver& resolver_;
    mutable std::mutex gate_;
    bool started_ = false;
    SNMPStartupInfo info_;
    std::set<SNMPSession*> sessions_;
};

} // namespace mirovane
