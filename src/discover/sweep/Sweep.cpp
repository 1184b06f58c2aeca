#include "discover/sweep/Sweep.h"

#include "platform/BlockedSignals.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <utility>

namespace mirovane {

CSweep::CSweep(CSweepPlan plan, const SweepOptions& options, SweepProbes& probes, const Clock& clock)
    : run_(std::move(plan), options, probes, clock), clock_(clock), progress_(run_.progress()) {
    try {
        const CBlockedSignals noSignals;
        thread_ = std::jthread([this](const std::stop_token& stop) { work(stop); });
    } catch (const std::system_error& error) {
        progress_.phase = SweepPhase::Over;
        progress_.failed = progress_.total;
        progress_.failure = error.code().value();
    }
}

CSweep::~CSweep() = default;

void CSweep::stop() {
    thread_.request_stop();
    if (thread_.joinable())
        thread_.join();
    const std::lock_guard lock(mutex_);
    progress_.phase = SweepPhase::Over;
}

bool CSweep::over() const {
    return progress().phase == SweepPhase::Over;
}

SweepProgress CSweep::progress() const {
    const std::lock_guard lock(mutex_);
    return progress_;
}

std::vector<FoundHost> CSweep::takeNews() {
    const std::lock_guard lock(mutex_);
    return std::exchange(news_, {});
}

void CSweep::work(const std::stop_token& stop) {
    while (!stop.stop_requested()) {
        const auto next = run_.goOn();
        publish();
        if (!next)
            return;
        std::unique_lock lock(mutex_);
        stopped_.wait_for(lock, stop, *next - clock_.monotonic(), [] { return false; });
    }
}

void CSweep::publish() {
    std::vector<FoundHost> news = run_.takeNews();
    const std::lock_guard lock(mutex_);
    progress_ = run_.progress();
    std::move(news.begin(), news.end(), std::back_inserter(news_));
}

} // namespace mirovane
