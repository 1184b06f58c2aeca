#pragma once

#include "probes/Descriptor.h"
#include "probes/SnmpPeer.h"

#include <chrono>
#include <functional>
#include <memory>
#include <span>

namespace mirovane {

/// One UDP socket for each address family. Any thread may send; one thread at a time reads.
class SnmpSockets {
public:
    using Handler = std::function<void(const SnmpPeer&, std::span<const std::uint8_t>)>;

    /// False when there is no IPv4 socket to be had; errno says why. A computer without IPv6 has one socket.
    bool open();

    /// False when the system refuses: no socket of that family, no route, too long.
    bool send(const SnmpPeer& peer, std::span<const std::uint8_t> message);

    /// Waits for something to arrive and hands it out: once, or not at all when the time is up or wake() was
    /// called. A negative time-out never ends.
    void read(std::chrono::milliseconds timeout, const Handler& handler);

    /// Ends the read() that runs, or the next one.
    void wake();

    SnmpSockets();
    ~SnmpSockets();

private:
    class Batch;

    const std::unique_ptr<Batch> batch_; ///< the reader's
    Descriptor ipv4_;
    Descriptor ipv6_;
    Descriptor wake_;
};

} // namespace mirovane
