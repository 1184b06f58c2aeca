// SNMP: many workers and one after the other against a real agent, and a thousand silent hosts.

#include "bench/support/PairedRounds.h"
#include "probes/SNMPProbe.h"
#include "probes/names/Resolver.h"
#include "probes/snmp/transport/SNMPUdpTransport.h"
#include "tests/support/SNMPDaemon.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <latch>
#include <string>
#include <thread>
#include <vector>

using namespace mirovane;
using test::LoopbackSocket;

namespace {

constexpr std::size_t rounds = 11;
const std::string upTime = "1.3.6.1.2.1.1.3.0";

[[noreturn]] void giveUp(const char* what) {
    std::printf("%s\n", what);
    std::exit(1);
}

/// The layer under test, started.
struct Layer {
    Layer() { manager.Startup(); }

    SNMPUdpTransport transport;
    CResolver resolver;
    SNMPManager manager{transport, resolver};
    CSystemSNMPProbe probe{manager};
};

void queryFromWorkers(Layer& layer, std::uint16_t port, std::size_t workers, std::size_t queries) {
    std::atomic<std::size_t> next{0};
    std::atomic<std::size_t> answered{0};
    std::vector<std::jthread> threads;
    for (std::size_t worker = 0; worker < workers; ++worker) {
        threads.emplace_back([&] {
            while (next++ < queries) {
                const SNMPAnswer answer =
                    layer.probe.SnmpGet({"127.0.0.1", "public", upTime, port, snmpTimeoutMs}, {});
                answered += answer.hasValue() ? 1 : 0;
            }
        });
    }
    threads.clear();
    if (answered != queries)
        giveUp("a query of ours was lost");
}

/// Sends the same packet `exchanges` times, never more than `window` without an answer.
void exchangeRaw(std::uint16_t port, std::size_t window, std::size_t exchanges) {
    const LoopbackSocket socket;
    const sockaddr_in agent = LoopbackSocket::loopback(port);
    if (::connect(socket.descriptor(), reinterpret_cast<const sockaddr*>(&agent), sizeof agent) != 0)
        giveUp("no connected socket");
    constexpr timeval limit{5, 0};
    ::setsockopt(socket.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    const SNMPBytes packet = test::snmpGetOfUpTime("public", 4711);
    const auto send = [&] {
        return ::send(socket.descriptor(), packet.data(), packet.size(), 0) > 0;
    };
    std::size_t sent = 0;
    std::array<char, 2048> answer{};
    while (sent < std::min(window, exchanges) && send())
        ++sent;
    for (std::size_t received = 0; received < exchanges; ++received) {
        if (::recv(socket.descriptor(), answer.data(), answer.size(), 0) <= 0)
            giveUp("a packet of the raw exchange was lost");
        if (sent < exchanges && send())
            ++sent;
    }
}

void workersRow(std::uint16_t port) {
    constexpr std::size_t queries = 6000;
    Layer layer;
    bench::printRow("S1", "30 workers, against raw with 100 outstanding",
                    bench::measurePaired([&] { queryFromWorkers(layer, port, 30, queries); },
                                         [&] { exchangeRaw(port, 100, queries); }, rounds),
                    1.4);
}

void oneByOneRow(std::uint16_t port) {
    constexpr std::size_t queries = 3000;
    Layer layer;
    bench::printRow("S2", "one after the other, against raw",
                    bench::measurePaired([&] { queryFromWorkers(layer, port, 1, queries); },
                                         [&] { exchangeRaw(port, 1, queries); }, rounds),
                    1.5);
}

/// Hosts that never answer what they were asked: each gives what it gets back as the answer of its
/// neighbour, with the right id and community from the wrong address.
class Liars {
public:
    Liars() {
        const std::uint16_t port = LoopbackSocket().port();
        for (int host = 1; host <= count; ++host) {
            addresses_.push_back("127.2.0." + std::to_string(host));
            sockets_.emplace_back(addresses_.back().c_str(), port);
            if (!sockets_.back().bound())
                giveUp("no loopback addresses for silent hosts");
        }
        port_ = port;
        thread_ = std::jthread([this](const std::stop_token& stop) { answer(stop); });
    }

    const std::string& address(std::size_t number) const { return addresses_[number % addresses_.size()]; }
    std::uint16_t port() const { return port_; }

private:
    static constexpr int count = 50;
    static constexpr std::size_t typeAt = 13; ///< behind the version and the community "public"

    void answer(const std::stop_token& stop) {
        std::vector<pollfd> waits;
        for (const LoopbackSocket& socket : sockets_)
            waits.push_back({socket.descriptor(), POLLIN, 0});
        while (!stop.stop_requested()) {
            ::poll(waits.data(), waits.size(), 50);
            for (std::size_t host = 0; host < waits.size(); ++host) {
                sockaddr_in asker{};
                auto packet = waits[host].revents != 0 ? sockets_[host].receive(0, &asker)
                                                       : std::optional<std::string>();
                if (packet) {
                    packet->at(typeAt) = static_cast<char>(SNMPPduType::Response);
                    sockets_[(host + 1) % sockets_.size()].sendTo(asker, *packet);
                }
            }
        }
    }

    std::vector<LoopbackSocket> sockets_;
    std::vector<std::string> addresses_;
    std::uint16_t port_ = 0;
    std::jthread thread_;
};

void silentRow() {
    constexpr std::size_t queries = 1000;
    const Liars hosts;
    Layer layer;
    std::atomic<std::size_t> wrong{0};
    const auto ours = [&] {
        std::latch ready(queries + 1);
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < queries; ++i)
            threads.emplace_back([&, i] {
                const SNMPQuery query{hosts.address(i), "public", upTime, hosts.port(), snmpTimeoutMs};
                ready.arrive_and_wait();
                wrong += layer.probe.SnmpGet(query, {}).kind != SNMPAnswer::Kind::TimedOut ? 1 : 0;
            });
        return bench::millisecondsOf([&] {
            ready.arrive_and_wait();
            threads.clear();
        });
    };
    const auto timeout = [] {
        return static_cast<double>(snmpTimeoutMs);
    };
    bench::printRow("S4", "1,000 silent hosts at once, against the time-out",
                    bench::measurePaired(ours, timeout, 9), 1.1);
    std::printf("S4   | answers to the wrong request: %zu of %zu\n", wrong.load(), 10 * queries);
}

bool wanted(int argc, char** argv, const char* name) {
    return argc < 2 ||
           std::any_of(
               argv + 1, argv + argc, [name](const char* a) { return std::strcmp(a, name) == 0; });
}

} // namespace

/// Usage: SnmpBench [S1] [S2] [S4]
int main(int argc, char** argv) {
    const test::SNMPDaemon daemon;
    if (daemon.refused())
        giveUp(daemon.refused()->c_str());
    bench::printHeader();
    if (wanted(argc, argv, "S1"))
        workersRow(daemon.port());
    if (wanted(argc, argv, "S2"))
        oneByOneRow(daemon.port());
    if (wanted(argc, argv, "S4"))
        silentRow();
    return 0;
}
