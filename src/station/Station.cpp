#include "station/Station.h"

#include "platform/files/FilePaths.h"
#include "station/SignOfLife.h"

#include <utility>

namespace mirovane {

CStation::CStation(StationServices services)
    : services_(std::move(services)),
      display_(DisplaySettings::of(services_.settings)),
      document_(services_.clock, services_.log, services_.identity),
      selection_(document_),
      link_(document_, services_.files, services_.log, {services_.datafileWorkers, &watchAnswers_}),
      kept_(document_, services_.log, services_.stateFolder),
      featureAnswers_(*this, watch_, edits_, services_.dialogs, pauses_, news_),
      watchAnswers_(*this, {features_, reminders_, kept_, pauses_, news_, services_.dialogs, services_.log}),
      watch_(link_, document_, services_.clock, services_.timers, services_.log, watchAnswers_),
      edits_(*this, {document_, watch_, features_, kept_, pauses_, news_, services_.log}),
      export_(document_, link_, services_.settings, services_.log,
              {services_.makeExportFiles, services_.datafileWorkers ? &watchAnswers_ : nullptr}),
      reminders_(document_, services_.timers, [this] { reminderTick(); }),
      features_({document_, services_.timers, services_.log, services_.clock, services_.programs},
                {services_.probes, services_.workers, services_.sweepProbes},
                {featureAnswers_, featureAnswers_, featureAnswers_},
                LiveStatSettings::of(services_.settings)) {
    document_.addObserver(*this);
}

CStation::~CStation() {
    shutDown();
    document_.removeObserver(*this);
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
    if (features_.running() || watch_.pendingChanges() || document_.unsavedEdits())
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
    const auto held = link_.heldCriteria();
    link_.holdCriteria(std::nullopt);
    features_.end();
    watch_.settle();
    if (watch_.pendingChanges() || document_.unsavedEdits()) {
        settleList();
        watch_.save(SaveNote::None, Attempt::First, WaitFor::Answer);
    }
    link_.holdCriteria(held); // the window goes on with the next datafile's
}

void CStation::begin() {
    features_.reset();
    tellProgramsThePath();
    featureAnswers_.forget();
    reminders_.reset();
    edits_.forget();
    display_.FloorMapHidden = false;
    export_.takeDatafile();
    watch_.begin();
    news_.tell(&StationObserver::floorOpened);
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

SaveReport CStation::saveDatafile(WaitFor waitFor) {
    if (edits_.door().postponesSave())
        return {};
    SaveReport report = watch_.save(SaveNote::None, Attempt::First, waitFor);
    if (!watch_.busy()) // the reload settles it; the export file must not be ahead of the datafile
        settleList();
    return report;
}

SaveReport CStation::saveDatafileAs(const std::string& path) {
    edits_.readNews(); // the copy must not be older than the original
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

bool CStation::readOnly() const {
    const auto& error = watch_.lastError();
    return !link_.path().empty() && (error ? error->kind == FileError::Kind::Denied : !link_.writable());
}

SaveReport CStation::showCriteriaOf(std::optional<std::int32_t> type) {
    features_.liveStat().holdType(type);
    const auto before = link_.heldCriteria();
    link_.holdCriteria(type);
    return before && before != type && link_.hasToSave() ? saveDatafile() : SaveReport{};
}

// ---- when something was changed

void CStation::settleList() {
    news_.tell(&StationObserver::listSettled);
    export_.afterChanges();
}

std::optional<FileError> CStation::exportNow(const ExportSettings& settings) {
    news_.tell(&StationObserver::listSettled); // the file has the order that is seen
    return export_.now(settings);
}

void CStation::documentReplaced() {
    display_.readAtOpen(services_.settings);
}

void CStation::reminderTick() {
    if (busy())
        return;
    if (reminders_.check())
        news_.tell(&StationObserver::remindersChanged);
    if (keepOwnerAlive(document_, features_.liveStat(), wantsLiveStat()))
        changesPending();
}

bool CStation::wantsLiveStat() const {
    return services_.autoStart && features_.liveStat().settings().LSAutoStart;
}

} // namespace mirovane
