#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// The transport's last-error codes.
enum class SNMPError : std::int32_t {
    None = 0,
    EntityInvalid = 5,
    NoMessage = 8,
    OidInvalid = 9,
    PduInvalid = 12,
    SyntaxInvalid = 14,
    ModeInvalid = 16,
    SizeInvalid = 17,
    NotInitialized = 18,
    MessageInvalid = 19,
    Other = 99,
    NotSent = 100,
    NoSocket = 101,
};

/// What the layer itself reports where a transport's code does not apply.
constexpr std::int32_t snmpLayerError = 5; ///< an error status or a code: the layer failed
constexpr std::int32_t snmpCallerError = 99;

enum class SNMPPduType : std::int32_t {
    GetRequest = 0xA0,
    Response = 0xA2,
    Inform = 0xA6,
    Trap = 0xA7,
};

/// Types of a variable's value, with their codes in a message.
enum class SNMPSyntax : std::uint8_t {
    Integer = 0x02,
    Bits = 0x03,
    Octets = 0x04,
    Null = 0x05,
    ObjectIdentifier = 0x06,
    IPAddr = 0x40,
    Counter32 = 0x41,
    Gauge32 = 0x42,
    TimeTicks = 0x43,
    Opaque = 0x44,
    NsapAddress = 0x45,
    Counter64 = 0x46,
    UnsignedInteger32 = 0x47,
    NoSuchObject = 0x80,
    NoSuchInstance = 0x81,
    EndOfMibView = 0x82,
};

using SNMPOid = std::vector<std::uint32_t>;

constexpr std::size_t longestSnmpOid = 128;     ///< sub-identifiers
constexpr std::size_t snmpOidTextBuffer = 1409; ///< characters of the longest text and its terminator

/// A value as it came. Only what belongs to the syntax is filled in; of a syntax that nobody knows, nothing.
struct SNMPValue {
    SNMPSyntax syntax = SNMPSyntax::Null;
    std::int32_t integer = 0;         ///< Integer
    std::uint32_t unsignedNumber = 0; ///< Counter32, Gauge32, TimeTicks, UnsignedInteger32
    std::uint32_t high = 0;           ///< Counter64
    std::uint32_t low = 0;
    std::string octets; ///< bytes of Bits, Octets, Opaque, IPAddr and NsapAddress
    SNMPOid oid;        ///< ObjectIdentifier
};

struct SNMPBinding {
    SNMPOid name;
    SNMPValue value;
};
using SNMPBindings = std::vector<SNMPBinding>;

/// Whom a request claims to come from.
struct SNMPContext {
    std::string community;

    bool operator==(const SNMPContext&) const = default;
};

/// What a message says. Received ones come from the network: any type, any number.
struct SNMPPdu {
    std::int32_t type = 0; ///< see SNMPPduType; others exist
    std::int32_t requestId = 0;
    std::int32_t errorStatus = 0;
    std::int32_t errorIndex = 0;
    SNMPBindings bindings;

    /// The bindings end in one that makes no sense. Those before it are whole.
    bool damaged = false;
};

/// Reads "1.3.6.1.2.1.1.5.0": at least two decimal sub-identifiers of at most 32 bits, the first two as a
/// message can carry them. One leading dot is allowed, as other tools print it. Names are not known.
std::optional<SNMPOid> SnmpStrToOid(std::string_view text);

/// The dotted text, nothing when it is longer than any identifier may be.
std::optional<std::string> SnmpOidToStr(const SNMPOid& oid);

} // namespace mirovane
