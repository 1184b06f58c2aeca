#include "station/DatafileWatch.h"

#include <utility>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds watchPeriod{3000};
constexpr std::chrono::milliseconds reloadRetryPeriod{100};
constexpr std::chrono::milliseconds firstReminderPeriod{5000};
constexpr std::chrono::milliseconds reminderPeriodAfterReload{4000};

/// Longer than nearly every step: after one was stopped for a reload, the next attempt comes to its end.
constexpr std::chrono::minutes betweenStops{1};

constexpr int ticksBetweenSaves = 5;

/// A running Live Stat saves more often: after five minutes without a save it was something else.
constexpr int ticksOfSilence = 100;

} // namespace

CDatafileWatch::CDatafileWatch(CDatafileLink& link, CMirovaneDoc& document, Files& files, const Clock& clock,
                               TimerFactory& timers, CMessageLog& log, DatafileWatchHost& host)
    : link_(link),
      document_(document),
      files_(files),
      clock_(clock),
      log_(log),
      host_(host),
      timer_(timers.makeTimer([this] { tick(); })) {}

void CDatafileWatch::begin() {
    state_ = State();
    state_.phase = Phase::Watching;
    state_.pending = link_.upgradePending();
    if (state_.pending)
        state_.ticksSinceSave =
            ticksBetweenSaves; // at the first tick, once: a file that cannot be written can wait
    startTimers(firstReminderPeriod);
}

void CDatafileWatch::close() {
    state_.phase = Phase::Closed;
    timer_->stop();
    host_.stopReminders();
}

void CDatafileWatch::resume() {
    state_.phase = link_.mustReload() ? Phase::Unreadable : Phase::Watching; // told already that it is
    startTimers(firstReminderPeriod);
}

void CDatafileWatch::startTimers(std::chrono::milliseconds reminderPeriod) {
    if (phase() == Phase::Closed)
        return;
    if (!timer_->start(watchPeriod))
        log_.LogTrouble("System is out of timer resource!", true);
    host_.startReminders(reminderPeriod);
}

// ---- saving

SaveReport CDatafileWatch::save(SaveNote note, Attempt attempt) {
    if (busy())
        return {}; // the reload saves what the user changed
    SaveReport report = link_.save(note, attempt);
    takeIn(report);
    if (report.failed() && document_.unsavedEdits() && !state_.owed)
        state_.owed.emplace();
    return report;
}

SaveReport CDatafileWatch::saveAs(const std::string& path) {
    SaveReport report = link_.saveAs(path);
    takeIn(report);
    return report;
}

void CDatafileWatch::takeIn(const SaveReport& report) {
    state_.lastError = report.error;
    host_.saveTried();
    if (report.saved()) {
        state_.pending = false;
        state_.owed.reset();
    }
    if (phase() == Phase::Unreadable && (report.saved() || report.readAgain))
        state_.phase = Phase::Watching;
    if (report.readAgain)
        savedOnTop();
}

/// Steps that are under way go on: they work on copies, and find their device by its number.
void CDatafileWatch::savedOnTop() {
    ++readings_;
    if (phase() == Phase::Asking)
        return; // whoever looks at the owners looks again
    if (phase() == Phase::Closed) {
        host_.datafileRead();
        return;
    }
    const Phase before = std::exchange(state_.phase, Phase::Asking);
    lookAtOwners();
    if (phase() == Phase::Asking)
        state_.phase = before;
}

/// A question may be open for hours, and the save that follows the answer may bring yet another owner along,
/// also of the feature that was looked at before. The datafile may be left while it is open, too: then the
/// phase is no longer Asking.
void CDatafileWatch::lookAtOwners() {
    std::size_t looked = 0;
    do {
        looked = readings_;
        host_.datafileRead();
    } while (looked != readings_ && phase() == Phase::Asking);
}

// ---- edits

void CDatafileWatch::beginEdit() {
    timer_->stop();
    if (phase() == Phase::ReloadWaiting) {
        state_.phase = Phase::Watching;
        state_.editTookReload = true;
    }
}

void CDatafileWatch::endEdit() {
    if (phase() == Phase::Closed)
        return;
    if (std::exchange(state_.editTookReload, false))
        startTimers(reminderPeriodAfterReload);
    else
        timer_->start(watchPeriod);
}

bool CDatafileWatch::behind() const {
    if (phase() == Phase::ReloadWaiting)
        return true;
    if (phase() != Phase::Watching || link_.path().empty())
        return false;
    const auto status = files_.status(link_.path());
    return status && status.value() != link_.knownIdentity();
}

void CDatafileWatch::catchUp() {
    timer_->stop();
    host_.stopReminders();
    finishReload();
}

// ---- ticks

void CDatafileWatch::tick() {
    if (host_.paused() || link_.path().empty())
        return;
    if (phase() == Phase::ReloadWaiting) {
        reload();
        return;
    }
    auto status = files_.status(link_.path());
    const bool late = !status && status.error().kind == FileError::Kind::NotAnswering;
    if (late && !std::exchange(state_.unanswered, true))
        return; // perhaps the answer is there with the next tick
    state_.unanswered = late;
    if (!status) {
        log_.LogTrouble("Error reading/loading from datafile!", true);
        if (state_.owed)
            state_.owed = OwedSave();
    } else if (link_.mustReload() || status.value() != link_.knownIdentity()) {
        reload();
        if (busy())
            return;
        status = files_.status(link_.path());
    } else {
        retryOwedSave();
    }
    periodicSave(status);
}

void CDatafileWatch::retryOwedSave() {
    if (state_.owed && !document_.unsavedEdits())
        state_.owed.reset(); // what it was for is saved, or another station's
    if (state_.owed && state_.owed->due() && save(SaveNote::None, Attempt::Retry).saved())
        host_.listChanged();
}

void CDatafileWatch::periodicSave(const Result<FileIdentity, FileError>& status) {
    ++state_.ticksSinceSave;
    if (!status) {
        log_.LogTrouble("Error writing to datafile!", true);
        state_.ticksSinceSave = 0;
        return;
    }
    if (!state_.pending || state_.ticksSinceSave <= ticksBetweenSaves ||
        status.value() != link_.knownIdentity())
        return;
    const SaveNote note = state_.ticksSinceSave < ticksOfSilence ? SaveNote::LiveStat : SaveNote::None;
    state_.ticksSinceSave = 0;
    host_.listChanged();
    const SaveReport report = save(note);
    // What failed for another reason is not tried again every few seconds; an edit among it is owed.
    if (!report.failed() || report.error->kind != FileError::Kind::Changed)
        state_.pending = false;
}

// ---- reading again

/// Another station saved. The steps in flight are told to stop and the reload waits for them, ticking, not
/// blocking. Where that was so a moment ago they go on instead, as they do after a save that merged: a step
/// against a silent host takes ten seconds, and colleagues who save more often would starve Live Stat.
void CDatafileWatch::reload() {
    timer_->stop();
    host_.stopReminders();
    if (phase() == Phase::Watching)
        log_.LogMessage("Loading from data file, please wait...", true);
    if (host_.jobsInProgress() && (phase() == Phase::ReloadWaiting || mayStopJobs())) {
        host_.stopJobs();
        state_.phase = Phase::ReloadWaiting;
        timer_->start(reloadRetryPeriod);
        return;
    }
    finishReload();
}

/// A file that stays unreadable is tried every few seconds.
bool CDatafileWatch::mayStopJobs() {
    const auto now = clock_.monotonic();
    if (phase() == Phase::Unreadable || (state_.jobsStopped && now - *state_.jobsStopped < betweenStops))
        return false;
    state_.jobsStopped = now;
    return true;
}

void CDatafileWatch::finishReload() {
    if (readAgain()) {
        state_.phase = Phase::Asking;
        if (document_.unsavedEdits())
            save();
        host_.listChanged();
        lookAtOwners();
        if (phase() != Phase::Asking)
            return; // left meanwhile
        state_.phase = Phase::Watching;
    }
    startTimers(reminderPeriodAfterReload);
}

bool CDatafileWatch::readAgain() {
    const bool again = phase() == Phase::Unreadable;
    state_.phase = Phase::Reading;
    // A station that hangs with the file in its hands must not hold this one up at every tick.
    const auto error = link_.reload(again ? Attempt::Retry : Attempt::First);
    if (error) {
        if (!again)
            reportUnreadable(*error);
        state_.phase = Phase::Unreadable;
        return false;
    }
    ++readings_;
    log_.LogMessage("Loaded from data file", true);
    return true;
}

void CDatafileWatch::reportUnreadable(const Datafile::Error& error) {
    log_.LogTrouble(error.sentence);
    log_.LogTrouble("Error reading/loading from datafile! The records in memory are kept and not saved "
                    "until it can be read again.",
                    true);
}

} // namespace mirovane
