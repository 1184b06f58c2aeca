#include "probes/snmp/SNMPObject.h"

#include "probes/snmp/SNMPException.h"

#include <algorithm>

namespace mirovane {

namespace {

constexpr const char* objectSource = "SNMPObject";

bool isPrintable(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 0x20 && byte <= 0x7E) || byte == 0x0A || byte == 0x0D;
}

std::string hexText(const std::string& bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (!text.empty())
            text += '-';
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

std::string dottedBytes(const std::string& bytes) {
    std::string text;
    for (const char c : bytes) {
        if (!text.empty())
            text += '.';
        text += std::to_string(static_cast<unsigned char>(c));
    }
    return text;
}

/// "days,hours:minutes:seconds.milliseconds" without padding but for the milliseconds.
std::string ticksText(std::uint64_t hundredths) {
    const std::uint64_t part = hundredths % 100;
    const std::uint64_t seconds = hundredths / 100;
    const std::string milliseconds = part == 0   ? "000"
                                     : part < 10 ? "0" + std::to_string(part) + "0"
                                                 : std::to_string(part) + "0";
    return std::to_string(seconds / 86400) + "," + std::to_string(seconds % 86400 / 3600) + ":" +
           std::to_string(seconds % 3600 / 60) + ":" + std::to_string(seconds % 60) + "." + milliseconds;
}

} // namespace

SNMPObject::SNMPObject(const std::string& oidText) {
    SetOid(oidText);
}

void SNMPObject::SetOid(const std::string& oidText) {
    oid_.reset();
    if (oidText.empty())
        return;
    oid_ = SnmpStrToOid(oidText);
    if (!oid_) {
        raiseSnmp(objectSource, "Could not convert OID from string representation",
                  static_cast<std::int32_t>(SNMPError::OidInvalid));
    }
}

std::string SNMPObject::OidText() const {
    auto text = oid_ ? SnmpOidToStr(*oid_) : std::nullopt;
    if (!text) {
        raiseSnmp(objectSource, "Failed to convert OID to string",
                  static_cast<std::int32_t>(SNMPError::OidInvalid));
    }
    return std::move(*text);
}

bool SNMPObject::holdsOctets() const {
    return syntax_ == SNMPSyntax::Bits || syntax_ == SNMPSyntax::Octets || syntax_ == SNMPSyntax::Opaque;
}

void SNMPObject::SetFromValue(const SNMPValue& value) {
    syntax_ = value.syntax;
    switch (value.syntax) {
    case SNMPSyntax::Integer:
        number_ = static_cast<std::uint64_t>(std::int64_t{value.integer});
        break;
    case SNMPSyntax::Counter32:
    case SNMPSyntax::Gauge32:
    case SNMPSyntax::TimeTicks:
    case SNMPSyntax::UnsignedInteger32:
        number_ = value.unsignedNumber;
        break;
    case SNMPSyntax::Counter64:
        number_ = (std::uint64_t{value.high} << 32) + value.low;
        break;
    case SNMPSyntax::Bits:
    case SNMPSyntax::Octets:
    case SNMPSyntax::Opaque:
        binary_ = !std::all_of(value.octets.begin(), value.octets.end(), isPrintable);
        (binary_ ? octets_ : text_) = value.octets;
        break;
    case SNMPSyntax::ObjectIdentifier:
        text_ = SnmpOidToStr(value.oid).value_or("");
        break;
    case SNMPSyntax::IPAddr:
    case SNMPSyntax::NsapAddress:
        text_ = dottedBytes(value.octets);
        break;
    default:
        break;
    }
}

void SNMPObject::SetOctets(const void* bytes, std::size_t length) {
    if (!holdsOctets())
        return;
    binary_ = true;
    octets_.clear();
    if (bytes != nullptr)
        octets_.assign(static_cast<const char*>(bytes), length);
}

const unsigned char* SNMPObject::GetOctets(std::size_t& length) const {
    length = 0;
    if (!holdsOctets())
        return nullptr;
    const std::string& held = binary_ ? octets_ : text_;
    length = held.size();
    return reinterpret_cast<const unsigned char*>(held.data());
}

std::string SNMPObject::octetsText() const {
    if (!binary_)
        return '"' + text_ + '"';
    return octets_.empty() ? "empty" : hexText(octets_);
}

std::string SNMPObject::ValueText() const {
    switch (syntax_) {
    case SNMPSyntax::Integer:
        return std::to_string(static_cast<std::int64_t>(number_));
    case SNMPSyntax::Counter32:
    case SNMPSyntax::Gauge32:
    case SNMPSyntax::Counter64:
    case SNMPSyntax::UnsignedInteger32:
        return std::to_string(number_);
    case SNMPSyntax::TimeTicks:
        return ticksText(number_);
    case SNMPSyntax::Bits:
    case SNMPSyntax::Octets:
    case SNMPSyntax::Opaque:
        return octetsText();
    case SNMPSyntax::ObjectIdentifier:
    case SNMPSyntax::IPAddr:
    case SNMPSyntax::NsapAddress:
        return text_;
    case SNMPSyntax::Null:
        return "null";
    case SNMPSyntax::NoSuchObject:
        return "no such object";
    case SNMPSyntax::NoSuchInstance:
        return "no such instance";
    case SNMPSyntax::EndOfMibView:
        return "end of mib";
    }
    return "not printable (" + std::to_string(static_cast<unsigned>(syntax_)) + ")";
}

} // namespace mirovane
