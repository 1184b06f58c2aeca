#pragma once

#include "probes/Descriptor.h"
#include "probes/SnmpPeer.h"

#include <functional>
#include <span>

namespace mirovane {

/// One UDP socket for each address family and a way to end who reads them. Any thread may send; one thread
/// reads.
class SnmpSockets {
public:
    using Handler = std::function<void(const SnmpPeer&, std::span<const std::uint8_t>)>;

    /// False when there is no IPv4 socket to be had; errno says why. A computer without IPv6 has one socket.
    bool open();

    /// False when the system refuses: no socket of that family, no route, too long.
    bool send(const SnmpPeer& peer, std::span<const std::uint8_t> message);

    /// Hands out what arrives until stop().
    void receive(const Handler& handler);
    void stop();

private:
    Descriptor ipv4_;
    Descriptor ipv6_;
    Descriptor wake_;
};

} // namespace mirovane
