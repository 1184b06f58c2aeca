#include "livestat/schedule/Scheduler.h"

#include "livestat/steps/Engine.h"

#include <algorithm>
#include <utility>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds slotPeriod{1};
constexpr std::chrono::milliseconds disablePeriod{300};

std::size_t wantedSlots(const LiveStatSettings& settings) {
    return static_cast<std::size_t>(std::clamp(settings.LSNumPerRun, 0, LiveStatSettings::mostNumPerRun));
}

std::chrono::milliseconds runPeriod(const LiveStatSettings& settings) {
    const std::chrono::seconds period{std::clamp(settings.LSRunSec, 0, LiveStatSettings::mostRunSec)};
    return std::max<std::chrono::milliseconds>(period, std::chrono::milliseconds{1});
}

} // namespace

CLiveStatScheduler::CLiveStatScheduler(const FeatureServices& services, const StepProbes& probes,
                                       Workers& workers, LiveStatHost& host, const LiveStatSettings& settings)
    : document_(services.document),
      log_(services.log),
      host_(host),
      settings_(settings),
      timer_(services.timers.makeTimer([this] { tick(); })),
      ownership_(Feature::LiveStat, services, host_),
      switch_(ownership_, *timer_, host_, log_),
      picker_(document_, services.clock),
      steps_(document_, log_),
      slots_(document_, log_, picker_, probes, workers),
      now_(document_, log_, picker_),
      tracking_(log_) {
    picker_.setIncludeMisc(settings_.LSIncludeMisc);
    steps_.setConfirmOff(settings_.LSConfirmOff);
    slots_.setCount(wantedSlots(settings_));
}

CLiveStatScheduler::~CLiveStatScheduler() {
    timer_->stop();
}

std::string CLiveStatScheduler::statusText() const {
    return switch_.on() && shownCount_ ? "LIVE!:" + std::to_string(*shownCount_) : std::string();
}

// ---- on and off

std::optional<StartRefusal> CLiveStatScheduler::toggle() {
    if (!switch_.on())
        return enable();
    disable();
    return std::nullopt;
}

std::optional<StartRefusal> CLiveStatScheduler::enable() {
    if (document_.deviceCount() == 0)
        return StartRefusal{StartRefusal::Kind::NoDevices, {}};
    if (auto refusal = switch_.turnOn(runPeriod(settings_)))
        return refusal;
    run_ = {};
    shownCount_.reset();
    picker_.startLoops();
    steps_.forgetOutages();
    host_.indicatorsChanged();
    return std::nullopt;
}

void CLiveStatScheduler::disable() {
    switch_.turnOff();
    tracking_.end();
    if (!now_.active()) {
        slots_.stopJobs();
        switch_.arm(disablePeriod);
    }
    host_.indicatorsChanged();
}

void CLiveStatScheduler::disableNow() {
    if (switch_.on())
        disable();
    slots_.stopJobs();
    waitForJobs();
    collect();
    timer_->stop();
    if (switch_.goingOff())
        finishDisabling();
    else if (steps_.takeChanged()) // by Live Stat Now
        host_.changesPending();
    slots_.freeAll();
    now_.abandon();
}

void CLiveStatScheduler::finishDisabling() {
    if (slots_.anyInProgress()) {
        switch_.arm(disablePeriod);
        return;
    }
    slots_.freeAll();
    const bool changed = steps_.takeChanged();
    if (changed) // where another station owns Live Stat by now, the periodic save writes them
        host_.changesPending();
    switch_.finish();
    if (changed)
        host_.redraw();
    host_.indicatorsChanged();
}

void CLiveStatScheduler::reset() {
    ownerSilence_.reset();
    switch_.cut();
    slots_.stopJobs();
    slots_.freeAll();
    steps_.reset();
    now_.reset();
    tracking_.reset();
    run_ = {};
    shownCount_.reset();
    picker_.rewind();
    host_.indicatorsChanged();
}

void CLiveStatScheduler::afterReload() {
    rebind();
    if (!switch_.on())
        return;
    if (document_.deviceCount() == 0) {
        disable();
        return;
    }
    if (switch_.keep())
        return;
    slots_.stopJobs();
    slots_.freeAll();
    if (steps_.takeChanged()) // what the run found out so far goes with the periodic save
        host_.changesPending();
    tracking_.end();
    resume(); // Live Stat Now goes on
    host_.indicatorsChanged();
}

void CLiveStatScheduler::waitForJobs() {
    slots_.waitForJobs();
}

void CLiveStatScheduler::resume() {
    if (atWork())
        switch_.arm(runPeriod(settings_));
    else if (switch_.goingOff())
        switch_.arm(disablePeriod);
}

// ---- ticks

void CLiveStatScheduler::tick() {
    if (host_.holdsStill())
        return; // the timer goes on at its period
    timer_->stop();
    collect();
    if (switch_.goingOff() && !now_.active()) {
        finishDisabling();
        return;
    }
    if (!atWork())
        return;
    if (slots_.workerStarting()) {
        switch_.arm(slotPeriod);
        return;
    }
    const auto slot = run_.next(slots_.count());
    if (!slot) {
        endRun();
        return;
    }
    visit(*slot);
    if (atWork())
        switch_.arm(slotPeriod);
}

void CLiveStatScheduler::collect() {
    for (const auto& [slot, job] : slots_.takeFinished())
        steps_.takeBack(slot, *job);
}

void CLiveStatScheduler::visit(std::size_t index) {
    JobSlot& slot = slots_.at(index);
    if (slot.job)
        return; // busy; the next run comes by again
    if (slot.recID)
        moveOn(slot);
    if (!slot.recID)
        pick(slot);
    if (slot.recID)
        startStep(index);
}

void CLiveStatScheduler::moveOn(JobSlot& slot) {
    const CHardware* device = document_.findDevice(*slot.recID);
    if (const auto row = device ? steps_.nextRow(*device, slot.row + 1) : std::nullopt)
        slot.row = *row;
    else
        slots_.free(slot);
}

void CLiveStatScheduler::pick(JobSlot& slot) {
    const CHardware* device = now_.active() ? picker_.pickMarked() : picker_.pickByPriority();
    if (!device) {
        // The last devices of Live Stat Now may still be on their way through their rows.
        if (now_.active() && (switch_.on() || picker_.heldCount() == 0))
            finishNow();
        return;
    }
    const auto row = steps_.nextRow(*device, 0);
    if (!row) {
        clearNowMark(document_, device->RecID); // nothing to do for it: no check begins
        return;
    }
    slots_.take(slot, *device, *row);
    run_.countDevice();
}

void CLiveStatScheduler::startStep(std::size_t index) {
    const JobSlot& slot = slots_.at(index);
    const CHardware& device = *document_.findDevice(*slot.recID);
    if (tracking_.on() && slot.row == 0)
        host_.track(device.RecID);
    slots_.start(index, steps_.input(device, slot.row));
}

void CLiveStatScheduler::endRun() {
    if (run_.devices() > 0)
        reportRun();
    run_ = {};
    steps_.forgetGoneOutages();
    if (steps_.changed())
        publishChanges();
    host_.indicatorsChanged();
    resume();
}

void CLiveStatScheduler::reportRun() {
    const std::string devices = std::to_string(run_.devices()) + " device(s).";
    const int threshold = picker_.threshold();
    std::string line = "Live Stat Now: Processing " + devices;
    if (switch_.on() && !now_.active()) {
        line = "Live Stat Priority " + std::to_string(threshold);
        line += threshold == CDevicePicker::highestPriority ? ": Processing " : " or higher: Processing ";
        line += devices + " Looped " + std::to_string(picker_.loops()) + " times. Last loop took " +
                std::to_string(picker_.lastLoopSeconds()) + " sec";
    }
    log_.LogStatistics(line);
    shownCount_ = run_.devices();
}

void CLiveStatScheduler::publishChanges() {
    steps_.takeChanged();
    host_.changesPending();
    if (switch_.on()) // Live Stat Now alone does not show that the owner is alive
        LiveStatHeartbeat::signOfLife(document_);
    if (now_.active())
        host_.saveSoon(SaveNote::LiveStat);
    host_.redraw();
}

// ---- Live Stat Now

void CLiveStatScheduler::performNow() {
    if (slots_.count() == 0) { // it would never come to an end, and Live Stat could not go off behind it
        log_.LogMessage("Live Stat Now checks nothing: the number of devices to check per run is 0", true);
        return;
    }
    const int count = now_.markSelected();
    if (count == 0)
        return;
    if (!atWork()) {
        if (!timer_->start(runPeriod(settings_))) {
            host_.failUser(std::string(outOfTimersText));
            return;
        }
        run_ = {};
    }
    now_.begin(count);
    shownCount_ = count;
    host_.indicatorsChanged();
}

void CLiveStatScheduler::finishNow() {
    if (!switch_.on()) {
        if (steps_.changed())
            publishChanges();
        timer_->stop();
    }
    now_.finish();
    if (switch_.goingOff())
        switch_.arm(disablePeriod);
    host_.indicatorsChanged();
}

// ---- settings

void CLiveStatScheduler::setSettings(const LiveStatSettings& settings) {
    const auto periodBefore = runPeriod(settings_);
    settings_ = settings;
    picker_.setIncludeMisc(settings_.LSIncludeMisc);
    steps_.setConfirmOff(settings_.LSConfirmOff);
    // A pause of hours, typed by mistake, must not have to end first.
    if (runPeriod(settings_) != periodBefore && run_.resting() && timer_->active())
        resume();
    if (wantedSlots(settings_) != slots_.count())
        resizeSlots(wantedSlots(settings_));
}

void CLiveStatScheduler::resizeSlots(std::size_t count) {
    if (count > slots_.count()) {
        log_.LogMessage("adding " + std::to_string(count - slots_.count()) + " more device checks per run");
        slots_.setCount(count);
        return;
    }
    timer_->stop();
    log_.LogMessage("Removing " + std::to_string(slots_.count() - count) + " device checks per run");
    slots_.stopJobs();
    waitForJobs();
    collect();
    slots_.setCount(count);
    run_.limit(count);
    if (count == 0 && now_.active())
        finishNow();
    resume();
}

void CLiveStatScheduler::holdType(std::optional<std::int32_t> type) {
    steps_.hold(type);
    if (type && atWork())
        log_.LogMessage("Live Stat leaves devices of the type " + std::string(typeName(*type)) +
                        " alone while their criteria are shown");
}

void CLiveStatScheduler::toggleTracking() {
    if (!switch_.on())
        host_.failUser("Live stat must be enabled first.");
    else if (tracking_.on())
        tracking_.end();
    else
        tracking_.begin();
}

} // namespace mirovane
