#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What a transport hands out. 0 is none; a handle is never used again for something else.
enum class SnmpSessionHandle : std::uint64_t {};
enum class SnmpEntityHandle : std::uint64_t {};  ///< an address with its port
enum class SnmpContextHandle : std::uint64_t {}; ///< a community
enum class SnmpVblHandle : std::uint64_t {};     ///< a list of variable bindings
enum class SnmpPduHandle : std::uint64_t {};

/// The transport's last-error codes.
enum class SnmpError : std::int32_t {
    None = 0,
    ContextInvalid = 3,
    EntityInvalid = 5,
    IndexInvalid = 7,
    NoMessage = 8,
    OidInvalid = 9,
    PduInvalid = 12,
    SessionInvalid = 13,
    SyntaxInvalid = 14,
    VblInvalid = 15,
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

enum class SnmpPduType : std::int32_t {
    GetRequest = 0xA0,
    Response = 0xA2,
    Inform = 0xA6,
    Trap = 0xA7,
};

/// Types of a variable's value as they stand in messages.
enum class SnmpSyntax : std::uint8_t {
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

using SnmpOid = std::vector<std::uint32_t>;

constexpr std::size_t longestSnmpOid = 128;     ///< sub-identifiers
constexpr std::size_t snmpOidTextBuffer = 1409; ///< characters of the longest text and its terminator

/// A value as it came. Only what belongs to the syntax is filled in; of a syntax that nobody knows, nothing.
struct SnmpValue {
    SnmpSyntax syntax = SnmpSyntax::Null;
    std::int32_t integer = 0;         ///< Integer
    std::uint32_t unsignedNumber = 0; ///< Counter32, Gauge32, TimeTicks, UnsignedInteger32
    std::uint32_t high = 0;           ///< Counter64
    std::uint32_t low = 0;
    std::string octets; ///< bytes of Bits, Octets, Opaque, IPAddr and NsapAddress
    SnmpOid oid;        ///< ObjectIdentifier
};

struct SnmpBinding {
    SnmpOid name;
    SnmpValue value;
};

/// Reads "1.3.6.1.2.1.1.5.0": at least two decimal sub-identifiers of at most 32 bits, the first two as they
/// can stand in a message. One leading dot is allowed, as other tools print it. Names are not known.
std::optional<SnmpOid> SnmpStrToOid(std::string_view text);

/// The dotted text, nothing when it is longer than any identifier may be.
std::optional<std::string> SnmpOidToStr(const SnmpOid& oid);

} // namespace mirovane
