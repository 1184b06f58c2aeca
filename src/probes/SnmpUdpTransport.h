#pragma once

#include "probes/SnmpHandles.h"
#include "probes/SnmpMessage.h"
#include "probes/SnmpReading.h"
#include "probes/SnmpRequestTable.h"
#include "probes/SnmpSockets.h"
#include "probes/SnmpTransport.h"
#include "probes/SnmpTransportSession.h"

#include <span>
#include <thread>

namespace mirovane {

/// SNMP over UDP: one socket for each address family and one receive thread serve all sessions of the
/// process. Owned by the program's main object; it outlives the manager. Thousands of requests may be
/// outstanding; each is sent once. A message counts only when it comes from the address and port that its
/// request went to, under the same community, with the same id. The sockets are opened in the network
/// namespace of the thread that starts it.
class SnmpUdpTransport final : public SnmpTransport {
public:
    SnmpUdpTransport() = default;
    ~SnmpUdpTransport() override;
    SnmpUdpTransport(const SnmpUdpTransport&) = delete;
    SnmpUdpTransport& operator=(const SnmpUdpTransport&) = delete;

    bool SnmpStartup(SnmpStartupInfo& info) override;
    bool SnmpSetTranslateMode(std::uint32_t mode) override;
    bool SnmpSetRetransmitMode(std::uint32_t mode) override;
    bool SnmpCleanup() override;
    SnmpSessionHandle SnmpCreateSession(SnmpCallback callback) override;
    bool SnmpClose(SnmpSessionHandle session) override;
    SnmpEntityHandle SnmpStrToEntity(SnmpSessionHandle session, const std::string& address) override;
    bool SnmpSetPort(SnmpEntityHandle entity, std::uint32_t port) override;
    bool SnmpFreeEntity(SnmpEntityHandle entity) override;
    SnmpContextHandle SnmpStrToContext(SnmpSessionHandle session, const std::string& community) override;
    bool SnmpFreeContext(SnmpContextHandle context) override;
    SnmpVblHandle SnmpCreateVbl(SnmpSessionHandle session) override;
    bool SnmpSetVb(SnmpVblHandle list, const SnmpOid& name, const SnmpValue& value) override;
    std::size_t SnmpCountVbl(SnmpVblHandle list) override;
    bool SnmpGetVb(SnmpVblHandle list, std::size_t index, SnmpOid& name, SnmpValue& value) override;
    bool SnmpFreeVbl(SnmpVblHandle list) override;
    SnmpPduHandle SnmpCreatePdu(SnmpSessionHandle session, SnmpPduType type, SnmpVblHandle list) override;
    bool SnmpGetPduData(SnmpPduHandle pdu, SnmpPduData& data) override;
    bool SnmpFreePdu(SnmpPduHandle pdu) override;
    bool SnmpSendMsg(SnmpSessionHandle session, SnmpEntityHandle destination, SnmpContextHandle context,
                     SnmpPduHandle pdu) override;
    bool SnmpRecvMsg(SnmpSessionHandle session, SnmpReceived& message) override;
    bool SnmpCancelMsg(SnmpSessionHandle session, std::int32_t requestId) override;
    SnmpEvent::WaitResult wait(SnmpEvent& event, SnmpEvent::Deadline deadline,
                               const std::stop_token& stop) override;
    SnmpError SnmpGetLastError(SnmpSessionHandle session) override;

    /// Requests that wait for a reply, and things that were made and not freed; for tests.
    std::size_t outstanding() const { return requests_.outstanding(); }
    std::size_t handlesInUse() const;

private:
    struct Entity {
        SnmpSessionHandle session;
        SnmpPeer peer;
    };
    struct Context {
        std::string community;
    };
    struct BindingList {
        SnmpSessionHandle session;
        std::vector<SnmpBinding> bindings;
        bool damaged = false;
    };
    struct Pdu {
        SnmpSessionHandle session;
        SnmpPduData data;
        std::shared_ptr<BindingList> list;
        bool ownsId = false; ///< made here: its id is reserved
    };

    /// Notes the error for the session, if there is one, and for the transport. Always false.
    bool fail(SnmpSessionHandle session, SnmpError error);
    /// What exists while started.
    struct Network {
        explicit Network(SnmpUdpTransport& owner);

        SnmpSockets sockets;
        SnmpReading reading;
    };

    void onDatagram(const SnmpPeer& peer, std::span<const std::uint8_t> bytes);
    SnmpPduHandle keepReceived(SnmpMessage&& message);
    std::shared_ptr<Network> network() const;

    SnmpRequestTable requests_;
    SnmpHandles<SnmpSessionHandle, SnmpTransportSession> sessions_;
    SnmpHandles<SnmpEntityHandle, const Entity> entities_;
    SnmpHandles<SnmpContextHandle, const Context> contexts_;
    SnmpHandles<SnmpVblHandle, BindingList> lists_;
    SnmpHandles<SnmpPduHandle, const Pdu> pdus_;
    std::atomic<SnmpError> lastError_{SnmpError::None};

    mutable std::mutex lifeMutex_;
    std::shared_ptr<Network> network_;
    std::thread receiver_;
};

} // namespace mirovane
