#include "livestat/Sweep.h"

#include "probes/BlockedSignals.h"

#include <algorithm>
#include <iterator>
#include <system_error>

namespace mirovane {

CSweep::CSweep(SweepPlan plan, const SweepOptions& options, SweepProbes& probes, const Clock& clock)
    : run_(std::move(plan), options, probes, clock), clock_(clock), progress_(run_.progress()) {
    try {
        const BlockedSignals noSignals;
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

std::string describeFailures(const SweepProgress& progress) {
    if (progress.failed == 0)
        return {};
    std::string text =
        groupedNumber(progress.failed) +
        (progress.failed == 1 ? " address could not be asked" : " addresses could not be asked");
    if (progress.failure != 0)
        text += ": " + std::generic_category().message(progress.failure);
    return text + ".";
}

std::string describeDuration(std::chrono::milliseconds span) {
    const auto seconds = std::chrono::ceil<std::chrono::seconds>(span).count();
    const auto two = [](std::int64_t value) {
        return (value < 10 ? "0" : "") + std::to_string(value);
    };
    if (seconds < 60)
        return std::to_string(seconds) + " s";
    if (seconds < 3600)
        return std::to_string(seconds / 60) + ":" + two(seconds % 60) + " min";
    return std::to_string(seconds / 3600) + ":" + two(seconds / 60 % 60) + " h";
}

std::string groupedNumber(std::uint64_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3;)
        text.insert(at -= 3, ",");
    return text;
}

std::chrono::milliseconds sweepDuration(std::uint64_t probes, int perSecond, const EchoOptions& echo) {
    const auto rate = static_cast<std::uint64_t>(std::clamp(perSecond, leastSweepRate, mostSweepRate));
    return std::chrono::milliseconds(probes * 1000 / rate + echo.timeoutMs);
}

} // namespace mirovane
