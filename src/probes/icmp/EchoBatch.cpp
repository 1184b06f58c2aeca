#include "probes/icmp/EchoBatch.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

namespace mirovane {

namespace {

/// With its error queue on, a socket reports an ICMP error for an earlier request once more, in place of the
/// result of the next call. Only what fails again and again is that call's own failure.
constexpr int attempts = 16;

constexpr int wantedBuffer = 64 * 1024 * 1024;

std::chrono::nanoseconds toNanoseconds(const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::chrono::nanoseconds wallTime() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return toNanoseconds(now);
}

} // namespace

void COutgoingEchoes::fill(std::size_t index, std::uint16_t identifier, const EchoRequest& request) {
    Part& part = parts_[index];
    part.to = sockaddr_in{};
    part.to.sin_family = AF_INET;
    part.to.sin_addr.s_addr = request.address;
    const auto bytes =
        buildEchoRequest(part.packet, identifier, request.sequence, request.payloadSize, request.token);
    part.bytes = iovec{part.packet.data(), bytes.size()};
    part.control = {};

    msghdr& header = messages_[index].msg_hdr;
    header = msghdr{};
    header.msg_name = &part.to;
    header.msg_namelen = sizeof part.to;
    header.msg_iov = &part.bytes;
    header.msg_iovlen = 1;
    header.msg_control = part.control.data();
    header.msg_controllen = controlSize;
    cmsghdr* control = CMSG_FIRSTHDR(&header);
    control->cmsg_level = IPPROTO_IP;
    control->cmsg_type = IP_TTL;
    control->cmsg_len = CMSG_LEN(sizeof(int));
    const int ttl = request.ttl;
    std::memcpy(CMSG_DATA(control), &ttl, sizeof ttl);
}

std::size_t COutgoingEchoes::send(int descriptor, std::uint16_t identifier,
                                  std::span<const EchoRequest> requests, int& error) {
    const std::size_t count = std::min(requests.size(), echoBatch);
    for (std::size_t i = 0; i < count; ++i)
        fill(i, identifier, requests[i]);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const int sent = ::sendmmsg(descriptor, messages_.data(), static_cast<unsigned>(count), MSG_DONTWAIT);
        if (sent > 0)
            return static_cast<std::size_t>(sent);
        error = errno;
        if (error == EAGAIN || error == ENOBUFS)
            break;
    }
    return 0;
}

CIncomingEchoes::CIncomingEchoes() {
    messages_ = {};
    for (std::size_t i = 0; i < echoBatch; ++i) {
        parts_[i].bytes = iovec{parts_[i].packet.data(), packetSize};
        msghdr& header = messages_[i].msg_hdr;
        header.msg_name = &parts_[i].from;
        header.msg_iov = &parts_[i].bytes;
        header.msg_iovlen = 1;
        header.msg_control = parts_[i].control.data();
    }
}

void CIncomingEchoes::prepare() {
    for (std::size_t i = 0; i < toPrepare_; ++i) {
        messages_[i].msg_hdr.msg_namelen = sizeof(sockaddr_in);
        messages_[i].msg_hdr.msg_controllen = sizeof parts_[i].control;
        messages_[i].msg_hdr.msg_flags = 0;
        parts_[i].from = {};
    }
    toPrepare_ = 0;
}

std::size_t CIncomingEchoes::receive(int descriptor, int flags) {
    prepare();
    for (int attempt = 0; attempt < attempts; ++attempt) {
        const int received =
            ::recvmmsg(descriptor, messages_.data(), echoBatch, MSG_DONTWAIT | flags, nullptr);
        if (received > 0) {
            toPrepare_ = static_cast<std::size_t>(received);
            readClocks();
            return toPrepare_;
        }
        if (received == 0 || errno == EAGAIN)
            return 0;
    }
    return 0;
}

/// Both clocks at one moment: a thread that is put aside between the two readings reads them again.
void CIncomingEchoes::readClocks() {
    constexpr int tries = 4;
    constexpr std::chrono::microseconds near{20};
    for (int i = 0; i < tries; ++i) {
        const auto before = std::chrono::steady_clock::now();
        wallNow_ = wallTime();
        now_ = std::chrono::steady_clock::now();
        if (now_ - before < near)
            return;
    }
}

std::span<const std::byte> CIncomingEchoes::bytes(std::size_t index) const {
    return {parts_[index].packet.data(), std::min<std::size_t>(messages_[index].msg_len, packetSize)};
}

std::uint32_t CIncomingEchoes::address(std::size_t index) const {
    return parts_[index].from.sin_addr.s_addr;
}

std::chrono::steady_clock::time_point CIncomingEchoes::arrival(std::size_t index) {
    msghdr& header = messages_[index].msg_hdr;
    for (cmsghdr* control = CMSG_FIRSTHDR(&header); control != nullptr;
         control = CMSG_NXTHDR(&header, control)) {
        if (control->cmsg_level != SOL_SOCKET || control->cmsg_type != SCM_TIMESTAMPNS)
            continue;
        timespec stamp{};
        std::memcpy(&stamp, CMSG_DATA(control), sizeof stamp);
        // The stamp is wall time. An age that can't be means that the computer's clock was set meanwhile.
        const auto age = wallNow_ - toNanoseconds(stamp);
        if (age > std::chrono::nanoseconds(0) && age < std::chrono::seconds(1))
            return now_ - std::chrono::duration_cast<std::chrono::steady_clock::duration>(age);
    }
    return now_;
}

bool prepareEchoSocket(int descriptor) {
    const int on = 1;
    const int mayFragment = IP_PMTUDISC_DONT; // no header flag is set on our requests
    if (::setsockopt(descriptor, IPPROTO_IP, IP_MTU_DISCOVER, &mayFragment, sizeof mayFragment) != 0 ||
        ::setsockopt(descriptor, IPPROTO_IP, IP_RECVERR, &on, sizeof on) != 0 ||
        ::setsockopt(descriptor, SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on) != 0)
        return false;
    const auto enlarge = [descriptor](int forced, int plain) {
        if (::setsockopt(descriptor, SOL_SOCKET, forced, &wantedBuffer, sizeof wantedBuffer) != 0)
            ::setsockopt(descriptor, SOL_SOCKET, plain, &wantedBuffer, sizeof wantedBuffer);
    };
    enlarge(SO_RCVBUFFORCE, SO_RCVBUF);
    enlarge(SO_SNDBUFFORCE, SO_SNDBUF);
    return true;
}

std::size_t repliesThatFit(int descriptor) {
    constexpr int kernelMemoryOfShortPacket = 2304; // as network cards deliver it; loopback takes a third
    int bytes = 0;
    socklen_t length = sizeof bytes;
    if (::getsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &bytes, &length) != 0)
        return 1;
    return static_cast<std::size_t>(std::max(bytes / kernelMemoryOfShortPacket, 1));
}

} // namespace mirovane
