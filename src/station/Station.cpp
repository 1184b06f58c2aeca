#include "station/Station.h"

#include "livestat/FeatureOwner.h"
#include "livestat/WorkerPool.h"
#include "platform/FilePaths.h"
#include "station/ExportWriter.h"

#include <algorithm>
#include <array>
#include <utility>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds firstReminderPeriod{5000};

/// So high that the next watch tick saves, and that it does not call the changes Live Stat's.
constexpr int upgradeSaveTicks = 100;

std::optional<Datafile::Error> cannotRead(const FileError& error) {
    return Datafile::Error{Datafile::Error::Kind::CannotRead, 0, 0, error.sentence};
}

/// Whether a datafile could be opened, before the one that is open is given up for it.
std::optional<Datafile::Error> whyNotReadable(Files& files, const std::string& path) {
    auto file = files.lock(path, FileAccess::Read, lockPatience);
    if (!file)
        return cannotRead(file.error());
    const auto bytes = file.value()->read();
    if (!bytes)
        return cannotRead(bytes.error());
    const auto content = Datafile::decode(bytes.value());
    return content ? std::nullopt : std::optional(content.error());
}

/// What the datafile says about who runs what.
std::array<CHardware, 2> owners(const CMirovaneDoc& document) {
    std::array<CHardware, 2> copies;
    for (const Feature feature : {Feature::LiveStat, Feature::LiveDiscover}) {
        if (const CHardware* record = FeatureOwner::record(document, feature))
            copies[feature == Feature::LiveStat ? 0 : 1] = *record;
    }
    return copies;
}

} // namespace

CStation::CStation(StationServices services) : services_(std::move(services)) {
    liveStatSettings_.readAll(services_.settings);
    doc_ = std::make_unique<CMirovaneDoc>(services_.files, services_.clock, services_.log, services_.settings,
                                          services_.identity);
    reminders_ = std::make_unique<CReminderCheck>(*doc_);
    if (!services_.workers)
        ownWorkers_ = std::make_unique<CWorkerPool>(1); // the scheduler sets the limit
    Workers& workers = services_.workers ? *services_.workers : *ownWorkers_;
    LiveStatHost& host = *this;
    liveStat_ = std::make_unique<CLiveStatScheduler>(*doc_, services_.probes, workers, services_.timers, host,
                                                     liveStatSettings_);
    if (!services_.workers)
        discoverWorkers_ = std::make_unique<CWorkerPool>(1);
    LiveDiscoverHost& discoverHost = *this;
    liveDiscover_ = std::make_unique<CLiveDiscover>(
        *doc_, services_.probes.hosts, services_.workers ? *services_.workers : *discoverWorkers_,
        services_.timers, discoverHost);
    if (services_.sweepProbes) {
        DiscoverNowHost& sweeping = *this;
        discoverNow_ =
            std::make_unique<CDiscoverNow>(*doc_, *services_.sweepProbes, services_.timers, sweeping);
    }
    watchTimer_ = services_.timers.makeTimer([this] { watchTick(); });
    reminderTimer_ = services_.timers.makeTimer([this] { reminderTick(); });
}

CStation::~CStation() {
    shutDown();
}

void CStation::newDatafile() {
    leaveDatafile();
    doc_->newDatafile();
    begin();
}

std::optional<Datafile::Error> CStation::openDatafile(const std::string& path) {
    std::optional<Datafile::Error> error;
    const bool works = liveStat_->enabled() || liveStat_->nowActive() || liveDiscover_->enabled() ||
                       (discoverNow_ && discoverNow_->running());
    if (works || doc_->pendingChanges() || doc_->unsavedEdits())
        error = whyNotReadable(services_.files, path);
    if (!error) {
        leaveDatafile();
        error = doc_->open(path);
    }
    if (error) {
        services_.log.LogMessage(error->sentence, true);
        return error;
    }
    begin();
    return std::nullopt;
}

/// Other stations must not go on believing that this one works on a datafile that it has left.
void CStation::leaveDatafile() {
    busy_ = reloadWaiting_ = false; // what waits for a reload is merged by the saves here
    endDiscoverNow();
    liveStat_->disableNow();
    liveDiscover_->disableNow();
    if (doc_->pendingChanges() || doc_->unsavedEdits())
        saveBackgroundChanges();
}

/// What Live Stat changed goes into the export, too, before the datafile is left.
void CStation::saveBackgroundChanges() {
    refillListView();
    save();
}

/// What it found until now is saved with the datafile that is left.
void CStation::endDiscoverNow() {
    if (discoverNow_)
        discoverNow_->endNow();
}

void CStation::begin() {
    liveStat_->reset();
    liveDiscover_->reset();
    reminders_->reset();
    busy_ = reloadWaiting_ = unreadable_ = saveOwed_ = false;
    saveTicks_ = doc_->upgradePending() ? upgradeSaveTicks : 0;
    startTimers(firstReminderPeriod);
    redraw();
    refillListView();
    if (wantsLiveStat())
        liveStat_->toggle();
}

void CStation::startTimers(std::chrono::milliseconds reminderPeriod) {
    if (shutDown_)
        return;
    if (!watchTimer_->start(watchPeriod) || !reminderTimer_->start(reminderPeriod))
        services_.log.LogMessage("System is out of timer resource!", true);
}

void CStation::stopTimers() {
    watchTimer_->stop();
    reminderTimer_->stop();
}

std::optional<FileError> CStation::saveDatafile() {
    if (busy_) {
        saveOwed_ = true;
        return std::nullopt;
    }
    auto error = save();
    refillListView();
    return error;
}

std::optional<FileError> CStation::save(CMirovaneDoc::Attempt attempt) {
    if (busy_) {
        saveOwed_ = true;
        return std::nullopt;
    }
    auto error = lastSaveError_ = doc_->save(attempt);
    if (!error && !doc_->path().empty()) {
        doc_->setPendingChanges(false);
        unreadable_ = false;
    }
    saveOwed_ = error && doc_->unsavedEdits();
    if (doc_->readAgainBySave())
        afterReadAgain();
    return error;
}

void CStation::afterReadAgain() {
    readAgainMeanwhile_ = true;
    if (reloading_)
        return;
    reloading_ = true;
    unreadable_ = false;
    tellOfReadAgain();
    reloading_ = false;
}

/// Steps that are under way go on: they work on copies, and find their device by its number. A question may
/// stand there for hours, and the save that follows the answer may bring yet another owner along, also of the
/// feature that was looked at before.
void CStation::tellOfReadAgain() {
    do {
        readAgainMeanwhile_ = false;
        liveStat_->afterReload();
        liveDiscover_->afterReload();
        if (discoverNow_)
            discoverNow_->afterReload();
    } while (readAgainMeanwhile_);
    redraw();
}

std::optional<FileError> CStation::saveDatafileAs(const std::string& path) {
    settleReload();
    // The file that is left must not go on naming this station as the one that works on it.
    const bool leaving = !doc_->path().empty() && absolutePath(path) != doc_->path();
    const bool takesLiveStat = leaving && liveStat_->enabled();
    const bool takesDiscover = leaving && liveDiscover_->enabled();
    if (leaving)
        endDiscoverNow();
    if (takesLiveStat)
        liveStat_->disableNow();
    if (takesDiscover)
        liveDiscover_->disableNow();
    auto error = doc_->saveAs(path);
    if (!error) {
        doc_->setPendingChanges(false);
        unreadable_ = saveOwed_ = false;
    }
    if (doc_->readAgainBySave())
        afterReadAgain();
    if (takesLiveStat)
        liveStat_->toggle();
    if (takesDiscover)
        liveDiscover_->toggle();
    if (!error)
        refillListView();
    return error;
}

void CStation::setLiveStatSettings(const LiveStatSettings& settings) {
    liveStatSettings_ = settings;
    liveStat_->setSettings(settings);
}

void CStation::waitForLiveStat() {
    liveStat_->stopJobs();
    liveStat_->waitForJobs();
}

/// For a copy of the datafile, which must not be older than the original.
void CStation::settleReload() {
    if (!reloadWaiting_)
        return;
    waitForLiveStat();
    finishReload();
}

/// Who edits goes by what he sees. Where a reload waited the edit was made on the records of before, and the
/// save puts it on top of the file: then the log names what it met there. Made on records that were reloaded
/// under the user's hands it would replace another station's work without a line.
std::optional<FileError> CStation::saveEdit(bool reloadWaited) {
    busy_ = false;
    auto error = saveDatafile();
    redraw();
    if (reloadWaited)
        startTimers(reminderPeriodAfterReload);
    else
        watchTimer_->start(watchPeriod);
    return error;
}

std::optional<FileError> CStation::deleteDevices(std::span<const std::int32_t> recIDs) {
    const bool reloadWaited = std::exchange(reloadWaiting_, false);
    watchTimer_->stop();
    liveStat_->pause();
    busy_ = true;
    services_.log.LogMessage("Deleting item(s)..., waiting for Live Stat to finish with the item.", true);
    waitForLiveStat();
    doc_->removeDevices(recIDs);
    services_.log.LogMessage("Deleted item(s).", true);
    liveStat_->rebind();
    liveStat_->resume();
    if (liveStat_->enabled() && doc_->deviceCount() == 0)
        liveStat_->toggle();
    return saveEdit(reloadWaited);
}

std::optional<FileError> CStation::updateDevices(std::span<const std::int32_t> recIDs,
                                                 const std::function<void(CHardware&)>& change) {
    const bool reloadWaited = std::exchange(reloadWaiting_, false);
    busy_ = true;
    watchTimer_->stop();
    if (recIDs.size() > 1 || (recIDs.size() == 1 && liveStat_->holdsDevice(recIDs.front()))) {
        services_.log.LogMessage("Updating item(s)..., waiting for Live Stat to finish with the items.",
                                 true);
        waitForLiveStat();
    }
    for (const std::int32_t recID : recIDs) {
        if (const CHardware* device = doc_->findDevice(recID))
            doc_->editByUser(*device, change);
    }
    services_.log.LogMessage("Updated Item(s)", true);
    return saveEdit(reloadWaited);
}

std::optional<FileError> CStation::shutDown() {
    if (shutDown_)
        return std::nullopt;
    shutDown_ = true;
    stopTimers();
    busy_ = reloadWaiting_ = false;
    lastSaveError_.reset();
    endDiscoverNow();
    liveStat_->disableNow();
    liveDiscover_->disableNow();
    if (doc_->pendingChanges() || doc_->unsavedEdits())
        saveBackgroundChanges();
    stopTimers();
    auto error = lastSaveError_;
    if (error) { // the user may decide to stay: then the datafile must be watched as before
        shutDown_ = false;
        startTimers(firstReminderPeriod);
    }
    return error;
}

// ---- what the scheduler asks for

bool CStation::askUser(const std::string& question) {
    const Pause pause(*this);
    return services_.dialogs.ask(question);
}

void CStation::failUser(const std::string& text) {
    const Pause pause(*this);
    services_.dialogs.fail(text);
}

SaveResult CStation::saveDatafile(const std::string& note) {
    if (!note.empty())
        doc_->setSaveNote(note);
    const auto before = owners(*doc_);
    // Devices of earlier runs may have waited for the periodic save, which this save makes needless.
    const bool devicesChanged = !note.empty() || doc_->pendingChanges();
    const auto error = save();
    if (devicesChanged || doc_->readAgainBySave()) // otherwise only an owner record changed
        refillListView();
    if (!std::ranges::equal(before, owners(*doc_), sameOwner))
        return SaveResult::Reloaded;
    return error ? SaveResult::Failed : SaveResult::Saved;
}

void CStation::redraw() {
    if (onRedraw)
        onRedraw();
}

void CStation::indicatorsChanged() {
    if (onIndicators)
        onIndicators();
}

void CStation::track(std::int32_t recID) {
    if (onTrack)
        onTrack(recID);
}

void CStation::waiting() {
    if (onWaiting)
        onWaiting();
}

} // namespace mirovane
