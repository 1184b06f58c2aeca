#include "probes/SnmpSockets.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <vector>

namespace mirovane {

namespace {

constexpr std::size_t longestDatagram = 65536;
constexpr unsigned batch = 16; ///< datagrams taken with one call

/// The system's default holds a few hundred small datagrams, fewer than may be outstanding.
void enlargeBuffer(int socket) {
    constexpr int wanted = 8 << 20;
    if (::setsockopt(socket, SOL_SOCKET, SO_RCVBUFFORCE, &wanted, sizeof wanted) != 0) {
        ::setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &wanted, sizeof wanted);
    }
}

Descriptor openSocket(int family) {
    Descriptor socket(::socket(family, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!socket) {
        return socket;
    }
    enlargeBuffer(socket.get());
    sockaddr_storage any{};
    any.ss_family = static_cast<sa_family_t>(family);
    const socklen_t length = family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
    if (family == AF_INET6) {
        constexpr int on = 1;
        ::setsockopt(socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
    }
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&any), length) != 0) {
        return {};
    }
    return socket;
}

} // namespace

/// Buffers for one call's datagrams, used again for the next.
class SnmpSockets::Batch {
public:
    Batch() {
        for (unsigned i = 0; i < batch; ++i) {
            parts_[i] = {bytes_.data() + i * longestDatagram, longestDatagram};
        }
    }

    /// Hands out what is there, up to a batch, without waiting.
    void take(int socket, const SnmpSockets::Handler& handler) {
        for (unsigned i = 0; i < batch; ++i) {
            headers_[i] = {};
            headers_[i].msg_hdr.msg_name = &peers_[i];
            headers_[i].msg_hdr.msg_namelen = sizeof peers_[i];
            headers_[i].msg_hdr.msg_iov = &parts_[i];
            headers_[i].msg_hdr.msg_iovlen = 1;
        }
        const int count = ::recvmmsg(socket, headers_.data(), batch, MSG_DONTWAIT, nullptr);
        for (int i = 0; i < count; ++i) {
            const auto index = static_cast<std::size_t>(i);
            handler(SnmpPeer(peers_[index], headers_[index].msg_hdr.msg_namelen),
                    {bytes_.data() + index * longestDatagram, headers_[index].msg_len});
        }
    }

private:
    std::vector<std::uint8_t> bytes_ = std::vector<std::uint8_t>(batch * longestDatagram);
    std::array<sockaddr_storage, batch> peers_{};
    std::array<iovec, batch> parts_{};
    std::array<mmsghdr, batch> headers_{};
};

SnmpSockets::SnmpSockets() : batch_(std::make_unique<Batch>()) {}

SnmpSockets::~SnmpSockets() = default;

bool SnmpSockets::open() {
    wake_ = Descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!wake_) {
        return false;
    }
    ipv4_ = openSocket(AF_INET);
    const int reason = errno;
    ipv6_ = openSocket(AF_INET6);
    errno = reason;
    return static_cast<bool>(ipv4_);
}

bool SnmpSockets::send(const SnmpPeer& peer, std::span<const std::uint8_t> message) {
    const int socket = peer.family() == AF_INET6 ? ipv6_.get() : ipv4_.get();
    ssize_t sent = -1;
    do {
        sent = ::sendto(socket, message.data(), message.size(), MSG_NOSIGNAL, peer.address(), peer.length());
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(message.size());
}

void SnmpSockets::read(std::chrono::milliseconds timeout, const Handler& handler) {
    std::array<pollfd, 3> waits{
        {{wake_.get(), POLLIN, 0}, {ipv4_.get(), POLLIN, 0}, {ipv6_.get(), POLLIN, 0}}};
    if (::poll(waits.data(), waits.size(), static_cast<int>(timeout.count())) <= 0) {
        return;
    }
    if (waits[0].revents != 0) {
        std::uint64_t calls = 0;
        [[maybe_unused]] const ssize_t taken = ::read(wake_.get(), &calls, sizeof calls);
    }
    for (std::size_t i = 1; i < waits.size(); ++i) {
        if (waits[i].revents != 0) {
            batch_->take(waits[i].fd, handler);
        }
    }
}

void SnmpSockets::wake() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(wake_.get(), &one, sizeof one);
}

} // namespace mirovane
