#include "station/DatafileWatch.h"

#include <utility>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds watchPeriod{3000};
constexpr std::chrono::milliseconds reloadRetryPeriod{100};
constexpr std::chrono::milliseconds answerPeriod{10};

constexpr std::chrono::milliseconds firstReminderPeriod{5000};
constexpr std::chrono::milliseconds reminderPeriodAfterReload{4000};

/// Longer than nearly every step: after one was stopped for a reload, the next attempt comes to its end.
constexpr std::chrono::minutes betweenStops{1};

constexpr int ticksBetweenSaves = 5;

/// A running Live Stat saves more often: after five minutes without a save it was something else.
constexpr int ticksOfSilence = 100;

} // namespace

CDatafileWatch::CDatafileWatch(CDatafileLink& link, CMirovaneDoc& document, const Clock& clock,
                               TimerFactory& timers, CMessageLog& log, DatafileWatchHost& host)
    : link_(link),
      document_(document),
      clock_(clock),
      log_(log),
      host_(host),
      timer_(timers.makeTimer([this] { tick(); })),
      answers_(timers.makeTimer([this] { poll(); })) {}

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

SaveReport CDatafileWatch::save(SaveNote note, Attempt attempt, WaitFor waitFor) {
    if (waitFor == WaitFor::Answer)
        settle();
    if (busy())
        return {}; // the reload saves what the user changed
    if (link_.underWay()) {
        state_.wanted = note;
        host_.saveTried();
        return {};
    }
    state_.pendingInSave = std::exchange(state_.pendingSince, false);
    if (const auto report = link_.startSave(note, attempt)) {
        saved(*report);
        return *report;
    }
    const auto news = awaited(waitFor);
    if (!news) {
        host_.saveTried(); // what it was for is kept elsewhere until it is over
        return {};
    }
    deliver(*news);
    const auto* report = std::get_if<SaveReport>(&*news);
    return report ? *report : SaveReport{};
}

/// A save that failed is owed as long as there is something to save.
void CDatafileWatch::saved(const SaveReport& report) {
    takeIn(report);
    if (report.failed() && link_.hasToSave() && !state_.owed)
        state_.owed.emplace();
}

SaveReport CDatafileWatch::saveAs(const std::string& path) {
    settle();
    state_.pendingSince = false;
    SaveReport report = link_.saveAs(path);
    takeIn(report);
    return report;
}

void CDatafileWatch::settle() {
    while (link_.underWay())
        if (const auto news = awaited(WaitFor::Answer))
            deliver(*news);
    state_.wanted.reset(); // whoever waited saves now, or has nothing more to save
}

void CDatafileWatch::takeIn(const SaveReport& report) {
    state_.lastError = report.error;
    host_.saveTried();
    if (report.saved()) {
        state_.pending = std::exchange(state_.pendingSince, false);
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
    state_.editing = true;
    if (phase() == Phase::ReloadWaiting) {
        state_.phase = Phase::Watching;
        state_.editTookReload = true;
    }
}

void CDatafileWatch::endEdit() {
    state_.editing = false;
    if (phase() == Phase::Closed)
        return;
    if (std::exchange(state_.editTookReload, false))
        startTimers(reminderPeriodAfterReload);
    else
        timer_->start(watchPeriod);
}

bool CDatafileWatch::behind() {
    settle();
    if (phase() == Phase::ReloadWaiting)
        return true;
    if (phase() != Phase::Watching || link_.path().empty())
        return false;
    link_.startLook();
    const auto news = awaited(WaitFor::Answer);
    const auto* look = news ? std::get_if<DatafileLooked>(&*news) : nullptr;
    return look && look->status && look->status.value() != link_.knownIdentity();
}

void CDatafileWatch::catchUp() {
    timer_->stop();
    host_.stopReminders();
    fetch(WaitFor::Answer);
}

// ---- answers

/// Nothing: it is still under way, or whoever was let in meanwhile has taken it.
std::optional<DatafileNews> CDatafileWatch::awaited(WaitFor waitFor) {
    answers_->stop(); // who waits here takes it
    bool there = link_.wait(oneFrame);
    while (link_.underWay()) {
        if (there) {
            if (phase() == Phase::Fetching)
                state_.phase = Phase::Reading;
            if (auto news = link_.collect())
                return news;
        } else if (waitFor == WaitFor::Frame) {
            answers_->start(answerPeriod);
            return std::nullopt;
        } else if (!host_.keepWaiting(link_.path())) {
            return link_.underWay() ? std::optional(link_.giveUp()) : std::nullopt;
        }
        there = link_.wait(oneFrame);
    }
    return std::nullopt;
}

/// While a question to the user is open or something follows the pointer, the records stay.
void CDatafileWatch::poll() {
    if (!link_.underWay()) {
        answers_->stop();
        return;
    }
    const bool mayReplace = !host_.paused() && !state_.editing;
    if (!link_.wait(std::chrono::milliseconds(0)) || (link_.hasRead() && !mayReplace))
        return;
    if (phase() == Phase::Fetching)
        state_.phase = Phase::Reading;
    const auto news = link_.collect(mayReplace);
    if (!news)
        return; // the save goes on
    answers_->stop();
    deliver(*news);
    goOnSaving();
    host_.answered();
}

void CDatafileWatch::deliver(const DatafileNews& news) {
    if (const auto* look = std::get_if<DatafileLooked>(&news))
        looked(look->status);
    else if (const auto* read = std::get_if<DatafileReadAgain>(&news))
        takeRead(read->error);
    else {
        const auto& report = std::get<SaveReport>(news);
        saved(report);
        if (report.failed() && report.error->kind == FileError::Kind::Changed)
            state_.pending = state_.pending || state_.pendingInSave;
        if (report.outcome == SaveReport::Outcome::Deferred && !state_.owed)
            state_.owed.emplace(); // it met another station's when nothing could be put on top of that
    }
}

void CDatafileWatch::goOnSaving() {
    if (link_.underWay() || busy())
        return;
    if (const auto note = std::exchange(state_.wanted, std::nullopt); note && phase() != Phase::Closed)
        save(*note);
}

// ---- ticks

void CDatafileWatch::tick() {
    if (host_.paused() || link_.path().empty())
        return;
    if (phase() == Phase::ReloadWaiting) {
        reload();
        return;
    }
    if (link_.underWay()) { // the share takes its time
        poll();
        return;
    }
    link_.startLook();
    if (const auto news = awaited(WaitFor::Frame))
        deliver(*news);
}

void CDatafileWatch::looked(const Result<FileIdentity, FileError>& status) {
    if (phase() == Phase::Closed || host_.paused() || state_.editing)
        return; // the next tick asks again
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
        if (busy() || phase() == Phase::Fetching)
            return;
        periodicSave(link_.mustReload() || !link_.knownIdentity() ? status : *link_.knownIdentity());
        return;
    } else {
        retryOwedSave();
    }
    periodicSave(status);
}

void CDatafileWatch::retryOwedSave() {
    if (state_.owed && !link_.hasToSave())
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
    fetch(WaitFor::Frame);
}

/// A file that stays unreadable is tried every few seconds.
bool CDatafileWatch::mayStopJobs() {
    const auto now = clock_.monotonic();
    if (phase() == Phase::Unreadable || (state_.jobsStopped && now - *state_.jobsStopped < betweenStops))
        return false;
    state_.jobsStopped = now;
    return true;
}

/// A station that hangs with the file in its hands must not hold this one up at every tick.
void CDatafileWatch::fetch(WaitFor waitFor) {
    state_.fetchedAgain = phase() == Phase::Unreadable;
    state_.phase = Phase::Fetching;
    link_.startReload(state_.fetchedAgain ? Attempt::Retry : Attempt::First);
    if (const auto news = awaited(waitFor))
        deliver(*news);
}

void CDatafileWatch::takeRead(const std::optional<Datafile::Error>& error) {
    if (phase() == Phase::Closed) {
        if (!error)
            savedOnTop();
        return; // whoever leaves the datafile saves
    }
    if (error) {
        if (!state_.fetchedAgain)
            reportUnreadable(*error);
        state_.phase = Phase::Unreadable;
        startTimers(reminderPeriodAfterReload);
        return;
    }
    ++readings_;
    state_.wanted.reset();
    log_.LogMessage("Loaded from data file", true);
    state_.phase = Phase::Asking;
    if (link_.hasToSave())
        save();
    host_.listChanged();
    lookAtOwners();
    if (phase() != Phase::Asking)
        return; // left meanwhile
    state_.phase = Phase::Watching;
    startTimers(reminderPeriodAfterReload);
}

void CDatafileWatch::reportUnreadable(const Datafile::Error& error) {
    log_.LogTrouble(error.sentence);
    log_.LogTrouble("Error reading/loading from datafile! The records in memory are kept and not saved "
                    "until it can be read again.",
                    true);
}

} // namespace mirovane
