#include "probes/snmp/transport/SNMPSockets.h"

#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

namespace mirovane {

namespace {

constexpr std::size_t longestDatagram = 65536;

/// The system's defaults hold a few hundred small datagrams, fewer than may be outstanding: replies would be
/// lost, and requests to hosts whose hardware address is still being looked up would leave no room for
/// others.
void enlargeBuffers(int socket) {
    constexpr int wanted = 8 << 20;
    if (::setsockopt(socket, SOL_SOCKET, SO_RCVBUFFORCE, &wanted, sizeof wanted) != 0)
        ::setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &wanted, sizeof wanted);
    if (::setsockopt(socket, SOL_SOCKET, SO_SNDBUFFORCE, &wanted, sizeof wanted) != 0)
        ::setsockopt(socket, SOL_SOCKET, SO_SNDBUF, &wanted, sizeof wanted);
}

CDescriptor openSocket(int family) {
    CDescriptor socket(::socket(family, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket)
        return socket;
    enlargeBuffers(socket.get());
    sockaddr_storage any{};
    any.ss_family = static_cast<sa_family_t>(family);
    const socklen_t length = family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
    if (family == AF_INET6) {
        constexpr int on = 1;
        ::setsockopt(socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
    }
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&any), length) != 0)
        return {};
    return socket;
}

} // namespace

bool SNMPSockets::open() {
    datagram_.resize(longestDatagram);
    stop_ = CDescriptor(::eventfd(0, EFD_CLOEXEC));
    if (!stop_)
        return false;
    ipv4_ = openSocket(AF_INET);
    const int reason = errno;
    ipv6_ = openSocket(AF_INET6);
    errno = reason;
    return static_cast<bool>(ipv4_);
}

bool SNMPSockets::send(const SNMPEntity& destination, std::span<const std::uint8_t> message) const {
    const int socket = destination.family() == AF_INET6 ? ipv6_.get() : ipv4_.get();
    ssize_t sent = -1;
    do {
        sent = ::sendto(socket, message.data(), message.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
                        destination.address(), destination.length());
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(message.size());
}

void SNMPSockets::receive(const Handler& handler) {
    std::array<pollfd, 3> waits{
        {{stop_.get(), POLLIN, 0}, {ipv4_.get(), POLLIN, 0}, {ipv6_.get(), POLLIN, 0}}};
    while (waits[0].revents == 0) {
        if (::poll(waits.data(), waits.size(), -1) <= 0)
            continue;
        for (std::size_t i = 1; i < waits.size(); ++i)
            if (waits[i].revents != 0)
                take(waits[i].fd, handler);
    }
}

void SNMPSockets::take(int socket, const Handler& handler) {
    sockaddr_storage from{};
    socklen_t length = sizeof from;
    const ssize_t size = ::recvfrom(socket, datagram_.data(), datagram_.size(), MSG_DONTWAIT,
                                    reinterpret_cast<sockaddr*>(&from), &length);
    if (size >= 0)
        handler(SNMPEntity(from, length), {datagram_.data(), static_cast<std::size_t>(size)});
}

void SNMPSockets::stop() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(stop_.get(), &one, sizeof one);
}

} // namespace mirovane
