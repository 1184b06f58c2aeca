// Echo engine: lost replies, sweep speed against fping, many callers at once, silent hosts.

#include "bench/support/PairedRounds.h"
#include "probes/SystemHostProbes.h"
#include "probes/names/HostAddress.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/TunHosts.h"

#include <algorithm>
#include <arpa/inet.h>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <latch>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace mirovane;

namespace {

using Addresses = std::vector<std::uint32_t>;

constexpr std::size_t rounds = 9;

/// `count` addresses from `first` on, without those that end in 0 or 255.
Addresses addressesFrom(const char* first, std::size_t count) {
    Addresses addresses;
    for (std::uint32_t next = ntohl(*parseDottedAddress(first)); addresses.size() < count; ++next)
        if ((next & 0xff) != 0 && (next & 0xff) != 0xff)
            addresses.push_back(htonl(next));
    return addresses;
}

/// A row that counts what must not happen.
void countRow(const char* name, const std::string& what, std::size_t count, std::size_t of,
              std::size_t goal) {
    std::printf("%-4s | %-44s | %12zu | %12zu | %7s | %7zu | %s\n", name, what.c_str(), count, of, "-", goal,
                count == goal ? "ok" : "MISSED");
    std::fflush(stdout);
}

/// Keeps `window` probes in flight until all addresses are done; returns how many answered.
std::size_t probeWindow(CIcmpEngine& engine, const Addresses& addresses, std::size_t window) {
    std::atomic<std::size_t> next{window};
    std::atomic<std::size_t> answered{0};
    std::latch done(static_cast<std::ptrdiff_t>(addresses.size()));
    EchoCallback callback = [&](const EchoResult& result) {
        answered += result.answered() ? 1 : 0;
        if (const std::size_t mine = next++; mine < addresses.size())
            engine.start(addresses[mine], {}, callback);
        done.count_down();
    };
    engine.startAll(std::span(addresses).first(std::min(window, addresses.size())), {}, callback);
    done.wait();
    return answered;
}

std::size_t sweep(CIcmpEngine& engine, const Addresses& addresses, std::uint32_t timeoutMs) {
    std::size_t answered = 0; // callbacks come from one thread
    std::latch done(static_cast<std::ptrdiff_t>(addresses.size()));
    EchoOptions options;
    options.timeoutMs = timeoutMs;
    engine.startAll(addresses, options, [&](const EchoResult& result) {
        answered += result.answered() ? 1 : 0;
        done.count_down();
    });
    done.wait();
    return answered;
}

void lostReplies(const std::string& what, const Addresses& addresses) {
    std::size_t lost = 0;
    for (int run = 0; run < 5; ++run) {
        CIcmpEngine engine;
        lost += addresses.size() - probeWindow(engine, addresses, 1000);
    }
    countRow("I1", what, lost, 5 * addresses.size(), 0);
}

void sweepAgainstFping(std::size_t count) {
    const Addresses addresses = addressesFrom("127.1.0.1", count);
    const auto list = std::filesystem::temp_directory_path() / ("hosts-" + std::to_string(::getpid()));
    {
        std::ofstream file(list);
        for (const std::uint32_t address : addresses)
            file << formatAddress(address) << '\n';
    }
    const std::string command = "fping -q -i 0 -r 0 -t 500 < " + list.string() + " > /dev/null 2>&1";
    const auto ours = [&] {
        CIcmpEngine engine;
        if (const auto answered = sweep(engine, addresses, 500); answered != addresses.size()) {
            std::printf("lost %zu replies of %zu\n", addresses.size() - answered, addresses.size());
            std::exit(1);
        }
    };
    const auto other = [&] {
        if (const int status = std::system(command.c_str()); status != 0) {
            std::printf("fping ended with status %d\n", status);
            std::exit(1);
        }
    };
    bench::printRow("I2", "sweep of " + std::to_string(count) + " addresses, against fping",
                    bench::measurePaired(ours, other, rounds), 0.8);
    std::filesystem::remove(list);
}

std::size_t openSockets() {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        count += std::filesystem::read_symlink(entry, gone).string().starts_with("socket:") ? 1 : 0;
    }
    return count;
}

struct CallersRun {
    double milliseconds = 0;
    std::size_t lost = 0;
    std::size_t sockets = 0;
};

/// `callers` threads call PingHost for all addresses between them.
CallersRun callersRun(const Addresses& addresses, std::size_t callers) {
    CSystemHostProbes probes;
    std::vector<std::string> targets;
    std::transform(addresses.begin(), addresses.end(), std::back_inserter(targets), formatAddress);
    std::atomic<std::size_t> next{0};
    std::atomic<std::size_t> answered{0};
    std::latch ready(static_cast<std::ptrdiff_t>(callers) + 1);
    std::vector<std::jthread> threads;
    const std::size_t socketsBefore = openSockets();
    for (std::size_t i = 0; i < callers; ++i) {
        threads.emplace_back([&] {
            ready.arrive_and_wait();
            for (std::size_t mine = next++; mine < targets.size(); mine = next++) {
                PingReply reply;
                std::optional<std::uint32_t> resolved;
                answered += probes.PingHost(targets[mine], reply, resolved, 10, 5000, 32, {}).isYes() ? 1 : 0;
            }
        });
    }
    CallersRun result;
    result.milliseconds = bench::millisecondsOf([&] {
        ready.arrive_and_wait();
        while (answered == 0)
            std::this_thread::yield();
        result.sockets = openSockets() - socketsBefore;
        threads.clear();
    });
    result.lost = addresses.size() - answered;
    return result;
}

void callersAtOnce(const Addresses& addresses) {
    std::size_t lost = 0;
    std::size_t sockets = 0;
    const auto with = [&](std::size_t callers) {
        return [&, callers] {
            const CallersRun run = callersRun(addresses, callers);
            lost += run.lost;
            sockets = std::max(sockets, run.sockets);
            return run.milliseconds;
        };
    };
    bench::printRow("I3", "1,000 callers, 5 ms, against 100 callers",
                    bench::measurePaired(with(1000), with(100), rounds), 1.0);
    countRow("I3", "sockets while 1,000 callers wait", sockets, 1000, 1);
    countRow("I3", "replies lost", lost, 2 * (rounds + 1) * addresses.size(), 0);
}

/// Every other host is silent.
void halfSilent(const Addresses& addresses) {
    constexpr std::uint32_t timeoutMs = 1000;
    const auto living = static_cast<std::size_t>(std::count_if(
        addresses.begin(), addresses.end(), [](std::uint32_t a) { return (ntohl(a) & 1) == 0; }));
    std::size_t wrong = 0;
    const auto ours = [&] {
        CIcmpEngine engine;
        const std::size_t answered = sweep(engine, addresses, timeoutMs);
        wrong += living > answered ? living - answered : answered - living;
    };
    const auto timeout = [] {
        return static_cast<double>(timeoutMs);
    };
    bench::printRow("I5", "half of 4,094 silent, against the time-out",
                    bench::measurePaired(ours, timeout, rounds), 1.05);
    countRow("I5", "wrong answers", wrong, (rounds + 1) * addresses.size(), 0);
}

void answerAfter5ms(TunHosts& hosts, const TunHosts::Bytes& request) {
    hosts.send(TunHosts::replyTo(request), std::chrono::milliseconds(5));
}

void answerWhenEven(TunHosts& hosts, const TunHosts::Bytes& request) {
    if (TunHosts::lastPartOfTarget(request) % 2 == 0)
        hosts.send(TunHosts::replyTo(request));
}

bool wanted(int argc, char** argv, const char* name) {
    return argc < 2 ||
           std::any_of(
               argv + 1, argv + argc, [name](const char* a) { return std::strcmp(a, name) == 0; });
}

void overDelayedNetwork(int argc, char** argv) {
    OwnNetwork network;
    if (network.refused()) {
        std::printf("I1 (5 ms), I3 and I5 left out: %s\n", network.refused()->c_str());
        return;
    }
    const Addresses addresses = addressesFrom("10.77.1.1", 4094);
    if (wanted(argc, argv, "I1") || wanted(argc, argv, "I3")) {
        TunHosts hosts(answerAfter5ms);
        if (hosts.refused()) {
            std::printf("I1 (5 ms), I3 and I5 left out: %s\n", hosts.refused()->c_str());
            return;
        }
        if (wanted(argc, argv, "I1"))
            lostReplies("lost, 1,000 in flight, 5 ms, five runs", addresses);
        if (wanted(argc, argv, "I3"))
            callersAtOnce(addresses);
    }
    if (wanted(argc, argv, "I5")) {
        TunHosts hosts(answerWhenEven);
        halfSilent(addresses);
    }
}

} // namespace

/// Usage: IcmpBench [I1] [I2] [I3] [I5]
int main(int argc, char** argv) {
    { // gone before the measuring: every raw socket costs every packet a copy
        CIcmpEngine engine;
        if (const auto reason = engine.unusable()) {
            std::printf("%s\n", reason->c_str());
            return 1;
        }
        std::printf("%s\n", engine.socketKind().c_str());
    }
    bench::printHeader();
    if (wanted(argc, argv, "I1"))
        lostReplies("lost, 1,000 in flight, loopback, five runs", addressesFrom("127.1.0.1", 4094));
    if (wanted(argc, argv, "I2")) {
        sweepAgainstFping(4094);
        sweepAgainstFping(65534);
    }
    overDelayedNetwork(argc, argv);
    return 0;
}
