#pragma once

#include "probes/snmp/transport/SNMPEntity.h"
#include "probes/snmp/transport/SNMPTypes.h"

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace mirovane {

struct SNMPStartupInfo {
    std::uint32_t majorVersion = 0;
    std::uint32_t minorVersion = 0;
    std::uint32_t level = 0;
    std::uint32_t translateMode = 0;
    std::uint32_t retransmitMode = 0;
};

/// Translate mode: entities are addresses, contexts are communities.
constexpr std::uint32_t snmpUntranslatedV1 = 1;
constexpr std::uint32_t snmpRetransmitOff = 0;

/// A message that arrived.
struct SNMPReceived {
    SNMPEntity source;
    SNMPContext context;
    SNMPPdu pdu;
};

/// Called with 0 when a message has arrived, and the request id of that message. Must not throw.
using SNMPCallback = std::function<void(std::uint32_t status, std::int32_t requestId)>;

/// A session as its transport knows it. Its owner closes it before letting go of it. Another transport may
/// derive a session that holds more.
struct SNMPTransportSession {
    explicit SNMPTransportSession(SNMPCallback whenArrived) : callback(std::move(whenArrived)) {}
    virtual ~SNMPTransportSession() = default;

    const SNMPCallback callback;
    std::atomic<SNMPError> lastError{SNMPError::None};
};

/// What the SNMP layer asks of a transport: messages to and from agents, as values. Nothing and false mean
/// failure, and the last-error code says which. Any thread may call it; starting and ending it is for one
/// thread at a time. Callbacks come one at a time, from a thread of the transport's own, never from inside
/// another call.
class SNMPTransport {
public:
    virtual ~SNMPTransport() = default;

    virtual bool SnmpStartup(SNMPStartupInfo& info) = 0;
    virtual bool SnmpSetTranslateMode(std::uint32_t mode) = 0;
    virtual bool SnmpSetRetransmitMode(std::uint32_t mode) = 0;

    /// Drops what is outstanding. Waits for a callback that runs.
    virtual bool SnmpCleanup() = 0;

    /// Null unless the transport is started.
    virtual std::unique_ptr<SNMPTransportSession> SnmpCreateSession(SNMPCallback callback) = 0;

    /// Drops the session's outstanding requests. After it returns no callback of the session runs or will
    /// run. Not to be called from a callback.
    virtual void SnmpClose(SNMPTransportSession& session) = 0;

    /// Addresses only, with the protocol's own port: a transport does not look up names.
    virtual std::optional<SNMPEntity> SnmpStrToEntity(SNMPTransportSession& session,
                                                      const std::string& address) = 0;
    virtual bool SnmpSetPort(SNMPTransportSession& session, SNMPEntity& entity, std::uint32_t port) = 0;
    virtual std::optional<SNMPContext> SnmpStrToContext(SNMPTransportSession& session,
                                                        const std::string& community) = 0;

    /// An empty list.
    virtual std::optional<SNMPBindings> SnmpCreateVbl(SNMPTransportSession& session) = 0;

    /// Appends. Only values of syntax Null can be sent.
    virtual bool SnmpSetVb(SNMPTransportSession& session, SNMPBindings& list, const SNMPOid& name,
                           const SNMPValue& value) = 0;

    /// The request id is one that no outstanding request of the process has, and that nobody can guess.
    virtual std::optional<SNMPPdu> SnmpCreatePdu(SNMPTransportSession& session, SNMPPduType type,
                                                 SNMPBindings list) = 0;

    /// True when the network took the message. It is sent once, and never waits for room to send.
    virtual bool SnmpSendMsg(SNMPTransportSession& session, const SNMPEntity& destination,
                             const SNMPContext& context, const SNMPPdu& pdu) = 0;

    /// The message that a callback tells of; to be called from that callback.
    virtual std::optional<SNMPReceived> SnmpRecvMsg(SNMPTransportSession& session) = 0;

    /// Forgets an outstanding request: a reply that comes later is dropped. Does not wait for a callback.
    virtual bool SnmpCancelMsg(SNMPTransportSession& session, std::int32_t requestId) = 0;

    /// The session's last error, or without one that of the calls that have no session.
    virtual SNMPError SnmpGetLastError(const SNMPTransportSession* session) = 0;
};

} // namespace mirovane
