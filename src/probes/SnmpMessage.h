#pragma once

#include "probes/SnmpTypes.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace mirovane {

/// The one version of the protocol that is spoken, as it stands in messages (0 is SNMPv1). Messages of
/// another version are nobody's answer.
constexpr long snmpMessageVersion = 0;

/// A message with its bindings. Decoded ones come from the network: any community, any type, any number.
struct SnmpMessage {
    std::string community;
    std::int32_t type = 0; ///< see SnmpPduType; others exist
    std::int32_t requestId = 0;
    std::int32_t errorStatus = 0;
    std::int32_t errorIndex = 0;
    std::vector<SnmpBinding> bindings;

    /// The bindings end in one that makes no sense. Those before it are whole.
    bool damaged = false;
};

using SnmpBytes = std::vector<std::uint8_t>;

/// The message as it is sent; its bindings must have syntax Null. Nothing when it can't be encoded, for
/// example because of an identifier that is too short.
///
/// This and decodeSnmpMessage() are the only users of the Net-SNMP library, as a mere codec: it reads no
/// file, prints nothing. Any thread may call them; they take turns, since the library notes its errors in
/// variables of the whole process.
std::optional<SnmpBytes> encodeSnmpMessage(const SnmpMessage& message);

/// A received datagram. Nothing when it is no message of our version with a readable head (community, type,
/// request id, error status and index). Types without a request id, the traps of the first version, are
/// nothing too. Bytes behind the message don't count.
std::optional<SnmpMessage> decodeSnmpMessage(std::span<const std::uint8_t> datagram);

} // namespace mirovane
