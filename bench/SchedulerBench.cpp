#include "bench/support/PairedRounds.h"
#include "livestat/schedule/Scheduler.h"
#include "platform/WorkerPool.h"
#include "tests/support/NewFloor.h"

#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

// Row L1: what one tick of the scheduler costs the main thread, with 1,000 job slots on a list of 65,000
// devices and on one of 650. The probes answer at once, the steps run on real threads; only the tick itself
// is measured, not the wait for the worker that it started.

namespace mirovane {

namespace {

constexpr int slots = 1000;
constexpr double goalMicroseconds = 50;

class ManualTimers final : public TimerFactory {
public:
    std::unique_ptr<Timer> makeTimer(std::function<void()> onTick) override {
        tick = std::move(onTick);
        return std::make_unique<ManualTimer>();
    }
    std::function<void()> tick;

private:
    class ManualTimer final : public Timer {
    public:
        bool start(std::chrono::milliseconds) override { return active_ = true; }
        void stop() override { active_ = false; }
        bool active() const override { return active_; }

    private:
        bool active_ = false;
    };
};

/// Every host lives but each seventh, in turn, so that states keep changing.
class QuickProbes final : public HostProbes, public SNMPProbe, public RegistryProbes {
public:
    ProbeAnswer PingHost(const std::string&, PingReply&, std::optional<std::uint32_t>&, std::uint8_t,
                         std::uint32_t, std::uint8_t, std::stop_token) override {
        return ++count_ % 7 != 0 ? ProbeAnswer::yes() : ProbeAnswer::no({});
    }
    ProbeAnswer ResolveHost(const std::string&, std::uint32_t&, std::string&, std::stop_token) override {
        return {};
    }
    std::optional<std::string> echoUnusable() override { return std::nullopt; }
    SNMPAnswer SnmpGet(const SNMPQuery&, std::stop_token) override { return {}; }
    ProbeAnswer ReadRegistryValue(const std::string&, const std::string&, std::string&,
                                  std::stop_token) override {
        return {};
    }
    ProbeAnswer LookUpLoggedOnUser(const std::string&, LoggedOnUser&, std::stop_token) override { return {}; }

private:
    std::atomic<unsigned> count_ = 0;
};

class QuietHost final : public LiveStatHost {
public:
    bool ask(const Question&) override { return true; }
    void failUser(const std::string& text) override { std::fprintf(stderr, "%s\n", text.c_str()); }
    bool holdsStill() const override { return false; }
    SaveResult saveNow(SaveNote) override { return SaveResult::Saved; }
    void changesPending() override {}
    void redraw() override {}
    void indicatorsChanged() override {}
    void track(std::int32_t) override {}
};

class Side {
public:
    explicit Side(int devices) {
        test::newFloor(doc_);
        for (int i = 0; i < devices; ++i)
            doc_.addDevice(i % 12 + 1, [i](CHardware& device) {
                device.Name = "host-" + std::to_string(i);
                device.IPAddress = "127.0." + std::to_string(i / 250) + "." + std::to_string(i % 250 + 1);
                device.ToJack = "A-" + std::to_string(i / 12);
            });
        LiveStatSettings settings;
        settings.LSNumPerRun = slots;
        const FeatureServices services{doc_, timers_, log_, clock_};
        scheduler_ = std::make_unique<CLiveStatScheduler>(services, StepProbes{probes_, probes_, probes_},
                                                          workers_, host_, settings);
        scheduler_->toggle();
    }

    /// Three whole runs; the ticks' costs in microseconds.
    std::vector<double> ticks() {
        std::vector<double> costs;
        for (int i = 0; i < 3 * (slots + 1); ++i) {
            costs.push_back(1000 * bench::millisecondsOf([this] { timers_.tick(); }));
            while (scheduler_->anyJobInProgress())
                std::this_thread::yield();
        }
        return costs;
    }
    double medianTick() { return bench::medianOf(ticks()); }
    double percentile99() {
        std::vector<double> costs = ticks();
        const auto at = costs.begin() + static_cast<std::ptrdiff_t>(costs.size() * 99 / 100);
        std::nth_element(costs.begin(), at, costs.end());
        return *at;
    }
    int loops() const { return scheduler_->loops(); }

private:
    CSystemClock clock_;
    CMessageLog log_{clock_};
    CMirovaneDoc doc_{clock_, log_, {"bench", "bench"}};
    QuickProbes probes_;
    QuietHost host_;
    CWorkerPool workers_{1};
    ManualTimers timers_;
    std::unique_ptr<CLiveStatScheduler> scheduler_;
};

} // namespace

} // namespace mirovane

int main() {
    using namespace mirovane;
    Side large(65'000 - 159);
    Side small(650);
    bench::printHeader();
    const auto median =
        bench::measurePaired([&] { return large.medianTick(); }, [&] { return small.medianTick(); });
    bench::printRow("L1", "tick, 1,000 slots: 65,000 / 650, median", median, 1.5, "us");
    const auto tail =
        bench::measurePaired([&] { return large.percentile99(); }, [&] { return small.percentile99(); });
    bench::printRow("L1", "the same, 99th percentile", tail, 2.0, "us");
    std::printf("L1   | own work of a tick at the median: %.1f us, goal %.0f us: %s (%d and %d loops)\n",
                median.oursMs, goalMicroseconds, median.oursMs <= goalMicroseconds ? "ok" : "MISSED",
                large.loops(), small.loops());
    return 0;
}
