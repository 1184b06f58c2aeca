// Discover Now: how close a sweep stays to its pace, and how long a silent network takes.

#include "bench/support/PairedRounds.h"
#include "discover/sweep/Sweep.h"
#include "probes/SystemSweepProbes.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/TunHosts.h"

#include <cstdio>
#include <set>
#include <string>
#include <thread>

using namespace mirovane;

namespace {

constexpr std::size_t rounds = 9;

/// Every host has a name, at once: the figures are about probing, not about this computer's name server.
class InstantNames final : public NameService {
public:
    LookedUp<std::uint32_t> addressOf(const std::string&) override { return {}; }
    LookedUp<std::string> nameOf(std::uint32_t) override { return {ProbeAnswer::yes(), "host.example"}; }
};

struct Outcome {
    double milliseconds = 0;
    std::size_t found = 0;
    std::size_t named = 0;
    std::size_t twice = 0;
};

Outcome sweep(SweepProbes& network, const CSweepPlan& plan, int perSecond) {
    const CSystemClock clock;
    Outcome outcome;
    std::set<std::uint32_t> found;
    std::set<std::uint32_t> named;
    outcome.milliseconds = bench::millisecondsOf([&] {
        SweepOptions options;
        options.perSecond = perSecond;
        CSweep run(plan, options, network, clock);
        const auto take = [&] {
            for (const FoundHost& host : run.takeNews())
                outcome.twice += (host.name.empty() ? found : named).insert(host.address).second ? 0 : 1;
        };
        while (!run.over()) {
            take();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        take();
    });
    outcome.found = found.size();
    outcome.named = named.size();
    return outcome;
}

void countRow(const std::string& what, std::size_t count, std::size_t of) {
    std::printf("%-4s | %-44s | %12zu | %12zu | %7s | %7d | %s\n", "N1", what.c_str(), count, of, "-", 0,
                count == 0 ? "ok" : "MISSED");
}

/// Against the moment at which the last probe is planned to leave.
void atItsPace(SweepProbes& network) {
    constexpr int perSecond = 10'000;
    const CSweepPlan plan({makeRange("127.8.0.0", "127.8.15.255").value()}, {});
    std::size_t missed = 0;
    std::size_t twice = 0;
    const auto ours = [&] {
        const Outcome outcome = sweep(network, plan, perSecond);
        missed += plan.toProbe() - outcome.found + plan.toProbe() - outcome.named;
        twice += outcome.twice;
        return outcome.milliseconds;
    };
    const auto paced = [&] {
        return static_cast<double>(plan.toProbe() - 1) * 1000 / perSecond;
    };
    bench::printRow("N1", "/20 of loopback at 10,000 a second, against pace",
                    bench::measurePaired(ours, paced, rounds), 1.2);
    countRow("missed or not named", missed, (rounds + 1) * plan.toProbe());
    countRow("found twice", twice, (rounds + 1) * plan.toProbe());
}

void silentNetwork(SweepProbes& network) {
    const CSweepPlan plan({makeRange("10.77.1.1", "10.77.1.254").value()}, {});
    const auto ours = [&] {
        return sweep(network, plan, usualSweepRate).milliseconds;
    };
    const auto limit = [] {
        return 6000.0;
    };
    bench::printRow("N2", "silent /24 at the usual pace, against 6 s",
                    bench::measurePaired(ours, limit, rounds), 1.0);
}

} // namespace

int main() {
    const OwnNetwork own;
    if (own.refused()) {
        std::printf("left out: %s\n", own.refused()->c_str());
        return 0;
    }
    CSystemHostProbes hosts(std::make_unique<CIcmpEngine>(),
                            std::make_unique<CResolver>(std::make_shared<InstantNames>()));
    CSystemSweepProbes network(hosts);
    if (const auto reason = network.echoUnusable()) {
        std::printf("%s\n", reason->c_str());
        return 1;
    }
    bench::printHeader();
    atItsPace(network);
    TunHosts silent([](TunHosts&, const TunHosts::Bytes&) {});
    if (silent.refused())
        std::printf("N2 left out: %s\n", silent.refused()->c_str());
    else
        silentNetwork(network);
    return 0;
}
