#pragma once

#include "probes/icmp/EchoSocket.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <memory>
#include <netinet/in.h>
#include <span>
#include <sys/socket.h>

namespace mirovane {

/// Sends up to echoBatch requests with one system call, each with its own time-to-live.
class COutgoingEchoes {
public:
    COutgoingEchoes() = default;
    COutgoingEchoes(const COutgoingEchoes&) = delete; // its parts point at one another
    COutgoingEchoes& operator=(const COutgoingEchoes&) = delete;

    /// Returns how many went out; 0 with `error` set when the first one did not.
    std::size_t send(int descriptor, std::uint16_t identifier, std::span<const EchoRequest> requests,
                     int& error);

private:
    static constexpr std::size_t controlSize = CMSG_SPACE(sizeof(int));
    struct Part {
        sockaddr_in to;
        iovec bytes;
        std::array<std::byte, longestEcho> packet;
        alignas(cmsghdr) std::array<std::byte, controlSize> control;
    };

    void fill(std::size_t index, std::uint16_t identifier, const EchoRequest& request);

    std::array<Part, echoBatch> parts_{};
    std::array<mmsghdr, echoBatch> messages_{};
};

/// Receives up to echoBatch messages with one system call, with the moment at which the kernel got each.
class CIncomingEchoes {
public:
    CIncomingEchoes();
    CIncomingEchoes(const CIncomingEchoes&) = delete;
    CIncomingEchoes& operator=(const CIncomingEchoes&) = delete;

    /// How many were received, 0 for none; `flags` may be MSG_ERRQUEUE.
    std::size_t receive(int descriptor, int flags);

    std::span<const std::byte> bytes(std::size_t index) const;
    std::uint32_t address(std::size_t index) const;
    std::chrono::steady_clock::time_point arrival(std::size_t index);
    msghdr& header(std::size_t index) { return messages_[index].msg_hdr; }

private:
    static constexpr std::size_t packetSize = 2048;
    struct Part {
        sockaddr_in from;
        iovec bytes;
        std::array<std::byte, packetSize> packet;
        alignas(cmsghdr) std::array<std::byte, 256> control;
    };

    void prepare();
    void readClocks();

    std::array<Part, echoBatch> parts_;
    std::array<mmsghdr, echoBatch> messages_;
    std::size_t toPrepare_ = echoBatch;
    std::chrono::steady_clock::time_point now_;
    std::chrono::nanoseconds wallNow_{0};
};

/// Sets the options that both kinds of socket need. Time stamps. The error queue, without which the kernel
/// would drop a request that finds the network device's queue full and call that a success. Large buffers
/// both ways: a sweep's answers arrive in bursts, and requests that wait for a silent neighbour's hardware
/// address keep their place in the send buffer for seconds. False with errno set when an option is refused;
/// buffers stay as large as the system allows.
bool prepareEchoSocket(int descriptor);

/// How many short packets fit into the receive buffer.
std::size_t repliesThatFit(int descriptor);

} // namespace mirovane
