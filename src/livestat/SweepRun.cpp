#include "livestat/SweepRun.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <mutex>
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

constexpr int mostAttempts = 5;

/// Look-ups at once while the name system does not answer: those that hang occupy threads of the resolver.
constexpr std::size_t lookUpsWhileSilent = 2;

bool temporary(int error) {
    return error == EAGAIN || error == ENOBUFS || error == ENOMEM;
}

} // namespace

struct SweepRun::NameAnswer {
    std::size_t host = 0; ///< index in found_
    std::uint64_t round = 0;
    std::optional<std::string> name;
};

/// Where callbacks of other threads leave their results.
class SweepRun::Inbox {
public:
    void put(const EchoResult& echo) {
        const std::lock_guard lock(mutex_);
        if (!closed_)
            echoes_.push_back(echo);
    }
    void put(NameAnswer answer) {
        const std::lock_guard lock(mutex_);
        if (!closed_)
            names_.push_back(std::move(answer));
    }
    void take(std::vector<EchoResult>& echoes, std::vector<NameAnswer>& names) {
        const std::lock_guard lock(mutex_);
        echoes.swap(echoes_);
        names.swap(names_);
    }
    void close() {
        const std::lock_guard lock(mutex_);
        closed_ = true;
        echoes_ = {};
        names_ = {};
    }

private:
    std::mutex mutex_;
    std::vector<EchoResult> echoes_;
    std::vector<NameAnswer> names_;
    bool closed_ = false;
};

SweepRun::SweepRun(SweepPlan plan, const SweepOptions& options, SweepProbes& probes, const Clock& clock)
    : plan_(std::move(plan)),
      options_(options),
      probes_(probes),
      clock_(clock),
      inbox_(std::make_shared<Inbox>()),
      cursor_(plan_),
      pace_(options.perSecond, clock.monotonic()),
      lastSent_(clock.monotonic()) {
    progress_.total = plan_.toProbe();
    hasNext_ = progress_.total > 0;
    progress_.left = expectedLeft(lastSent_);
}

SweepRun::~SweepRun() {
    inbox_->close();
}

std::optional<SweepRun::Time> SweepRun::goOn() {
    const Time now = clock_.monotonic();
    collect(now);
    if (progress_.phase == SweepPhase::Sending)
        send(now);
    startLookUps(now);
    updatePhase(now);
    progress_.left = expectedLeft(now);
    if (progress_.phase == SweepPhase::Over)
        return std::nullopt;
    const Time soonest = now + shortestPause;
    const Time look = now + lookAgain;
    const bool sending = progress_.phase == SweepPhase::Sending && !allSent() && inFlight_ < mostInFlight;
    return sending ? std::max(soonest, std::min(pace_.plannedNext(), look)) : look;
}

std::vector<FoundHost> SweepRun::takeNews() {
    return std::exchange(news_, {});
}

void SweepRun::collect(Time now) {
    std::vector<EchoResult> echoes;
    std::vector<NameAnswer> names;
    inbox_->take(echoes, names);
    for (const EchoResult& echo : echoes)
        takeEcho(echo);
    for (const NameAnswer& answer : names)
        takeName(answer, now);
}

void SweepRun::takeEcho(const EchoResult& echo) {
    --inFlight_;
    const std::uint32_t address = ntohl(echo.target);
    const bool tryAgain = echo.kind == EchoKind::SendFailed && temporary(echo.systemError);
    if (tryAgain) {
        retryOrFail(address, echo.systemError);
        return;
    }
    if (!attempts_.empty())
        attempts_.erase(address);
    ++progress_.ended;
    if (echo.kind == EchoKind::SendFailed || echo.kind == EchoKind::NotPermitted ||
        echo.kind == EchoKind::Stopped) {
        ++progress_.failed;
        if (progress_.failure == 0)
            progress_.failure = echo.systemError;
    }
    if (!echo.answered() || progress_.full)
        return;
    found_.push_back(address);
    news_.push_back({address, {}});
    progress_.found = found_.size();
    progress_.full = found_.size() >= options_.mostFound;
}

void SweepRun::retryOrFail(std::uint32_t address, int error) {
    int& attempts = attempts_[address];
    if (++attempts < mostAttempts) {
        retries_.push_back(address);
        --progress_.sent;
        return;
    }
    attempts_.erase(address);
    ++progress_.ended;
    ++progress_.failed;
    if (progress_.failure == 0)
        progress_.failure = error;
}

/// Addresses that come again go first: so there are never more of them than were in flight.
std::optional<std::uint32_t> SweepRun::nextAddress() {
    if (!retries_.empty()) {
        const std::uint32_t address = retries_.front();
        retries_.pop_front();
        return address;
    }
    const auto address = hasNext_ ? cursor_.next() : std::nullopt;
    hasNext_ = address.has_value();
    return address;
}

void SweepRun::send(Time now) {
    std::uint64_t due = progress_.full ? 0 : pace_.due(now);
    due = std::min(due, mostInFlight - std::min(mostInFlight, inFlight_));
    while (due > 0 && !allSent()) {
        batch_.clear();
        while (batch_.size() < std::min<std::uint64_t>(due, mostPerBatch)) {
            const auto address = nextAddress();
            if (!address)
                break;
            batch_.push_back(htonl(*address));
        }
        pace_.left(batch_.size());
        due -= batch_.size();
        inFlight_ += batch_.size();
        progress_.sent += batch_.size();
        lastSent_ = now;
        probes_.startEchoes(batch_, options_.echo,
                            [inbox = inbox_](const EchoResult& echo) { inbox->put(echo); });
        hasNext_ = hasNext_ && progress_.sent + retries_.size() < progress_.total;
    }
}

void SweepRun::startLookUps(Time now) {
    if (lookUps_ > 0 && now - nameNews_ >= namePatience)
        giveUpLookUps();
    while (lookUps_ < lookUpLimit_ && named_ < found_.size()) {
        if (lookUps_++ == 0)
            nameNews_ = now;
        probes_.startNameLookUp(htonl(found_[named_]), [inbox = inbox_, host = named_, round = lookUpRound_](
                                                           std::optional<std::string> name) {
            inbox->put(NameAnswer{host, round, std::move(name)});
        });
        ++named_;
    }
}

void SweepRun::takeName(const NameAnswer& answer, Time now) {
    nameNews_ = now;
    lookUpLimit_ = mostLookUps;
    ++progress_.lookedUp;
    if (answer.round == lookUpRound_)
        --lookUps_;
    if (answer.name && !answer.name->empty())
        news_.push_back({found_[answer.host], *answer.name});
}

void SweepRun::giveUpLookUps() {
    ++lookUpRound_;
    lookUps_ = 0;
    lookUpLimit_ = lookUpsWhileSilent;
    if (progress_.phase == SweepPhase::Naming)
        named_ = found_.size();
}

std::chrono::milliseconds SweepRun::expectedLeft(Time now) const {
    const std::chrono::milliseconds timeout(options_.echo.timeoutMs);
    if (!allSent() && !progress_.full) {
        const std::uint64_t unsent = progress_.total - progress_.sent;
        const auto rate =
            static_cast<std::uint64_t>(std::clamp(options_.perSecond, leastSweepRate, mostSweepRate));
        return std::chrono::milliseconds(unsent * 1000 / rate) + timeout;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(lastSent_ + timeout - now);
    return inFlight_ > 0 ? std::max(left, std::chrono::milliseconds(0)) : std::chrono::milliseconds(0);
}

void SweepRun::updatePhase(Time now) {
    if (progress_.phase == SweepPhase::Sending && (allSent() || progress_.full))
        progress_.phase = SweepPhase::Waiting;
    if (progress_.phase == SweepPhase::Waiting && !progress_.full && !allSent())
        progress_.phase = SweepPhase::Sending; // a request could not leave and comes again
    if (progress_.phase == SweepPhase::Waiting && (inFlight_ == 0 || progress_.full)) {
        progress_.phase = SweepPhase::Naming;
        namingSince_ = now;
    }
    if (progress_.phase != SweepPhase::Naming)
        return;
    const bool named = lookUps_ == 0 && named_ == found_.size();
    if (named || now - namingSince_ >= mostNaming)
        progress_.phase = SweepPhase::Over;
}

} // namespace mirovane
