#include "probes/snmp/transport/SNMPEntity.h"

#include "probes/names/HostAddress.h"

#include <arpa/inet.h>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>

namespace mirovane {

namespace {

template <typename Address>
Address as(const sockaddr_storage& storage) {
    Address address{};
    std::memcpy(&address, &storage, sizeof address);
    return address;
}

template <typename Address>
SNMPEntity entityOf(const Address& address) {
    sockaddr_storage storage{};
    std::memcpy(&storage, &address, sizeof address);
    return {storage, sizeof address};
}

std::optional<SNMPEntity> parseIPv6(const std::string& text) {
    addrinfo hints{};
    hints.ai_family = AF_INET6;
    hints.ai_flags = AI_NUMERICHOST;
    hints.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    if (text.find(':') == std::string::npos || getaddrinfo(text.c_str(), nullptr, &hints, &found) != 0)
        return std::nullopt;
    sockaddr_in6 address{};
    std::memcpy(&address, found->ai_addr, sizeof address);
    freeaddrinfo(found);
    if (IN6_IS_ADDR_UNSPECIFIED(&address.sin6_addr))
        return std::nullopt;
    return entityOf(address);
}

} // namespace

std::optional<SNMPEntity> SNMPEntity::parse(const std::string& text) {
    std::optional<SNMPEntity> entity;
    if (const auto dotted = parseDottedAddress(text)) {
        if (*dotted == INADDR_ANY)
            return std::nullopt;
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = *dotted;
        entity = entityOf(address);
    } else {
        entity = parseIPv6(text);
    }
    if (entity)
        entity->setPort(snmpDefaultPort);
    return entity;
}

void SNMPEntity::setPort(std::uint16_t port) {
    // The port is at the same place in both families.
    static_assert(offsetof(sockaddr_in, sin_port) == offsetof(sockaddr_in6, sin6_port));
    const in_port_t inNetworkOrder = htons(port);
    std::memcpy(reinterpret_cast<char*>(&address_) + offsetof(sockaddr_in, sin_port), &inNetworkOrder,
                sizeof inNetworkOrder);
}

bool operator==(const SNMPEntity& a, const SNMPEntity& b) {
    if (a.family() != b.family())
        return false;
    if (a.family() == AF_INET) {
        const auto left = as<sockaddr_in>(a.address_);
        const auto right = as<sockaddr_in>(b.address_);
        return left.sin_addr.s_addr == right.sin_addr.s_addr && left.sin_port == right.sin_port;
    }
    const auto left = as<sockaddr_in6>(a.address_);
    const auto right = as<sockaddr_in6>(b.address_);
    return IN6_ARE_ADDR_EQUAL(&left.sin6_addr, &right.sin6_addr) && left.sin6_port == right.sin6_port &&
           left.sin6_scope_id == right.sin6_scope_id;
}

} // namespace mirovane
