#pragma once

#include "tests/support/OwnNetwork.h"

#include <queue>

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <functional>
#include <linux/if_tun.h>
#include <linux/sockios.h>
#include <poll.h>
#include <string>
#include <sys/eventfd.h>
#include <thread>
#include <vector>

namespace mirovane {

/// A network of hosts that do what a test wants: every address of 10.77.0.0/16 but 10.77.0.1, which is this
/// computer's. They live behind a TUN device in the calling thread's network namespace (make an OwnNetwork
/// first); one thread reads what is sent to them and passes each echo request to the script. Packets are
/// whole IPv4 packets.
class TunHosts {
public:
    using Bytes = std::vector<std::uint8_t>;
    using Delay = std::chrono::microseconds;
    using Script = std::function<void(TunHosts&, const Bytes& request)>;

    explicit TunHosts(Script script) : script_(std::move(script)) {
        device_ = ::open("/dev/net/tun", O_RDWR | O_CLOEXEC | O_NONBLOCK);
        ifreq request = OwnNetwork::named("hosts0");
        request.ifr_flags = IFF_TUN | IFF_NO_PI;
        if (device_ < 0 || ::ioctl(device_, TUNSETIFF, &request) != 0) {
            refused_ = std::string("no TUN device: ") + std::strerror(errno);
            return;
        }
        setAddress(SIOCSIFADDR, "10.77.0.1");
        setAddress(SIOCSIFNETMASK, "255.255.0.0");
        request.ifr_qlen = 65536; // the device drops in silence what does not fit
        OwnNetwork::onSocket(SIOCSIFTXQLEN, request);
        OwnNetwork::raise("hosts0");
        leave_ = ::eventfd(0, EFD_CLOEXEC);
        thread_ = std::thread([this] { run(); });
    }
    ~TunHosts() {
        if (thread_.joinable()) {
            const std::uint64_t one = 1;
            [[maybe_unused]] const auto written = ::write(leave_, &one, sizeof one);
            thread_.join();
        }
        ::close(leave_);
        ::close(device_);
    }
    TunHosts(const TunHosts&) = delete;
    TunHosts& operator=(const TunHosts&) = delete;

    const std::optional<std::string>& refused() const { return refused_; }
    unsigned requests() const { return requests_; }

    /// The reply that an honest host gives.
    static Bytes replyTo(const Bytes& request) {
        Bytes reply = request;
        std::swap_ranges(reply.begin() + 12, reply.begin() + 16, reply.begin() + 16);
        reply[8] = 64;
        reply[20] = 0;
        return reply;
    }

    /// An ICMP error that quotes the request, from the host with the last two parts given.
    static Bytes errorFor(const Bytes& request, std::uint8_t type, std::uint8_t code, std::uint8_t third,
                          std::uint8_t fourth) {
        Bytes packet(28);
        std::copy_n(request.begin(), 20, packet.begin());
        std::copy_n(request.begin() + 12, 4, packet.begin() + 16);
        const std::array<std::uint8_t, 4> router{10, 77, third, fourth};
        std::copy(router.begin(), router.end(), packet.begin() + 12);
        packet[8] = 64;
        packet[20] = type;
        packet[21] = code;
        packet.insert(packet.end(), request.begin(), request.begin() + 28);
        return packet;
    }

    /// Corrects lengths and checksums and sends. From the script only.
    void send(Bytes packet, Delay delay = Delay(0)) {
        const auto length = static_cast<std::uint16_t>(packet.size());
        packet[2] = static_cast<std::uint8_t>(length >> 8);
        packet[3] = static_cast<std::uint8_t>(length & 0xff);
        putSum(packet, 0, 20, 10);
        putSum(packet, 20, packet.size(), 22);
        later_.push({Clock::now() + delay, next_++, std::move(packet)});
    }

    static std::uint8_t ttlOf(const Bytes& packet) { return packet[8]; }
    static std::uint8_t lastPartOfTarget(const Bytes& packet) { return packet[19]; }
    static std::uint16_t sequenceOf(const Bytes& packet) {
        return static_cast<std::uint16_t>(packet[26] << 8 | packet[27]);
    }

private:
    using Clock = std::chrono::steady_clock;
    struct Later {
        Clock::time_point at;
        std::uint64_t order;
        Bytes packet;
        bool operator<(const Later& other) const {
            return at != other.at ? at > other.at : order > other.order;
        }
    };

    static void setAddress(unsigned long command, const char* text) {
        ifreq request = OwnNetwork::named("hosts0");
        sockaddr_in address{};
        address.sin_family = AF_INET;
        inet_pton(AF_INET, text, &address.sin_addr);
        std::memcpy(&request.ifr_addr, &address, sizeof address);
        OwnNetwork::onSocket(command, request);
    }

    static void putSum(Bytes& packet, std::size_t from, std::size_t to, std::size_t at) {
        packet[at] = packet[at + 1] = 0;
        std::uint32_t sum = 0;
        for (std::size_t i = from; i < to; ++i)
            sum += (i - from) % 2 == 0 ? static_cast<std::uint32_t>(packet[i]) << 8 : packet[i];
        sum = (sum & 0xffff) + (sum >> 16);
        sum = (sum & 0xffff) + (sum >> 16);
        packet[at] = static_cast<std::uint8_t>(~sum >> 8);
        packet[at + 1] = static_cast<std::uint8_t>(~sum);
    }

    void run() {
        std::array<pollfd, 2> watched{{{device_, POLLIN, 0}, {leave_, POLLIN, 0}}};
        while (watched[1].revents == 0) {
            timespec pause{};
            if (!later_.empty()) {
                const auto left = std::max(later_.top().at - Clock::now(), Clock::duration::zero());
                pause.tv_sec = std::chrono::duration_cast<std::chrono::seconds>(left).count();
                pause.tv_nsec = (left % std::chrono::seconds(1)).count();
            }
            ::ppoll(watched.data(), watched.size(), later_.empty() ? nullptr : &pause, nullptr);
            readRequests();
            while (!later_.empty() && later_.top().at <= Clock::now()) {
                const Bytes& packet = later_.top().packet;
                [[maybe_unused]] const auto written = ::write(device_, packet.data(), packet.size());
                later_.pop();
            }
        }
    }

    void readRequests() {
        Bytes packet(2048);
        // A few at a time, so that replies which are due do not wait for a long burst to end.
        for (int i = 0; i < 64; ++i) {
            const auto size = ::read(device_, packet.data(), packet.size());
            if (size <= 0)
                return;
            if (size >= 28 && packet[0] == 0x45 && packet[9] == IPPROTO_ICMP && packet[20] == 8) {
                ++requests_;
                script_(*this, Bytes(packet.begin(), packet.begin() + size));
            }
        }
    }

    Script script_;
    int device_ = -1;
    int leave_ = -1;
    std::optional<std::string> refused_;
    std::atomic<unsigned> requests_{0};
    std::priority_queue<Later> later_;
    std::uint64_t next_ = 0;
    std::thread thread_;
};

} // namespace mirovane
