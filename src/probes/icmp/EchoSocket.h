#pragma once

#include "probes/icmp/EchoPacket.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace mirovane {

/// One request as it goes onto the wire.
struct EchoRequest {
    std::uint32_t address = 0; ///< network byte order
    std::uint16_t sequence = 0;
    std::uint8_t ttl = 0;
    std::uint8_t payloadSize = 0;
    std::uint64_t token = 0; ///< see echoTokenSize
};

/// A message that concerns one of our own requests (the identifier is checked already).
struct EchoArrival {
    EchoMessage message;
    std::chrono::steady_clock::time_point at; ///< when the kernel received it
};

/// The one socket of an engine. The engine's thread alone sends and receives; no call blocks.
class EchoSocket {
public:
    virtual ~EchoSocket() = default;

    /// For people: which kind of socket this is.
    virtual std::string kind() const = 0;

    /// How many replies it holds until they are read; those that come when it is full are lost.
    virtual std::size_t receiveCapacity() const = 0;

    /// What to poll for arrivals.
    virtual int descriptor() const = 0;

    /// Sends from the front and returns how many went out. When not all did, `error` is the errno of the
    /// first that did not: EAGAIN and ENOBUFS mean "later", everything else belongs to that one request.
    virtual std::size_t send(std::span<const EchoRequest> requests, int& error) = 0;

    /// Appends a batch of what has arrived. False when nothing is left to read.
    virtual bool receive(std::vector<EchoArrival>& arrivals) = 0;
};

/// The largest number of requests that one send() passes to the kernel at once.
constexpr std::size_t echoBatch = 64;

struct EchoSocketOpening {
    std::unique_ptr<EchoSocket> socket; ///< null when echoes can't be sent
    std::string reason;                 ///< then why, and what to do about it, in one line
};

using EchoSocketOpener = std::function<EchoSocketOpening()>;

/// A datagram socket where the system allows this user one, else a raw socket.
EchoSocketOpening openEchoSocket();
EchoSocketOpening openDatagramEchoSocket();
EchoSocketOpening openRawEchoSocket();

} // namespace mirovane
