#include "probes/snmp/transport/SNMPUdpTransport.h"

#include "platform/BlockedSignals.h"

#include <new>
#include <system_error>
#include <utility>

namespace mirovane {

namespace {

constexpr std::size_t longestCommunity = 1024; ///< far more than agents allow, far less than a datagram

} // namespace

SNMPUdpTransport::~SNMPUdpTransport() {
    SnmpCleanup();
}

/// Notes the error for the session, if there is one, and for the transport. Always false.
bool SNMPUdpTransport::fail(SNMPTransportSession* session, SNMPError error) {
    lastError_ = error;
    if (session != nullptr)
        session->lastError = error;
    return false;
}

bool SNMPUdpTransport::SnmpStartup(SNMPStartupInfo& info) {
    const std::lock_guard lock(mutex_);
    if (!sockets_) {
        auto sockets = std::make_unique<SNMPSockets>();
        if (!sockets->open())
            return fail(nullptr, SNMPError::NoSocket);
        try {
            const CBlockedSignals noSignals;
            receiver_ = std::thread([this, &opened = *sockets] {
                opened.receive([this](const SNMPEntity& source, std::span<const std::uint8_t> bytes) {
                    onDatagram(source, bytes);
                });
            });
        } catch (const std::system_error&) {
            return fail(nullptr, SNMPError::Other);
        }
        sockets_ = std::move(sockets);
    }
    constexpr std::uint32_t v1Only = 1;
    info = {1, 0, v1Only, snmpUntranslatedV1, snmpRetransmitOff};
    return true;
}

bool SNMPUdpTransport::SnmpSetTranslateMode(std::uint32_t mode) {
    return mode == snmpUntranslatedV1 || fail(nullptr, SNMPError::ModeInvalid);
}

bool SNMPUdpTransport::SnmpSetRetransmitMode(std::uint32_t mode) {
    return mode == snmpRetransmitOff || fail(nullptr, SNMPError::ModeInvalid);
}

bool SNMPUdpTransport::SnmpCleanup() {
    std::unique_ptr<SNMPSockets> closing;
    {
        const std::lock_guard lock(mutex_);
        if (!sockets_)
            return fail(nullptr, SNMPError::NotInitialized);
        closing = std::move(sockets_);
        waiters_.clear();
    }
    closing->stop();
    receiver_.join(); // without the lock, which the receiver may need to come to its end
    return true;
}

std::unique_ptr<SNMPTransportSession> SNMPUdpTransport::SnmpCreateSession(SNMPCallback callback) {
    const std::lock_guard lock(mutex_);
    if (!sockets_) {
        fail(nullptr, SNMPError::NotInitialized);
        return nullptr;
    }
    return std::make_unique<SNMPTransportSession>(std::move(callback));
}

void SNMPUdpTransport::SnmpClose(SNMPTransportSession& session) {
    std::unique_lock lock(mutex_);
    std::erase_if(
        waiters_, [&](const auto& waiter) { return waiter.second.session == &session; });
    callbackEnded_.wait(lock, [&] { return called_ != &session; });
}

std::optional<SNMPEntity> SNMPUdpTransport::SnmpStrToEntity(SNMPTransportSession& session,
                                                            const std::string& address) {
    auto entity = SNMPEntity::parse(address);
    if (!entity)
        fail(&session, SNMPError::EntityInvalid);
    return entity;
}

bool SNMPUdpTransport::SnmpSetPort(SNMPTransportSession& session, SNMPEntity& entity, std::uint32_t port) {
    if (port == 0 || port > UINT16_MAX)
        return fail(&session, SNMPError::SizeInvalid);
    entity.setPort(static_cast<std::uint16_t>(port));
    return true;
}

std::optional<SNMPContext> SNMPUdpTransport::SnmpStrToContext(SNMPTransportSession& session,
                                                              const std::string& community) {
    if (community.size() > longestCommunity) {
        fail(&session, SNMPError::SizeInvalid);
        return std::nullopt;
    }
    return SNMPContext{community};
}

std::optional<SNMPBindings> SNMPUdpTransport::SnmpCreateVbl(SNMPTransportSession& session) {
    const std::lock_guard lock(mutex_);
    if (!sockets_) {
        fail(&session, SNMPError::NotInitialized);
        return std::nullopt;
    }
    return SNMPBindings();
}

bool SNMPUdpTransport::SnmpSetVb(SNMPTransportSession& session, SNMPBindings& list, const SNMPOid& name,
                                 const SNMPValue& value) {
    if (name.size() < 2 || name.size() > longestSnmpOid)
        return fail(&session, SNMPError::OidInvalid);
    if (value.syntax != SNMPSyntax::Null)
        return fail(&session, SNMPError::SyntaxInvalid);
    list.push_back({name, value});
    return true;
}

/// Ids are drawn anew each time: whoever could guess the next one could answer in the agent's place. 0 means
/// that there is no request.
std::optional<SNMPPdu> SNMPUdpTransport::SnmpCreatePdu(SNMPTransportSession&, SNMPPduType type,
                                                       SNMPBindings list) {
    SNMPPdu pdu;
    pdu.type = static_cast<std::int32_t>(type);
    pdu.bindings = std::move(list);
    const std::lock_guard lock(mutex_);
    while (pdu.requestId == 0 || waiters_.contains(pdu.requestId))
        pdu.requestId = static_cast<std::int32_t>(random_() & INT32_MAX);
    return pdu;
}

bool SNMPUdpTransport::SnmpSendMsg(SNMPTransportSession& session, const SNMPEntity& destination,
                                   const SNMPContext& context, const SNMPPdu& pdu) {
    const auto bytes = encodeSnmpMessage({context, pdu});
    if (!bytes)
        return fail(&session, SNMPError::MessageInvalid);
    const std::lock_guard lock(mutex_);
    if (!sockets_)
        return fail(&session, SNMPError::NotInitialized);
    const auto [waiter, isNew] = waiters_.try_emplace(pdu.requestId, Waiter{&session, context});
    if (!isNew)
        return fail(&session, SNMPError::PduInvalid);
    if (!sockets_->send(destination, *bytes)) {
        waiters_.erase(waiter);
        return fail(&session, SNMPError::NotSent);
    }
    return true;
}

std::optional<SNMPReceived> SNMPUdpTransport::SnmpRecvMsg(SNMPTransportSession& session) {
    const std::lock_guard lock(mutex_);
    if (called_ != &session || !arrived_) {
        fail(&session, SNMPError::NoMessage);
        return std::nullopt;
    }
    return std::exchange(arrived_, std::nullopt);
}

bool SNMPUdpTransport::SnmpCancelMsg(SNMPTransportSession& session, std::int32_t requestId) {
    const std::lock_guard lock(mutex_);
    const auto waiter = waiters_.find(requestId);
    if (waiter == waiters_.end() || waiter->second.session != &session)
        return fail(&session, SNMPError::PduInvalid);
    waiters_.erase(waiter);
    return true;
}

SNMPError SNMPUdpTransport::SnmpGetLastError(const SNMPTransportSession* session) {
    return session != nullptr ? session->lastError : lastError_;
}

std::size_t SNMPUdpTransport::outstanding() const {
    const std::lock_guard lock(mutex_);
    return waiters_.size();
}

void SNMPUdpTransport::onDatagram(const SNMPEntity& source, std::span<const std::uint8_t> bytes) {
    try {
        if (auto message = decodeSnmpMessage(bytes))
            deliver(source, std::move(*message));
    } catch (const std::bad_alloc&) {
        return; // a message that there is no room for counts as lost on the way
    }
}

void SNMPUdpTransport::deliver(const SNMPEntity& source, SNMPMessage&& message) {
    const std::int32_t requestId = message.pdu.requestId;
    SNMPTransportSession* session = nullptr;
    {
        const std::lock_guard lock(mutex_);
        const auto waiter = waiters_.find(requestId);
        if (waiter == waiters_.end() || waiter->second.context != message.context)
            return;
        session = waiter->second.session;
        if (message.pdu.type == static_cast<std::int32_t>(SNMPPduType::Response))
            waiters_.erase(waiter); // nothing else ends the wait
        arrived_ = SNMPReceived{source, std::move(message.context), std::move(message.pdu)};
        called_ = session;
    }
    session->callback(0, requestId);
    const std::lock_guard lock(mutex_);
    called_ = nullptr;
    callbackEnded_.notify_all();
}

} // namespace mirovane
