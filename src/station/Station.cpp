#include "station/Station.h"

#include "feature/FeatureOwner.h"
#include "platform/files/FilePaths.h"

#include <algorithm>
#include <utility>

namespace mirovane {

namespace {

constexpr std::int64_t heartbeatHours = 3;

/// A window that collects edits makes one every second or two. If each put the next tick off, nothing would
/// be read or saved as long as the user types.
bool stopsWatch(const EditRequest& request) {
    return request.saving == EditRequest::Saving::Now || request.kind != EditRequest::Kind::Settings;
}

} // namespace

CStation::CStation(StationServices services)
    : services_(std::move(services)),
      liveStatSettings_(LiveStatSettings::of(services_.settings)),
      display_(DisplaySettings::of(services_.settings)),
      document_(services_.clock, services_.log, services_.identity),
      selection_(document_),
      link_(document_, services_.files, services_.log),
      kept_(document_, services_.log, services_.stateFolder),
      watch_(link_, document_, services_.files, services_.clock, services_.timers, services_.log, *this),
      door_(document_, services_.log, *this),
      liveMove_(document_, watch_, door_),
      export_(document_, link_, services_.settings, services_.log, services_.makeExportFiles),
      reminders_(document_, services_.timers, [this] { reminderTick(); }),
      features_({document_, services_.timers, services_.log, services_.clock, services_.programs},
                {services_.probes, services_.workers, services_.sweepProbes}, {*this, *this, *this},
                liveStatSettings_) {
    document_.addObserver(*this);
}

CStation::~CStation() {
    shutDown();
    document_.removeObserver(*this);
}

template <typename... Parameters, typename... Arguments>
void CStation::tell(void (StationObserver::*news)(Parameters...), Arguments... arguments) {
    const std::vector<StationObserver*> told = observers_; // whoever is told may go
    for (StationObserver* observer : told)
        if (std::ranges::find(observers_, observer) != observers_.end())
            (observer->*news)(arguments...);
}

// ---- the datafile

void CStation::newDatafile() {
    leaveDatafile();
    link_.newDatafile();
    kept_.unsaved.takeDatafile({});
    begin();
}

std::optional<Datafile::Error> CStation::openDatafile(const std::string& path) {
    std::optional<Datafile::Error> error;
    if (features_.running() || pendingChanges() || document_.unsavedEdits())
        error = link_.whyNotReadable(path);
    if (!error) {
        const bool leaving = watch_.phase() != CDatafileWatch::Phase::Closed;
        leaveDatafile();
        error = link_.open(path);
        if (error && leaving)
            watch_.resume();
    }
    if (error) {
        services_.log.LogTrouble(error->sentence, true);
        return error;
    }
    kept_.unsaved.takeDatafile(link_.path());
    begin();
    if (document_.unsavedEdits())
        saveDatafile();
    return std::nullopt;
}

/// Other stations must not go on believing that this one works on a datafile that it has left.
void CStation::leaveDatafile() {
    watch_.close();
    endWork();
}

/// What Discover Now found and what Live Stat changed is saved, and exported, before the datafile is left.
void CStation::endWork() {
    features_.end();
    if (!pendingChanges() && !document_.unsavedEdits())
        return;
    settleList();
    watch_.save();
}

void CStation::begin() {
    features_.reset();
    tellProgramsThePath();
    discovered_ = 0;
    reminders_.reset();
    door_.forgetHistory();
    liveMove_.forget();
    display_.FloorMapHidden = false;
    export_.takeDatafile();
    watch_.begin();
    redraw();
    settleList();
    if (wantsLiveStat())
        features_.liveStat().toggle();
}

void CStation::tellProgramsThePath() {
    if (services_.programs)
        services_.programs->setDatafile(link_.path().empty() ? std::string()
                                                             : pathWithoutLinks(link_.path()));
}

SaveReport CStation::saveDatafile() {
    if (door_.postponesSave())
        return {};
    SaveReport report = watch_.save();
    if (!watch_.busy()) // the reload settles it; the export file must not be ahead of the datafile
        settleList();
    return report;
}

SaveReport CStation::saveDatafileAs(const std::string& path) {
    readNews(); // the copy must not be older than the original
    const bool leaving = !link_.path().empty() && absolutePath(path) != link_.path();
    CFeatures::Moving moving;
    if (leaving)
        moving = features_.leaveDatafile();
    const std::string left = link_.path();
    SaveReport report = watch_.saveAs(path);
    if (report.saved() && link_.path() != left) {
        tellProgramsThePath();
        export_.takeDatafile();
    }
    features_.goOn(moving);
    if (!report.failed())
        settleList();
    return report;
}

std::optional<FileError> CStation::shutDown() {
    if (watch_.phase() == CDatafileWatch::Phase::Closed)
        return std::nullopt;
    watch_.close();
    watch_.forgetLastError();
    endWork();
    auto error = watch_.lastError();
    if (error) // the user may decide to stay: then the datafile must be watched as before
        watch_.resume();
    return error;
}

void CStation::setLiveStatSettings(const LiveStatSettings& settings) {
    liveStatSettings_ = settings;
    features_.liveStat().setSettings(settings);
}

// ---- edits

SaveReport CStation::edit(const EditRequest& request, const std::function<void(CMirovaneDoc&)>& change) {
    return door_.edit(request, change);
}

void CStation::bringToFront(const CHardware& device) {
    std::size_t end = document_.size();
    while (end > 0 && !document_.at(end - 1).isDevice())
        --end;
    const auto place = document_.indexOfDevice(device.RecID);
    if (end == 0 || !place || &document_.at(*place) != &device || *place == end - 1)
        return;
    if (!liveStat().holdsDevice(document_.at(end - 1).RecID))
        document_.exchange(*place, end - 1);
}

SaveReport CStation::undo() {
    if (liveMove_.held())
        return {}; // what is under the hand is not a step yet
    readNews();
    return door_.undo();
}

SaveReport CStation::redo() {
    if (liveMove_.held())
        return {};
    readNews();
    return door_.redo();
}

/// What another station has saved must be seen to stay.
void CStation::readNews() {
    if (door_.changing() || !watch_.behind())
        return;
    waitForLiveStat();
    watch_.catchUp();
}

void CStation::historyChanged() {
    tell(&StationObserver::historyChanged);
}

void CStation::waitForLiveStat() {
    features_.liveStat().stopJobs();
    features_.liveStat().waitForJobs();
}

void CStation::beforeEdit(const EditRequest& request) {
    if (stopsWatch(request))
        watch_.beginEdit();
    ++pauses_;
    const auto& devices = request.devices;
    if (request.kind == EditRequest::Kind::Delete) {
        features_.liveStat().pause();
        services_.log.LogMessage("Deleting item(s)..., waiting for Live Stat to finish with the item.", true);
        waitForLiveStat();
    } else if (request.kind == EditRequest::Kind::Change &&
               (devices.size() > 1 ||
                (devices.size() == 1 && features_.liveStat().holdsDevice(devices.front().recID)))) {
        services_.log.LogMessage("Updating item(s)..., waiting for Live Stat to finish with the items.",
                                 true);
        waitForLiveStat();
    }
}

SaveReport CStation::afterEdit(const EditRequest& request, bool changed) {
    --pauses_;
    if (request.kind == EditRequest::Kind::Change)
        services_.log.LogMessage("Updated Item(s)", true);
    if (request.kind == EditRequest::Kind::Delete) {
        services_.log.LogMessage("Deleted item(s).", true);
        features_.liveStat().rebind();
        features_.liveStat().resume();
        if (features_.liveStat().enabled() && document_.deviceCount() == 0)
            features_.liveStat().toggle();
    }
    // A save may take long to fail; the one before has.
    if (request.saving == EditRequest::Saving::Later || lastSaveError())
        kept_.unsaved.keep(link_.path());
    SaveReport report;
    if (request.saving == EditRequest::Saving::Later)
        watch_.setPendingChanges(pendingChanges() || changed);
    else
        report = saveDatafile();
    redraw();
    if (stopsWatch(request))
        watch_.endEdit();
    return report;
}

std::string CStation::logFilePath() const {
    return services_.stateFolder.empty() ? std::string() : CLogFile::pathIn(services_.stateFolder);
}

void CStation::settleList() {
    tell(&StationObserver::listSettled);
    export_.afterChanges();
}

std::optional<FileError> CStation::exportNow(const ExportSettings& settings) {
    tell(&StationObserver::listSettled); // the file has the order that is seen
    return export_.now(settings);
}

void CStation::documentReplaced() {
    display_.readAtOpen(services_.settings);
}

// ---- reminders and the sign of life

void CStation::startReminders(std::chrono::milliseconds period) {
    if (!reminders_.start(period))
        services_.log.LogTrouble("System is out of timer resource!", true);
}

void CStation::reminderTick() {
    if (holdsStill())
        return;
    if (reminders_.check())
        tell(&StationObserver::remindersChanged);
    keepOwnerAlive();
}

/// Keeps the sign of life fresh while Live Stat runs here, and replaces an owner that has been silent for
/// hours. A sign from the future was given by a clock that went wrong: it would look fresh for too long.
void CStation::keepOwnerAlive() {
    const std::int64_t silent = LiveStatHeartbeat::silentHours(document_);
    const bool takesOver = features_.liveStat().ownerSilentHours() >= LiveStatHeartbeat::takeOverHours &&
                           !features_.liveStat().enabled() && document_.deviceCount() > 0 && wantsLiveStat();
    if (takesOver)
        features_.liveStat()
            .toggle(); // first: who answers its question may look how long the owner has been silent
    const bool refused = takesOver && !features_.liveStat().enabled();
    if (refused ||
        (!takesOver && (silent >= heartbeatHours || silent < 0) && features_.liveStat().enabled())) {
        LiveStatHeartbeat::signOfLife(document_);
        changesPending();
    }
}

// ---- what the features and the watch ask for

/// Live Stat and Live Discover look whether another station has claimed them.
void CStation::datafileRead() {
    features_.afterReload();
    redraw();
}

bool CStation::ask(const Question& question) {
    const CPause pause(*this);
    return services_.dialogs.ask(question);
}

void CStation::failUser(const std::string& text) {
    const CPause pause(*this);
    services_.dialogs.fail(text);
}

SaveResult CStation::saveNow(SaveNote note) {
    if (door_.postponesSave())
        return SaveResult::Saved; // at the end of the edit; a failure is told and tried again there
    const auto before = FeatureOwner::stations(document_);
    // Devices of earlier runs may have waited for the periodic save, which this save makes needless.
    const bool devicesChanged = note != SaveNote::None || pendingChanges();
    const SaveReport report = watch_.save(note);
    if (devicesChanged || report.readAgain) // otherwise only an owner record changed
        settleList();
    if (before != FeatureOwner::stations(document_))
        return SaveResult::Reloaded;
    return report.failed() ? SaveResult::Failed : SaveResult::Saved;
}

/// The watch rests meanwhile: a reload in the middle would replace what is being saved.
void CStation::deviceDiscovered() {
    ++discovered_;
    watch_.beginEdit();
    if (saveDatafile().failed())
        changesPending(); // the save was reported; the next periodic one takes it along
    redraw();
    indicatorsChanged();
    watch_.endEdit();
}

void CStation::recordEdit(const std::string& name, const std::function<void()>& change) {
    door_.record(name, change);
    if (door_.takePostponedSave())
        saveDatafile();
}

void CStation::hostsDiscovered(std::size_t count) {
    discovered_ += count;
    redraw();
}

void CStation::redraw() {
    tell(&StationObserver::redrawNeeded);
}

void CStation::indicatorsChanged() {
    tell(&StationObserver::indicatorsChanged);
}

void CStation::track(std::int32_t recID) {
    tell(&StationObserver::deviceTracked, recID);
}

void CStation::waiting() {
    tell(&StationObserver::waiting);
}

} // namespace mirovane
