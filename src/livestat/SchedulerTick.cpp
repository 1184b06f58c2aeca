#include "livestat/Engine.h"
#include "livestat/FeatureOwner.h"
#include "livestat/Outcome.h"
#include "livestat/Scheduler.h"

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds slotPeriod{1};
constexpr int lastRow = criteriaRowCount - 1;

/// Row of a slot whose device has gone; anything behind the last row frees the slot.
constexpr int vanishedRow = 9999;

/// A stamp has whole seconds. What a writer adds later within the second in which the file was searched would
/// never be found; a clock of a file server that is a little fast makes that second longer.
bool mayChangeUnseen(TimeStamp fileStamp, TimeStamp searchBegan) {
    constexpr std::int64_t fastestClock = 2;
    const std::int64_t age = std::int64_t{searchBegan} - fileStamp;
    return age <= 0 && age >= -fastestClock;
}

} // namespace

void CLiveStatScheduler::tick() {
    if (host_.holdsStill())
        return; // the timer goes on at its period
    timer_->stop();
    collect();
    if (disabling_ && !nowActive_) {
        finishDisabling();
        return;
    }
    if (!enabled_ && !nowActive_)
        return;
    if (jobs_.workerStarting()) {
        arm(slotPeriod);
        return;
    }
    const std::size_t next = slotCursor_ ? *slotCursor_ + 1 : 0;
    if (next >= slots_.size()) {
        endRun();
        return;
    }
    slotCursor_ = next;
    visit(next);
    if (enabled_ || nowActive_)
        arm(slotPeriod);
}

void CLiveStatScheduler::endRun() {
    if (devicesThisRun_ > 0)
        reportRun();
    devicesThisRun_ = 0;
    slotCursor_.reset();
    for (const std::string& trouble : probes_.registry.takeTroubles())
        document_.log().LogMessage(trouble, true);
    if (changed_)
        publishChanges();
    host_.indicatorsChanged();
    resume();
}

void CLiveStatScheduler::reportRun() {
    const std::string devices = std::to_string(devicesThisRun_) + " device(s).";
    const int threshold = picker_.threshold();
    std::string line = "Live Stat Now: Processing " + devices;
    if (enabled_ && !nowActive_) {
        line = "Live Stat Priority " + std::to_string(threshold);
        line += threshold == CDevicePicker::highestPriority ? ": Processing " : " or higher: Processing ";
        line += devices + " Looped " + std::to_string(picker_.loops()) + " times. Last loop took " +
                std::to_string(picker_.lastLoopSeconds()) + " sec";
    }
    document_.log().LogMessage(line);
    setStatusText(devicesThisRun_);
}

void CLiveStatScheduler::publishChanges() {
    changed_ = false;
    document_.setPendingChanges(true);
    LiveStatHeartbeat::signOfLife(document_);
    if (nowActive_)
        host_.saveDatafile("Live Stat ");
    host_.redraw();
}

void CLiveStatScheduler::visit(std::size_t index) {
    JobSlot& slot = slots_[index];
    if (slot.job)
        return; // busy; the next run comes by again
    if (slot.recID && !document_.findDevice(*slot.recID))
        slot.row = vanishedRow;
    if (slot.row >= lastRow)
        freeSlot(slot);
    if (slot.recID)
        moveOn(slot);
    if (!slot.recID)
        pick(slot);
    if (slot.recID)
        startStep(slot, index);
}

void CLiveStatScheduler::moveOn(JobSlot& slot) {
    const CHardware& device = *document_.findDevice(*slot.recID);
    if (const auto row = nextRow(device, slot.row + 1))
        slot.row = *row;
    else
        freeSlot(slot);
}

void CLiveStatScheduler::pick(JobSlot& slot) {
    const CHardware* device = nowActive_ ? picker_.pickMarked() : picker_.pickByPriority();
    if (!device) {
        if (nowActive_)
            finishRound();
        return;
    }
    const auto row = nextRow(*device, 0);
    if (!row) {
        clearMark(device->RecID); // nothing to do for it: no check begins
        return;
    }
    slot.recID = device->RecID;
    slot.row = *row;
    picker_.hold(device->RecID);
    ++devicesThisRun_;
}

std::optional<int> CLiveStatScheduler::nextRow(const CHardware& device, int from) const {
    for (int row = from; row <= lastRow; ++row) {
        const CHardware* record = document_.criteria(device.Type, row);
        if (!record)
            continue;
        if (rowCounts(device, row, criteriaFromRecord(*record)))
            return row;
    }
    return std::nullopt;
}

StepInput CLiveStatScheduler::inputFor(const CHardware& device, int row) {
    StepInput input;
    input.device = device;
    if (searchAgain_.contains({device.RecID, row}))
        input.device.RuleStamps[static_cast<std::size_t>(row)] = 0;
    input.row = row;
    input.criteria = criteriaFromRecord(*document_.criteria(device.Type, row));
    if (input.criteria.Command == Action::MatchToJack)
        input.matchedState = jacks_.stateAtJack(device.ToJack);
    input.computerName = document_.station().computerName;
    return input;
}

void CLiveStatScheduler::startStep(JobSlot& slot, std::size_t index) {
    const CHardware& device = *document_.findDevice(*slot.recID);
    if (tracking_ && slot.row == 0)
        host_.track(device.RecID);
    slot.stepBegan = document_.now();
    slot.job = jobs_.start(inputFor(device, slot.row), index);
    if (slot.job)
        return;
    --slot.row; // tried again at the slot's next visit
    if (!threadShortageReported_)
        document_.log().LogMessage(
            "Live Stat cannot start a thread; raise the limit of processes or lower the "
            "number of devices to check per run.");
    threadShortageReported_ = true;
}

void CLiveStatScheduler::collect() {
    for (const auto& job : jobs_.takeFinished()) {
        if (job->slot >= slots_.size() || slots_[job->slot].job != job)
            continue; // its slot went or was freed meanwhile
        JobSlot& slot = slots_[job->slot];
        slot.job = nullptr;
        takeBack(slot, *job);
    }
}

void CLiveStatScheduler::takeBack(JobSlot& slot, const StepJob& job) {
    const CHardware* device = document_.findDevice(*slot.recID);
    if (!device) {
        slot.row = vanishedRow;
        return;
    }
    const CHardware* criteria = document_.criteria(device->Type, slot.row);
    if (job.outcome.cancelled || !criteria ||
        !stillHolds(job.input, *device, criteriaFromRecord(*criteria))) {
        --slot.row; // the same row again
        return;
    }
    if (!job.outcome.brokenPattern.empty())
        reportBrokenPattern(job);
    noteSearch(slot, job);
    CHardware after = *device;
    const Applied applied = applyOutcome(after, job.input, job.outcome, document_.now());
    if (applied == Applied::Nothing)
        return;
    document_.editInBackground(*device, [&after](CHardware& record) { record = std::move(after); });
    changed_ = changed_ || applied == Applied::Change;
}

void CLiveStatScheduler::noteSearch(const JobSlot& slot, const StepJob& job) {
    const DeviceRow searched{*slot.recID, slot.row};
    if (!job.outcome.fileStamp)
        return;
    if (mayChangeUnseen(*job.outcome.fileStamp, slot.stepBegan))
        searchAgain_.insert(searched);
    else
        searchAgain_.erase(searched);
}

/// Once for each text, wherever it stands: a row whose pattern is broken fails for every device of its type.
void CLiveStatScheduler::reportBrokenPattern(const StepJob& job) {
    const CriteriaRow& criteria = job.input.criteria;
    if (!brokenPatterns_.insert(criteria.SearchFor).second)
        return;
    document_.log().LogMessage("Live Stat criteria of " + std::string(typeName(job.input.device.Type)) +
                               ", row " + std::string(criteriaRowLabel(job.input.row)) + ": \"" +
                               criteria.SearchFor + "\" is no pattern (" + job.outcome.brokenPattern +
                               ") and matches nothing.");
}

void CLiveStatScheduler::freeSlot(JobSlot& slot) {
    if (slot.job)
        slot.job->stop.request_stop();
    if (slot.recID) {
        clearMark(*slot.recID);
        picker_.release(*slot.recID);
    }
    slot = {};
}

void CLiveStatScheduler::freeAllSlots() {
    for (JobSlot& slot : slots_)
        freeSlot(slot);
}

void CLiveStatScheduler::clearMark(std::int32_t recID) {
    const CHardware* device = document_.findDevice(recID);
    if (device && device->LSNowMark != 0)
        document_.setLSNowMark(*device, false);
}

} // namespace mirovane
