#include "probes/SnmpUdpTransport.h"

#include "probes/BlockedSignals.h"

#include <new>
#include <system_error>

namespace mirovane {

namespace {

constexpr std::size_t longestCommunity = 1024; ///< far more than agents allow, far less than a datagram

} // namespace

SnmpUdpTransport::~SnmpUdpTransport() {
    SnmpCleanup();
}

bool SnmpUdpTransport::fail(SnmpSessionHandle session, SnmpError error) {
    lastError_ = error;
    if (const auto known = sessions_.find(session)) {
        known->lastError = error;
    }
    return false;
}

SnmpUdpTransport::Network::Network(SnmpUdpTransport& owner)
    : reading(
          sockets,
          [&owner](const SnmpPeer& peer, std::span<const std::uint8_t> bytes) {
              owner.onDatagram(peer, bytes);
          },
          [&owner] { return owner.requests_.outstanding() > 0; }) {}

std::shared_ptr<SnmpUdpTransport::Network> SnmpUdpTransport::network() const {
    const std::lock_guard lock(lifeMutex_);
    return network_;
}

std::size_t SnmpUdpTransport::handlesInUse() const {
    return sessions_.size() + entities_.size() + contexts_.size() + lists_.size() + pdus_.size();
}

bool SnmpUdpTransport::SnmpStartup(SnmpStartupInfo& info) {
    const std::lock_guard lock(lifeMutex_);
    if (!network_) {
        const auto network = std::make_shared<Network>(*this);
        if (!network->sockets.open()) {
            return fail({}, SnmpError::NoSocket);
        }
        try {
            const BlockedSignals noSignals;
            receiver_ = std::thread([network] { network->reading.run(); });
        } catch (const std::system_error&) {
            return fail({}, SnmpError::Other);
        }
        network_ = network;
    }
    constexpr std::uint32_t v1Only = 1;
    info = {1, 0, v1Only, snmpUntranslatedV1, snmpRetransmitOff};
    return true;
}

bool SnmpUdpTransport::SnmpSetTranslateMode(std::uint32_t mode) {
    return mode == snmpUntranslatedV1 || fail({}, SnmpError::ModeInvalid);
}

bool SnmpUdpTransport::SnmpSetRetransmitMode(std::uint32_t mode) {
    return mode == snmpRetransmitOff || fail({}, SnmpError::ModeInvalid);
}

bool SnmpUdpTransport::SnmpCleanup() {
    std::thread receiver;
    {
        const std::lock_guard lock(lifeMutex_);
        if (!network_) {
            return fail({}, SnmpError::NotInitialized);
        }
        network_->reading.stop();
        receiver.swap(receiver_);
        network_.reset();
    }
    receiver.join();
    requests_.clear();
    pdus_.removeAll();
    lists_.removeAll();
    contexts_.removeAll();
    entities_.removeAll();
    sessions_.removeAll();
    return true;
}

SnmpSessionHandle SnmpUdpTransport::SnmpCreateSession(SnmpCallback callback) {
    if (!network()) {
        fail({}, SnmpError::NotInitialized);
        return {};
    }
    return sessions_.add(std::make_shared<SnmpTransportSession>(std::move(callback)));
}

bool SnmpUdpTransport::SnmpClose(SnmpSessionHandle session) {
    const auto closing = sessions_.remove(session);
    if (!closing) {
        return fail({}, SnmpError::SessionInvalid);
    }
    requests_.forgetAll(closing.get());
    for (const SnmpReceived& message : closing->close()) {
        SnmpFreePdu(message.pdu);
    }
    return true;
}

SnmpEntityHandle SnmpUdpTransport::SnmpStrToEntity(SnmpSessionHandle session, const std::string& address) {
    const auto peer = SnmpPeer::parse(address);
    if (!sessions_.find(session) || !peer) {
        fail(session, peer ? SnmpError::SessionInvalid : SnmpError::EntityInvalid);
        return {};
    }
    return entities_.add(std::make_shared<const Entity>(Entity{session, *peer}));
}

bool SnmpUdpTransport::SnmpSetPort(SnmpEntityHandle entity, std::uint32_t port) {
    const auto known = entities_.find(entity);
    if (!known) {
        return fail({}, SnmpError::EntityInvalid);
    }
    if (port == 0 || port > UINT16_MAX) {
        return fail(known->session, SnmpError::SizeInvalid);
    }
    Entity moved = *known;
    moved.peer.setPort(static_cast<std::uint16_t>(port));
    return entities_.replace(entity, std::make_shared<const Entity>(moved)) ||
           fail(known->session, SnmpError::EntityInvalid);
}

bool SnmpUdpTransport::SnmpFreeEntity(SnmpEntityHandle entity) {
    return entities_.remove(entity) || fail({}, SnmpError::EntityInvalid);
}

SnmpContextHandle SnmpUdpTransport::SnmpStrToContext(SnmpSessionHandle session,
                                                     const std::string& community) {
    if (!sessions_.find(session)) {
        fail({}, SnmpError::SessionInvalid);
        return {};
    }
    if (community.size() > longestCommunity) {
        fail(session, SnmpError::SizeInvalid);
        return {};
    }
    return contexts_.add(std::make_shared<const Context>(Context{community}));
}

bool SnmpUdpTransport::SnmpFreeContext(SnmpContextHandle context) {
    return contexts_.remove(context) || fail({}, SnmpError::ContextInvalid);
}

SnmpVblHandle SnmpUdpTransport::SnmpCreateVbl(SnmpSessionHandle session) {
    if (!sessions_.find(session)) {
        fail({}, SnmpError::SessionInvalid);
        return {};
    }
    return lists_.add(std::make_shared<BindingList>(BindingList{session, {}, false}));
}

bool SnmpUdpTransport::SnmpSetVb(SnmpVblHandle list, const SnmpOid& name, const SnmpValue& value) {
    const auto known = lists_.find(list);
    if (!known) {
        return fail({}, SnmpError::VblInvalid);
    }
    if (name.size() < 2 || name.size() > longestSnmpOid) {
        return fail(known->session, SnmpError::OidInvalid);
    }
    if (value.syntax != SnmpSyntax::Null) {
        return fail(known->session, SnmpError::SyntaxInvalid);
    }
    known->bindings.push_back({name, value});
    return true;
}

std::size_t SnmpUdpTransport::SnmpCountVbl(SnmpVblHandle list) {
    const auto known = lists_.find(list);
    if (!known) {
        fail({}, SnmpError::VblInvalid);
        return 0;
    }
    return known->bindings.size() + (known->damaged ? 1 : 0);
}

bool SnmpUdpTransport::SnmpGetVb(SnmpVblHandle list, std::size_t index, SnmpOid& name, SnmpValue& value) {
    const auto known = lists_.find(list);
    if (!known) {
        return fail({}, SnmpError::VblInvalid);
    }
    if (index == 0 || index > known->bindings.size()) {
        return fail(known->session, SnmpError::IndexInvalid);
    }
    name = known->bindings[index - 1].name;
    value = known->bindings[index - 1].value;
    return true;
}

bool SnmpUdpTransport::SnmpFreeVbl(SnmpVblHandle list) {
    return lists_.remove(list) || fail({}, SnmpError::VblInvalid);
}

SnmpPduHandle SnmpUdpTransport::SnmpCreatePdu(SnmpSessionHandle session, SnmpPduType type,
                                              SnmpVblHandle list) {
    const auto known = lists_.find(list);
    if (!sessions_.find(session) || !known) {
        fail(session, known ? SnmpError::SessionInvalid : SnmpError::VblInvalid);
        return {};
    }
    SnmpPduData data;
    data.type = static_cast<std::int32_t>(type);
    data.requestId = requests_.reserve();
    return pdus_.add(std::make_shared<const Pdu>(Pdu{session, data, known, true}));
}

bool SnmpUdpTransport::SnmpGetPduData(SnmpPduHandle pdu, SnmpPduData& data) {
    const auto known = pdus_.find(pdu);
    if (!known) {
        return fail({}, SnmpError::PduInvalid);
    }
    data = known->data;
    data.bindings = lists_.add(known->list);
    return true;
}

bool SnmpUdpTransport::SnmpFreePdu(SnmpPduHandle pdu) {
    const auto freed = pdus_.remove(pdu);
    if (!freed) {
        return fail({}, SnmpError::PduInvalid);
    }
    if (freed->ownsId) {
        requests_.release(freed->data.requestId);
    }
    return true;
}

bool SnmpUdpTransport::SnmpSendMsg(SnmpSessionHandle session, SnmpEntityHandle destination,
                                   SnmpContextHandle context, SnmpPduHandle pdu) {
    const auto sender = sessions_.find(session);
    const auto entity = entities_.find(destination);
    const auto community = contexts_.find(context);
    const auto content = pdus_.find(pdu);
    const auto network = this->network();
    if (!sender || !entity || !community || !content || !network) {
        return fail(session, !network     ? SnmpError::NotInitialized
                             : !sender    ? SnmpError::SessionInvalid
                             : !entity    ? SnmpError::EntityInvalid
                             : !community ? SnmpError::ContextInvalid
                                          : SnmpError::PduInvalid);
    }
    SnmpMessage message;
    message.community = community->community;
    message.type = content->data.type;
    message.requestId = content->data.requestId;
    message.bindings = content->list->bindings;
    const auto bytes = encodeSnmpMessage(message);
    if (!bytes) {
        return fail(session, SnmpError::MessageInvalid);
    }
    // Before sending: the reply may be here before send() returns.
    if (!requests_.expect(message.requestId,
                          {sender, entity->peer, community->community, destination, context})) {
        return fail(session, SnmpError::PduInvalid);
    }
    if (!network->sockets.send(entity->peer, *bytes)) {
        requests_.forget(sender.get(), message.requestId);
        return fail(session, SnmpError::NotSent);
    }
    return true;
}

bool SnmpUdpTransport::SnmpRecvMsg(SnmpSessionHandle session, SnmpReceived& message) {
    const auto known = sessions_.find(session);
    if (!known) {
        return fail({}, SnmpError::SessionInvalid);
    }
    const auto taken = known->take();
    if (!taken) {
        return fail(session, SnmpError::NoMessage);
    }
    message = *taken;
    return true;
}

bool SnmpUdpTransport::SnmpCancelMsg(SnmpSessionHandle session, std::int32_t requestId) {
    const auto known = sessions_.find(session);
    if (!known) {
        return fail({}, SnmpError::SessionInvalid);
    }
    return requests_.forget(known.get(), requestId) || fail(session, SnmpError::PduInvalid);
}

SnmpEvent::WaitResult SnmpUdpTransport::wait(SnmpEvent& event, SnmpEvent::Deadline deadline,
                                             const std::stop_token& stop) {
    const auto network = this->network();
    return network ? network->reading.wait(event, deadline, stop) : event.wait(deadline, stop);
}

SnmpError SnmpUdpTransport::SnmpGetLastError(SnmpSessionHandle session) {
    const auto known = sessions_.find(session);
    return known ? known->lastError.load() : lastError_.load();
}

SnmpPduHandle SnmpUdpTransport::keepReceived(SnmpMessage&& message) {
    SnmpPduData data;
    data.type = message.type;
    data.requestId = message.requestId;
    data.errorStatus = message.errorStatus;
    data.errorIndex = message.errorIndex;
    auto list = std::make_shared<BindingList>();
    list->bindings = std::move(message.bindings);
    list->damaged = message.damaged;
    return pdus_.add(std::make_shared<const Pdu>(Pdu{{}, data, std::move(list), false}));
}

void SnmpUdpTransport::onDatagram(const SnmpPeer& peer, std::span<const std::uint8_t> bytes) {
    try {
        auto message = decodeSnmpMessage(bytes);
        if (!message) {
            return;
        }
        const std::int32_t id = message->requestId;
        const bool answers = message->type == static_cast<std::int32_t>(SnmpPduType::Response);
        const auto waiting = requests_.match(id, peer, message->community, answers);
        if (!waiting) {
            return;
        }
        const SnmpPduHandle pdu = keepReceived(std::move(*message));
        if (!waiting->session->deliver({waiting->entity, waiting->context, pdu}, id)) {
            SnmpFreePdu(pdu);
        }
    } catch (const std::bad_alloc&) {
        // A message that there is no room for counts as lost on the way.
        return;
    }
}

} // namespace mirovane
