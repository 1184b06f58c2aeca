#include "discover/sweep/DiscoverNow.h"

#include "discover/sweep/HostAdder.h"

#include <algorithm>
#include <utility>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds pollPeriod{100};

} // namespace

CDiscoverNow::CDiscoverNow(const FeatureServices& services, CFeatureOwnership& ownership, SweepProbes& probes,
                           DiscoverNowHost& host)
    : document_(services.document),
      log_(services.log),
      clock_(services.clock),
      probes_(probes),
      host_(host),
      claim_(ownership),
      timer_(services.timers.makeTimer([this] { tick(); })) {}

CDiscoverNow::~CDiscoverNow() = default;

std::optional<StartRefusal> CDiscoverNow::start(int perSecond) {
    using Kind = StartRefusal::Kind;
    if (running())
        return StartRefusal{Kind::RunsAlready, "Discover Now runs already."};
    if (const auto plan = planSweep(document_); !plan)
        return plan.error();
    if (const auto reason = probes_.echoUnusable())
        return StartRefusal{Kind::NoEcho, *reason};
    if (auto refusal = claim_.join())
        return refusal;
    auto plan = planSweep(document_); // anew: while the question was open the file may have been read again
    if (!plan) {
        claim_.letGo();
        return plan.error();
    }
    if (!timer_->start(pollPeriod)) {
        claim_.letGo();
        return StartRefusal{Kind::NoTimer, std::string(outOfTimersText)};
    }
    begin(std::move(plan.value()), perSecond);
    return std::nullopt;
}

void CDiscoverNow::begin(CSweepPlan plan, int perSecond) {
    SweepOptions options;
    options.perSecond = perSecond;
    options.mostFound = Datafile::maxRecords - std::min(Datafile::maxRecords, document_.size());
    found_ = {};
    result_.reset();
    log_.LogMessage("Discover Now: asking " + counted(plan.toProbe(), "address", "addresses") + ".", true);
    sweep_ = std::make_unique<CSweep>(std::move(plan), options, probes_, clock_);
    progress_ = sweep_->progress();
    phase_ = Phase::Sweeping;
    for (DiscoverNowObserver* observer : observers_)
        observer->sweepBegan();
}

void CDiscoverNow::end(Found found) {
    if (running())
        endAs(found == Found::Keep ? Phase::EndedKeeping : Phase::EndedDiscarding);
}

void CDiscoverNow::endAs(Phase how) {
    if (phase_ == Phase::Sweeping)
        phase_ = how;
    sweep_->stop();
    if (!host_.holdsStill())
        finish();
}

void CDiscoverNow::endNow() {
    if (!running())
        return;
    if (phase_ == Phase::Sweeping)
        phase_ = Phase::EndedKeeping;
    finish();
}

/// A sweep that has ended needs no owner record any more, and nobody is asked about it.
void CDiscoverNow::afterReload() {
    if (phase_ == Phase::Sweeping && !claim_.keep())
        endAs(Phase::EndedByOther);
}

void CDiscoverNow::tick() {
    if (!running())
        return;
    takeNews();
    if ((phase_ != Phase::Sweeping || sweep_->over()) && !host_.holdsStill())
        finish();
}

void CDiscoverNow::takeNews() {
    progress_ = sweep_->progress();
    const std::vector<std::size_t> changed = found_.take(sweep_->takeNews());
    progress_.found = found().size();
    for (DiscoverNowObserver* observer : observers_)
        observer->sweepProgressed(changed);
}

void CDiscoverNow::finish() {
    timer_->stop();
    sweep_->stop();
    takeNews();
    SweepResult result;
    result.progress = progress_;
    result.complete = phase_ == Phase::Sweeping && !progress_.full;
    result.kept = phase_ != Phase::EndedDiscarding;
    result.takenOver = phase_ == Phase::EndedByOther;
    sweep_.reset(); // before questions that a save may lead to
    phase_ = Phase::Idle;
    if (result.kept && !found().empty())
        addFound(result);
    else
        claim_.letGo();
    log_.LogMessage("Discover Now: " + describeResult(result), true);
    result_ = std::move(result);
    if (!result_->added.empty())
        host_.hostsDiscovered(result_->added.size());
    for (DiscoverNowObserver* observer : observers_)
        observer->sweepEnded();
}

void CDiscoverNow::addFound(SweepResult& result) {
    std::vector<FoundHost> hosts = found();
    std::sort(hosts.begin(), hosts.end(),
              [](const FoundHost& a, const FoundHost& b) { return a.address < b.address; });
    CHostAdder adder(document_, result);
    for (int i = 0; i < saveTries; ++i) {
        host_.recordEdit("Discover Now", [&] { adder.add(hosts); });
        claim_.letGoUnsaved();
        const SaveResult saved = host_.saveNow(SaveNote::DiscoverNow);
        result.saveFailed = saved != SaveResult::Saved;
        if (saved != SaveResult::Reloaded)
            break;
    }
    adder.followNumbers();
}

} // namespace mirovane
