#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <sys/socket.h>

namespace mirovane {

constexpr std::uint16_t snmpDefaultPort = 161;

/// The address and port of an agent, IPv4 or IPv6. A value.
class SNMPEntity {
public:
    SNMPEntity() = default;

    /// As the system filled it in.
    SNMPEntity(const sockaddr_storage& address, socklen_t length) : address_(address), length_(length) {}

    /// A dotted IPv4 address or an IPv6 address in its text form (with its zone: "fe80::1%eth0"), port 161.
    /// Nothing for a name and for the two "no address" addresses, which the system would take for itself.
    static std::optional<SNMPEntity> parse(const std::string& text);

    void setPort(std::uint16_t port);

    int family() const { return address_.ss_family; }
    const sockaddr* address() const { return reinterpret_cast<const sockaddr*>(&address_); }
    socklen_t length() const { return length_; }

    /// Address, zone and port.
    friend bool operator==(const SNMPEntity& a, const SNMPEntity& b);

private:
    sockaddr_storage address_{};
    socklen_t length_ = 0;
};

} // namespace mirovane
