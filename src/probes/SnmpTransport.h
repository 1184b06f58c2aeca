#pragma once

#include "probes/SnmpEvent.h"
#include "probes/SnmpTypes.h"

#include <functional>
#include <string>

namespace mirovane {

struct SnmpStartupInfo {
    std::uint32_t majorVersion = 0;
    std::uint32_t minorVersion = 0;
    std::uint32_t level = 0;
    std::uint32_t translateMode = 0;
    std::uint32_t retransmitMode = 0;
};

constexpr std::uint32_t snmpUntranslatedV1 =
    1; ///< translate mode: entities are addresses, contexts communities
constexpr std::uint32_t snmpRetransmitOff = 0;

struct SnmpPduData {
    std::int32_t type = 0;
    std::int32_t requestId = 0;
    std::int32_t errorStatus = 0;
    std::int32_t errorIndex = 0;
    SnmpVblHandle bindings{}; ///< the caller frees it
};

/// A message that arrived. Its entity and context are those that its request was sent with, and stay their
/// owner's; the PDU is the receiver's to free.
struct SnmpReceived {
    SnmpEntityHandle source{};
    SnmpContextHandle context{};
    SnmpPduHandle pdu{};
};

/// Called with 0 when a message waits, and the request id of that message.
using SnmpCallback = std::function<void(std::uint32_t status, std::int32_t requestId)>;

/// What the SNMP layer asks of a transport: messages to and from agents. Handles of 0 and false mean failure,
/// and the last-error code says which. Any thread may call it. Callbacks come one at
/// a time, from a thread of the transport's own or from one that waits in wait(), never from inside another
/// call.
class SnmpTransport {
public:
    virtual ~SnmpTransport() = default;

    virtual bool SnmpStartup(SnmpStartupInfo& info) = 0;
    virtual bool SnmpSetTranslateMode(std::uint32_t mode) = 0;
    virtual bool SnmpSetRetransmitMode(std::uint32_t mode) = 0;
    virtual bool SnmpCleanup() = 0;

    virtual SnmpSessionHandle SnmpCreateSession(SnmpCallback callback) = 0;

    /// Drops the session's outstanding requests. After it returns no callback of the session runs or will
    /// run, except for the one that it is called from.
    virtual bool SnmpClose(SnmpSessionHandle session) = 0;

    /// Addresses only, with the protocol's own port; names are nothing that a transport can use.
    virtual SnmpEntityHandle SnmpStrToEntity(SnmpSessionHandle session, const std::string& address) = 0;
    virtual bool SnmpSetPort(SnmpEntityHandle entity, std::uint32_t port) = 0;
    virtual bool SnmpFreeEntity(SnmpEntityHandle entity) = 0;
    virtual SnmpContextHandle SnmpStrToContext(SnmpSessionHandle session, const std::string& community) = 0;
    virtual bool SnmpFreeContext(SnmpContextHandle context) = 0;

    virtual SnmpVblHandle SnmpCreateVbl(SnmpSessionHandle session) = 0;

    /// Appends. Only values of syntax Null can be sent.
    virtual bool SnmpSetVb(SnmpVblHandle list, const SnmpOid& name, const SnmpValue& value) = 0;
    virtual std::size_t SnmpCountVbl(SnmpVblHandle list) = 0;

    /// `index` counts from 1. The list of a message whose bindings end in nonsense counts that as one more
    /// binding, and reading it fails.
    virtual bool SnmpGetVb(SnmpVblHandle list, std::size_t index, SnmpOid& name, SnmpValue& value) = 0;
    virtual bool SnmpFreeVbl(SnmpVblHandle list) = 0;

    /// The request id is one that no other PDU or outstanding request of the process has.
    virtual SnmpPduHandle SnmpCreatePdu(SnmpSessionHandle session, SnmpPduType type, SnmpVblHandle list) = 0;
    virtual bool SnmpGetPduData(SnmpPduHandle pdu, SnmpPduData& data) = 0;
    virtual bool SnmpFreePdu(SnmpPduHandle pdu) = 0;

    /// True when the network took the message. It is sent once.
    virtual bool SnmpSendMsg(SnmpSessionHandle session, SnmpEntityHandle destination,
                             SnmpContextHandle context, SnmpPduHandle pdu) = 0;
    virtual bool SnmpRecvMsg(SnmpSessionHandle session, SnmpReceived& message) = 0;

    /// Forgets an outstanding request: a reply that comes later is nobody's. Does not wait for a callback.
    virtual bool SnmpCancelMsg(SnmpSessionHandle session, std::int32_t requestId) = 0;

    /// Waits for an event that a callback sets. The caller holds no lock that a callback takes.
    virtual SnmpEvent::WaitResult wait(SnmpEvent& event, SnmpEvent::Deadline deadline,
                                       const std::stop_token& stop) {
        return event.wait(deadline, stop);
    }

    /// The session's last error, or that of calls without one.
    virtual SnmpError SnmpGetLastError(SnmpSessionHandle session) = 0;
};

} // namespace mirovane
