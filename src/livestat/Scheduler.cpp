#include "livestat/Scheduler.h"

#include "livestat/FeatureOwner.h"

#include <algorithm>
#include <utility>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds disablePeriod{300};
constexpr std::chrono::milliseconds waitSlice{10};
constexpr std::string_view outOfTimers = "System is out of timer resource!";

} // namespace

CLiveStatScheduler::CLiveStatScheduler(CMirovaneDoc& document, const StepProbes& probes, Workers& workers,
                                       TimerFactory& timers, LiveStatHost& host,
                                       const LiveStatSettings& settings)
    : document_(document),
      host_(host),
      probes_(probes),
      settings_(settings),
      jobs_(probes, workers),
      picker_(document, document.clock()),
      jacks_(document),
      timer_(timers.makeTimer([this] { tick(); })) {
    document_.addObserver(*this);
    picker_.setIncludeMisc(settings_.LSIncludeMisc);
    slots_.resize(wantedSlots());
    jobs_.setLimit(slots_.size());
}

CLiveStatScheduler::~CLiveStatScheduler() {
    document_.removeObserver(*this);
    timer_->stop();
    stopJobs();
    while (!jobs_.waitUntilIdle(waitSlice)) {
    }
}

std::size_t CLiveStatScheduler::wantedSlots() const {
    return static_cast<std::size_t>(std::clamp(settings_.LSNumPerRun, 0, LiveStatSettings::mostNumPerRun));
}

std::chrono::milliseconds CLiveStatScheduler::runPeriod() const {
    const std::chrono::seconds period{std::clamp(settings_.LSRunSec, 0, LiveStatSettings::mostRunSec)};
    return std::max<std::chrono::milliseconds>(period, std::chrono::milliseconds{1});
}

void CLiveStatScheduler::setStatusText(int count) {
    statusText_ = enabled_ ? "LIVE!:" + std::to_string(count) : std::string();
}

// ---- on and off

void CLiveStatScheduler::toggle() {
    if (enabled_)
        disable();
    else
        enable();
}

void CLiveStatScheduler::enable() {
    if (document_.deviceCount() == 0)
        return;
    // Proves before anything is written that the timer can be had; a datafile that names a station which then
    // does nothing would keep the others from running Live Stat.
    const bool wasActive = timer_->active();
    if (!wasActive && !timer_->start(runPeriod())) {
        host_.failUser(std::string(outOfTimers));
        return;
    }
    if (!FeatureOwner::takeOver(document_, Feature::LiveStat, host_)) {
        if (!wasActive)
            timer_->stop();
        return;
    }
    enabled_ = true;
    disabling_ = false;
    devicesThisRun_ = 0;
    slotCursor_.reset();
    picker_.startLoops();
    arm(runPeriod());
    reportProbeTroubles();
    host_.indicatorsChanged();
}

void CLiveStatScheduler::disable() {
    enabled_ = false;
    disabling_ = true;
    statusText_.clear();
    document_.log().LogMessage("Live Stat is being disabled, please wait...", true);
    endTracking();
    if (!nowActive_) {
        stopJobs();
        arm(disablePeriod);
    }
    host_.indicatorsChanged();
}

void CLiveStatScheduler::disableNow() {
    if (enabled_)
        disable();
    stopJobs();
    waitForJobs();
    collect();
    timer_->stop();
    if (disabling_)
        finishDisabling();
    else if (changed_)
        document_.setPendingChanges(true);
    freeAllSlots();
    if (std::exchange(nowActive_, false))
        clearLeftMarks(); // or the next selection would be checked together with what is left of this one
}

void CLiveStatScheduler::finishDisabling() {
    if (jobs_.anyInProgress()) {
        arm(disablePeriod);
        return;
    }
    freeAllSlots();
    if (changed_) // where another station owns Live Stat by now, the periodic save writes them
        document_.setPendingChanges(true);
    FeatureOwner::giveUp(document_, Feature::LiveStat, host_);
    timer_->stop();
    disabling_ = false;
    document_.log().LogMessage("Live Stat disabled", true);
    if (changed_)
        host_.redraw();
    changed_ = false;
    host_.indicatorsChanged();
}

/// The user left Live Stat to another station: nothing is released, the record names that one.
void CLiveStatScheduler::stopHere() {
    timer_->stop();
    stopJobs();
    freeAllSlots();
    enabled_ = false;
    statusText_.clear();
    document_.log().LogMessage("Live Stat disabled", true);
    endTracking();
    resume();
    host_.indicatorsChanged();
}

void CLiveStatScheduler::reset() {
    timer_->stop();
    stopJobs();
    freeAllSlots();
    enabled_ = disabling_ = nowActive_ = tracking_ = changed_ = false;
    devicesThisRun_ = 0;
    slotCursor_.reset();
    statusText_.clear();
    searchAgain_.clear();
    picker_.rewind();
    host_.indicatorsChanged();
}

void CLiveStatScheduler::afterReload() {
    rebind();
    if (!enabled_)
        return;
    if (document_.deviceCount() == 0) {
        disable();
    } else if (!FeatureOwner::isHere(document_, Feature::LiveStat)) {
        // Also when the record names nobody: the other station came and went while this one kept running.
        if (!FeatureOwner::takeOver(document_, Feature::LiveStat, host_))
            stopHere();
    }
}

void CLiveStatScheduler::rebind() {
    for (JobSlot& slot : slots_) {
        if (slot.recID && !document_.findDevice(*slot.recID))
            freeSlot(slot);
    }
}

/// A step that is under way comes back to the device that it was started for.
void CLiveStatScheduler::recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
    for (JobSlot& slot : slots_) {
        if (slot.recID == oldRecID)
            slot.recID = newRecID;
    }
}

void CLiveStatScheduler::stopJobs() {
    for (JobSlot& slot : slots_) {
        if (slot.job)
            slot.job->stop.request_stop();
    }
}

void CLiveStatScheduler::waitForJobs() {
    while (!jobs_.waitUntilIdle(waitSlice))
        host_.waiting();
}

void CLiveStatScheduler::resume() {
    if (enabled_ || nowActive_)
        arm(runPeriod());
    else if (disabling_)
        arm(disablePeriod);
}

/// Without echoes every device turns Off, without SNMP many a field is emptied; the user must know why.
void CLiveStatScheduler::reportProbeTroubles() {
    if (const auto trouble = probes_.hosts.echoUnusable())
        document_.log().LogMessage(*trouble, true);
    if (const auto trouble = probes_.snmp.snmpUnusable())
        document_.log().LogMessage(*trouble, true);
}

void CLiveStatScheduler::arm(std::chrono::milliseconds period) {
    if (!timer_->start(period))
        document_.log().LogMessage(outOfTimers, true);
}

// ---- Live Stat Now

void CLiveStatScheduler::performNow() {
    if (slots_.empty()) { // it would never come to an end, and Live Stat could not go off behind it
        document_.log().LogMessage(
            "Live Stat Now checks nothing: the number of devices to check per run is 0", true);
        return;
    }
    int count = 0;
    for (std::size_t i = 0; i < document_.size(); ++i) {
        const CHardware& record = document_.at(i);
        if (record.isDevice() && record.Selected != 0) {
            document_.setLSNowMark(record, true);
            ++count;
        }
    }
    if (count == 0)
        return;
    if (!enabled_ && !nowActive_) {
        if (!timer_->start(runPeriod())) {
            host_.failUser(std::string(outOfTimers));
            return;
        }
        devicesThisRun_ = 0;
        slotCursor_.reset();
        reportProbeTroubles();
    }
    document_.log().LogMessage("Processing Live Stat Now on " + std::to_string(count) +
                               " selected object(s)...");
    nowActive_ = true;
    setStatusText(count);
    host_.indicatorsChanged();
}

/// The cursor went once round the list and found no marked device that is free.
void CLiveStatScheduler::finishRound() {
    if (!enabled_ && picker_.heldCount() > 0)
        return; // the last devices are still on their way through their rows
    finishNow();
}

void CLiveStatScheduler::finishNow() {
    if (!enabled_) {
        if (changed_)
            publishChanges();
        timer_->stop();
    }
    nowActive_ = false;
    clearLeftMarks();
    document_.log().LogMessage("Done processing selected object(s) [LS Now]");
    if (disabling_)
        arm(disablePeriod);
    host_.indicatorsChanged();
}

/// Selected devices that Live Stat does not check (location markers, for one) never reach the end of their
/// rows.
void CLiveStatScheduler::clearLeftMarks() {
    for (std::size_t i = 0; i < document_.size(); ++i) {
        const CHardware& record = document_.at(i);
        if (record.LSNowMark != 0 && !picker_.holds(record.RecID))
            document_.setLSNowMark(record, false);
    }
}

// ---- settings

void CLiveStatScheduler::setSettings(const LiveStatSettings& settings) {
    const auto periodBefore = runPeriod();
    settings_ = settings;
    picker_.setIncludeMisc(settings_.LSIncludeMisc);
    // A pause of hours, typed by mistake, must not have to end first.
    if (runPeriod() != periodBefore && !slotCursor_ && timer_->active())
        resume();
    if (wantedSlots() != slots_.size())
        resizeSlots(wantedSlots());
}

void CLiveStatScheduler::resizeSlots(std::size_t count) {
    CMessageLog& log = document_.log();
    if (count > slots_.size()) {
        log.LogMessage("adding " + std::to_string(count - slots_.size()) + " more device checks per run");
        slots_.resize(count);
        jobs_.setLimit(count);
        return;
    }
    timer_->stop();
    log.LogMessage("Removing " + std::to_string(slots_.size() - count) + " device checks per run");
    stopJobs();
    waitForJobs();
    collect();
    for (std::size_t i = count; i < slots_.size(); ++i) {
        if (slots_[i].recID)
            picker_.release(*slots_[i].recID); // keeps its mark: another slot takes it
    }
    slots_.resize(count);
    if (slotCursor_ && *slotCursor_ >= count)
        slotCursor_ = count > 0 ? std::optional(count - 1) : std::nullopt;
    jobs_.setLimit(count);
    if (slots_.empty() && nowActive_)
        finishNow();
    resume();
}

void CLiveStatScheduler::toggleTracking() {
    if (!enabled_) {
        host_.failUser("Live stat must be enabled first.");
        return;
    }
    tracking_ = !tracking_;
    document_.log().LogMessage(tracking_ ? "Track Live stat Enabled" : "Track Live stat Disabled");
}

void CLiveStatScheduler::endTracking() {
    if (tracking_)
        document_.log().LogMessage("Track Live stat Disabled");
    tracking_ = false;
}

} // namespace mirovane
