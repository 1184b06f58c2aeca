#pragma once

#include "probes/snmp/transport/SNMPMessage.h"
#include "probes/snmp/transport/SNMPSockets.h"
#include "probes/snmp/transport/SNMPTransport.h"

#include <condition_variable>
#include <mutex>
#include <random>
#include <thread>
#include <unordered_map>

namespace mirovane {

/// SNMP over UDP: one socket for each address family and one receive thread serve all sessions of the
/// process. Owned by the program's main object; it outlives the manager. Thousands of requests may be
/// outstanding. A message counts when it carries the id of a request, which nobody else can guess, and its
/// community; an agent may answer from another of its addresses. The sockets are opened in the network
/// namespace of the thread that starts it.
class SNMPUdpTransport final : public SNMPTransport {
public:
    SNMPUdpTransport() = default;
    ~SNMPUdpTransport() override;
    SNMPUdpTransport(const SNMPUdpTransport&) = delete;
    SNMPUdpTransport& operator=(const SNMPUdpTransport&) = delete;

    bool SnmpStartup(SNMPStartupInfo& info) override;
    bool SnmpSetTranslateMode(std::uint32_t mode) override;
    bool SnmpSetRetransmitMode(std::uint32_t mode) override;
    bool SnmpCleanup() override;
    std::unique_ptr<SNMPTransportSession> SnmpCreateSession(SNMPCallback callback) override;
    void SnmpClose(SNMPTransportSession& session) override;
    std::optional<SNMPEntity> SnmpStrToEntity(SNMPTransportSession& session,
                                              const std::string& address) override;
    bool SnmpSetPort(SNMPTransportSession& session, SNMPEntity& entity, std::uint32_t port) override;
    std::optional<SNMPContext> SnmpStrToContext(SNMPTransportSession& session,
                                                const std::string& community) override;
    std::optional<SNMPBindings> SnmpCreateVbl(SNMPTransportSession& session) override;
    bool SnmpSetVb(SNMPTransportSession& session, SNMPBindings& list, const SNMPOid& name,
                   const SNMPValue& value) override;
    std::optional<SNMPPdu> SnmpCreatePdu(SNMPTransportSession& session, SNMPPduType type,
                                         SNMPBindings list) override;
    bool SnmpSendMsg(SNMPTransportSession& session, const SNMPEntity& destination, const SNMPContext& context,
                     const SNMPPdu& pdu) override;
    std::optional<SNMPReceived> SnmpRecvMsg(SNMPTransportSession& session) override;
    bool SnmpCancelMsg(SNMPTransportSession& session, std::int32_t requestId) override;
    SNMPError SnmpGetLastError(const SNMPTransportSession* session) override;

    /// Requests that wait for a reply. Only tests ask: one that is never forgotten shows nowhere else.
    std::size_t outstanding() const;

private:
    /// What a reply must carry, and who gets it.
    struct Waiter {
        SNMPTransportSession* session;
        SNMPContext context;
    };

    bool fail(SNMPTransportSession* session, SNMPError error);
    void onDatagram(const SNMPEntity& source, std::span<const std::uint8_t> bytes);
    void deliver(const SNMPEntity& source, SNMPMessage&& message);

    std::atomic<SNMPError> lastError_{SNMPError::None};
    std::thread receiver_;

    mutable std::mutex mutex_;             ///< guards all that follows; not held during a callback
    std::unique_ptr<SNMPSockets> sockets_; ///< null unless started
    std::random_device random_;
    std::unordered_map<std::int32_t, Waiter> waiters_; ///< by request id
    std::optional<SNMPReceived> arrived_;              ///< what the callback that runs tells of
    SNMPTransportSession* called_ = nullptr;           ///< whose callback runs
    std::condition_variable callbackEnded_;
};

} // namespace mirovane
