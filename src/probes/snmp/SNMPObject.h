#pragma once

#include "probes/snmp/transport/SNMPTypes.h"

#include <cstdint>
#include <optional>
#include <string>

namespace mirovane {

/// One variable: its identifier and its typed value. A value that can be copied; one thread at a time.
class SNMPObject {
public:
    /// Syntax Null. Raises as SetOid() does.
    explicit SNMPObject(const std::string& oidText);
    virtual ~SNMPObject() = default;
    SNMPObject(const SNMPObject&) = default;
    SNMPObject& operator=(const SNMPObject&) = default;
    SNMPObject(SNMPObject&&) = default;
    SNMPObject& operator=(SNMPObject&&) = default;

    /// An empty text leaves the object without an identifier. Raises SNMPException for a text that is not
    /// one; the identifier from before is gone then, too.
    void SetOid(const std::string& oidText);

    /// Null when there is none.
    const SNMPOid* GetOid() const { return oid_ ? &*oid_ : nullptr; }

    /// Raises SNMPException when there is none or it can't be written as text.
    std::string OidText() const;

    /// Takes over a value that was received. Never fails.
    void SetFromValue(const SNMPValue& value);

    /// Binary bytes; ignored unless the syntax is Bits, Octets or Opaque. A null pointer or a length of 0
    /// leaves them empty.
    void SetOctets(const void* bytes, std::size_t length);

    /// The bytes of a value of syntax Bits, Octets or Opaque; otherwise null with length 0. Valid until the
    /// value changes.
    const unsigned char* GetOctets(std::size_t& length) const;

    /// The value as a device field shows it. Never fails.
    std::string ValueText() const;

    SNMPSyntax syntax() const { return syntax_; }

private:
    bool holdsOctets() const;
    std::string octetsText() const;

    std::optional<SNMPOid> oid_;
    SNMPSyntax syntax_ = SNMPSyntax::Null;
    std::uint64_t number_ = 0; ///< of Integer: sign-extended
    std::string text_;         ///< printable octets, identifiers and addresses
    std::string octets_;       ///< octets that are not printable
    bool binary_ = false;      ///< the octets are in octets_
};

} // namespace mirovane
