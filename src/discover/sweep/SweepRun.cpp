#include "discover/sweep/SweepRun.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <iterator>
#include <utility>

namespace mirovane {

namespace {

/// Probes that are due within this time leave together: fewer system calls, and nobody sees the difference.
constexpr std::chrono::milliseconds shortestPause{1};

/// How late the last reply or a name may be noticed.
constexpr std::chrono::milliseconds lookAgain{5};

constexpr std::size_t mostPerBatch = 64;

/// Fewer than the sequence numbers of the engine, so that Live Stat's pings go on beside a sweep.
constexpr std::uint64_t mostInFlight = 60'000;

bool temporary(const EchoResult& echo) {
    const int error = echo.systemError;
    return echo.kind == EchoKind::SendFailed && (error == EAGAIN || error == ENOBUFS || error == ENOMEM);
}

bool couldNotAsk(EchoKind kind) {
    return kind == EchoKind::SendFailed || kind == EchoKind::NotPermitted || kind == EchoKind::Stopped;
}

} // namespace

CSweepRun::CSweepRun(CSweepPlan plan, const SweepOptions& options, SweepProbes& probes, const Clock& clock)
    : plan_(std::move(plan)),
      options_(options),
      probes_(probes),
      clock_(clock),
      inbox_(std::make_shared<CInbox<EchoResult>>()),
      queue_(plan_),
      pace_(options.perSecond, clock.monotonic()),
      begun_(clock.monotonic()),
      names_(probes),
      lastSent_(clock.monotonic()) {
    progress_.total = plan_.toProbe();
    progress_.left = expectedLeft(lastSent_);
}

CSweepRun::~CSweepRun() {
    inbox_->close();
}

std::optional<CSweepRun::Time> CSweepRun::goOn() {
    const Time now = clock_.monotonic();
    collect(now);
    if (progress_.phase == SweepPhase::Sending)
        send(now);
    names_.goOn(now, progress_.phase != SweepPhase::Naming);
    updatePhase(now);
    progress_.left = expectedLeft(now);
    progress_.unanswered = window_.unanswered();
    if (progress_.phase == SweepPhase::Over)
        return std::nullopt;
    const Time soonest = now + shortestPause;
    const Time look = now + lookAgain;
    const bool sending =
        progress_.phase == SweepPhase::Sending && !queue_.empty() && inFlight_ < mostInFlight;
    return sending ? std::max(soonest, std::min(pace_.plannedNext(), look)) : look;
}

std::vector<FoundHost> CSweepRun::takeNews() {
    return std::exchange(news_, {});
}

void CSweepRun::collect(Time now) {
    for (const EchoResult& echo : inbox_->take())
        takeEcho(echo);
    auto named = names_.take(now);
    std::move(named.begin(), named.end(), std::back_inserter(news_));
    progress_.lookedUp = names_.answered();
}

void CSweepRun::takeEcho(const EchoResult& echo) {
    --inFlight_;
    const std::uint32_t address = ntohl(echo.target);
    window_.ended(address);
    if (temporary(echo)) {
        if (queue_.tryAgain(address)) {
            --progress_.sent;
            return;
        }
    } else {
        queue_.done(address);
    }
    ++progress_.ended;
    if (couldNotAsk(echo.kind))
        countFailure(echo.systemError);
    if (!echo.answered() || progress_.full)
        return;
    names_.add(address);
    news_.push_back({address, {}});
    ++progress_.found;
    progress_.full = progress_.found >= options_.mostFound;
}

void CSweepRun::countFailure(int error) {
    ++progress_.failed;
    if (progress_.failure == 0)
        progress_.failure = error;
}

void CSweepRun::send(Time now) {
    std::uint64_t due = progress_.full ? 0 : pace_.due(now);
    due = std::min({due, window_.room(now), mostInFlight - std::min(mostInFlight, inFlight_)});
    std::vector<std::uint32_t> batch;
    while (due > 0 && !queue_.empty()) {
        batch.clear();
        while (batch.size() < std::min<std::uint64_t>(due, mostPerBatch)) {
            const auto address = queue_.next();
            if (!address)
                break;
            batch.push_back(htonl(*address));
            window_.left(*address, now);
        }
        pace_.left(batch.size());
        due -= batch.size();
        inFlight_ += batch.size();
        progress_.sent += batch.size();
        lastSent_ = now;
        probes_.startEchoes(batch, options_.echo,
                            [inbox = inbox_](const EchoResult& echo) { inbox->put(echo); });
    }
}

std::chrono::milliseconds CSweepRun::expectedLeft(Time now) const {
    const std::chrono::milliseconds timeout(options_.echo.timeoutMs);
    if (!queue_.empty() && !progress_.full) {
        const std::uint64_t unsent = progress_.total - progress_.sent;
        return std::chrono::milliseconds(
                   static_cast<std::int64_t>(static_cast<double>(unsent) * 1000 / expectedPace(now))) +
               timeout;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(lastSent_ + timeout - now);
    return inFlight_ > 0 ? std::max(left, std::chrono::milliseconds(0)) : std::chrono::milliseconds(0);
}

/// What it was so far. In the first second nothing has timed out yet.
double CSweepRun::expectedPace(Time now) const {
    const double wanted = std::clamp(options_.perSecond, leastSweepRate, mostSweepRate);
    const double seconds = std::chrono::duration<double>(now - begun_).count();
    if (seconds < 1)
        return wanted;
    const double reached = static_cast<double>(progress_.sent) / seconds;
    return std::clamp(reached, std::min(wanted, CSweepWindow::slowestPerSecond), wanted);
}

void CSweepRun::updatePhase(Time now) {
    const bool allSent = queue_.empty();
    if (progress_.phase == SweepPhase::Sending && (allSent || progress_.full))
        progress_.phase = SweepPhase::Waiting;
    if (progress_.phase == SweepPhase::Waiting && !progress_.full && !allSent)
        progress_.phase = SweepPhase::Sending; // a request could not leave and comes again
    if (progress_.phase == SweepPhase::Waiting && (inFlight_ == 0 || progress_.full)) {
        progress_.phase = SweepPhase::Naming;
        namingSince_ = now;
    }
    if (progress_.phase != SweepPhase::Naming)
        return;
    if (names_.done() || now - namingSince_ >= mostNaming)
        progress_.phase = SweepPhase::Over;
}

} // namespace mirovane
