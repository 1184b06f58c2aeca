#include "livestat/FeatureOwner.h"
#include "station/Station.h"

#include <algorithm>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds reloadRetryPeriod{100};

/// Longer than nearly every step: after one was stopped for a reload, the next attempt comes to its end.
constexpr std::chrono::minutes betweenStops{1};
constexpr std::chrono::milliseconds reminderPeriod{5000};
constexpr std::chrono::milliseconds reminderHiddenPeriod{2000};

/// Background changes wait for the sixth tick, so that a busy Live Stat does not make every station reload
/// every 3 s.
constexpr int ticksBetweenSaves = 5;
constexpr int ticksOfLiveStat = 100;

/// Half a minute.
constexpr int mostTicksToRetry = 10;

constexpr std::int64_t heartbeatHours = 3;

} // namespace

void CStation::watchTick() {
    if (pauses_ > 0 || doc_->path().empty())
        return;
    if (reloadWaiting_) {
        reload();
        return;
    }
    auto status = services_.files.status(doc_->path());
    if (!status) {
        services_.log.LogMessage("Error reading/loading from datafile!", true);
        retryPause_ = ticksToRetry_ = 0;
    } else if (doc_->mustReload() || status.value() != doc_->knownIdentity()) {
        reload();
        if (!busy_)
            status = services_.files.status(doc_->path());
    } else {
        retryOwedSave();
    }
    if (!busy_)
        periodicSave(status);
}

/// The first try comes with the next tick, further ones less and less often: a disk that is full or a file
/// that may not be written stays so for a while.
void CStation::retryOwedSave() {
    if (!saveOwed_ || !doc_->unsavedEdits()) {
        saveOwed_ = false;
        retryPause_ = ticksToRetry_ = 0;
        return;
    }
    if (ticksToRetry_-- > 0)
        return;
    retryPause_ = std::min(2 * retryPause_ + 1, mostTicksToRetry);
    ticksToRetry_ = retryPause_;
    if (!save(CMirovaneDoc::Attempt::Retry))
        refillListView();
}

void CStation::periodicSave(const Result<FileIdentity, FileError>& status) {
    ++saveTicks_;
    if (!status) {
        services_.log.LogMessage("Error writing to datafile!", true);
        saveTicks_ = 0;
        return;
    }
    if (!doc_->pendingChanges() || saveTicks_ <= ticksBetweenSaves || status.value() != doc_->knownIdentity())
        return;
    if (saveTicks_ < ticksOfLiveStat)
        doc_->setSaveNote("Live Stat ");
    saveTicks_ = 0;
    refillListView();
    const auto error = save();
    if (!error || error->kind != FileError::Kind::Changed)
        doc_->setPendingChanges(false);
}

/// Another station saved. The steps in flight are told to stop and the reload waits for them, ticking, not
/// blocking. Where that was so a moment ago they go on instead, as they do after a save that merged: a step
/// against a silent host takes ten seconds, and colleagues who save more often would starve Live Stat.
void CStation::reload() {
    stopTimers();
    if (!busy_ && !unreadable_)
        services_.log.LogMessage("Loading from data file, please wait...", true);
    busy_ = true;
    if (liveStat_->anyJobInProgress() && (reloadWaiting_ || mayStopJobs())) {
        liveStat_->stopJobs();
        reloadWaiting_ = true;
        watchTimer_->start(reloadRetryPeriod);
        return;
    }
    finishReload();
}

/// A file that stays unreadable is tried every few seconds.
bool CStation::mayStopJobs() {
    const auto now = services_.clock.monotonic();
    if (unreadable_ || (jobsStopped_ && now - *jobsStopped_ < betweenStops))
        return false;
    jobsStopped_ = now;
    return true;
}

void CStation::finishReload() {
    reloading_ = true;
    reloadWaiting_ = false;
    readAgain();
    busy_ = false;
    if (!unreadable_) {
        if (doc_->unsavedEdits())
            save();
        refillListView();
        tellOfReadAgain();
    }
    reloading_ = false;
    startTimers(reminderPeriodAfterReload);
}

void CStation::readAgain() {
    // A station that hangs with the file in its hands must not hold this one up at every tick.
    using Attempt = CMirovaneDoc::Attempt;
    if (const auto error = doc_->reload(unreadable_ ? Attempt::Retry : Attempt::First)) {
        reportUnreadable(*error);
        return;
    }
    unreadable_ = false;
    services_.log.LogMessage("Loaded from data file", true);
}

void CStation::reportUnreadable(const Datafile::Error& error) {
    if (!unreadable_) {
        services_.log.LogMessage(error.sentence);
        services_.log.LogMessage(
            "Error reading/loading from datafile! The records in memory are kept and not saved "
            "until it can be read again.",
            true);
    }
    unreadable_ = true;
}

void CStation::reminderTick() {
    if (holdsStill())
        return;
    checkReminders();
    keepOwnerAlive();
}

/// What is due is shown for longer than it is hidden.
void CStation::checkReminders() {
    const bool wasDue = reminders_->DueCount() > 0;
    reminders_->run();
    const bool due = reminders_->DueCount() > 0;
    if (due)
        reminderTimer_->start(reminders_->ReminderPhase() ? reminderPeriod : reminderHiddenPeriod);
    else if (wasDue)
        reminderTimer_->start(reminderPeriod);
    if ((due || wasDue) && onReminders)
        onReminders();
}

/// Keeps the sign of life fresh while Live Stat runs here, and replaces an owner that has been silent for
/// hours. A sign from the future was given by a clock that went wrong: it would look fresh for too long.
void CStation::keepOwnerAlive() {
    const std::int64_t silent = LiveStatHeartbeat::silentHours(*doc_);
    if (silent >= LiveStatHeartbeat::takeOverHours && !liveStat_->enabled() && doc_->deviceCount() > 0 &&
        wantsLiveStat()) {
        liveStat_->toggle(); // first: who answers its question may look how long the owner has been silent
        if (liveStat_->enabled())
            return;
        LiveStatHeartbeat::signOfLife(*doc_);
        doc_->setPendingChanges(true);
    } else if ((silent >= heartbeatHours || silent < 0) && liveStat_->enabled()) {
        LiveStatHeartbeat::signOfLife(*doc_);
        doc_->setPendingChanges(true);
    }
}

} // namespace mirovane
