#pragma once

#include "platform/Descriptor.h"
#include "probes/snmp/transport/SNMPEntity.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace mirovane {

/// One UDP socket for each address family. Neither sending nor reading a datagram ever blocks. Any thread may
/// send; one thread receives.
class SNMPSockets {
public:
    using Handler = std::function<void(const SNMPEntity&, std::span<const std::uint8_t>)>;

    /// False when no IPv4 socket can be opened; errno says why. A computer without IPv6 has one socket.
    bool open();

    /// False when the system refuses: no room to send, no socket of that family, no route, too long.
    bool send(const SNMPEntity& destination, std::span<const std::uint8_t> message) const;

    /// Hands out what arrives, until stop().
    void receive(const Handler& handler);
    void stop();

private:
    void take(int socket, const Handler& handler);

    CDescriptor ipv4_;
    CDescriptor ipv6_;
    CDescriptor stop_;
    std::vector<std::uint8_t> datagram_; ///< the receiving thread's
};

} // namespace mirovane
