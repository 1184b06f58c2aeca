#pragma once

#include "probes/SnmpTransport.h"

#include <mutex>
#include <set>

namespace mirovane {

class Resolver;
class SNMPSession;

/// Starts and ends the SNMP transport and knows the sessions that live. One for the program, owned by its
/// main object and handed down; it outlives everybody who queries. Any thread.
class SNMPManager {
public:
    /// Both outlive the manager. The resolver looks up agents that are given by name.
    SNMPManager(SnmpTransport& transport, Resolver& resolver) : transport_(transport), resolver_(resolver) {}

    /// Destroys the sessions that are left (which were made with new), then ends the transport.
    ~SNMPManager();
    SNMPManager(const SNMPManager&) = delete;
    SNMPManager& operator=(const SNMPManager&) = delete;

    /// Does nothing when it has been started. Raises SNMPException when the transport can't be started; then
    /// a later call tries again.
    void Startup();

    bool started() const;

    /// What start-up reported.
    SnmpStartupInfo startupInfo() const;

    SnmpTransport& transport() { return transport_; }
    Resolver& resolver() { return resolver_; }

private:
    friend class SNMPSession;
    void add(SNMPSession& session);
    void remove(SNMPSession& session);
    void Cleanup();

    SnmpTransport& transport_;
    Resolver& resolver_;
    mutable std::mutex mutex_;
    bool started_ = false;
    SnmpStartupInfo info_;
    std::set<SNMPSession*> sessions_;
};

} // namespace mirovane
