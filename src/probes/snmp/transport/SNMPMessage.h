#pragma once

#include "probes/snmp/transport/SNMPTypes.h"

#include <optional>
#include <span>
#include <vector>

namespace mirovane {

/// The one version of the protocol that is spoken, as its number in messages (0 is SNMPv1). A message of
/// another version answers nothing.
constexpr long snmpMessageVersion = 0;

struct SNMPMessage {
    SNMPContext context;
    SNMPPdu pdu;
};

using SNMPBytes = std::vector<std::uint8_t>;

/// The message as it is sent; its bindings must have syntax Null. Nothing when it can't be encoded, for
/// example because of an identifier that is too short.
///
/// This and decodeSnmpMessage() are the only users of the Net-SNMP library, as a mere codec: it reads no
/// file, prints nothing. Any thread may call them; they take turns, since the library notes its errors in
/// variables of the whole process.
std::optional<SNMPBytes> encodeSnmpMessage(const SNMPMessage& message);

/// A received datagram. Nothing unless it is a message of our version with a readable head (community, type,
/// request id, error status and index). The traps of the first version have no request id and give nothing
/// too. Bytes behind the message don't count.
std::optional<SNMPMessage> decodeSnmpMessage(std::span<const std::uint8_t> datagram);

} // namespace mirovane
