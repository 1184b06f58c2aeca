#include "station/FeatureAnswers.h"

#include "feature/FeatureOwner.h"
#include "station/Station.h"

namespace mirovane {

bool CFeatureAnswers::ask(const Question& question) {
    const CPause pause(pauses_);
    return dialogs_.ask(question);
}

void CFeatureAnswers::failUser(const std::string& text) {
    const CPause pause(pauses_);
    dialogs_.fail(text);
}

bool CFeatureAnswers::holdsStill() const {
    return station_.busy();
}

SaveResult CFeatureAnswers::save(SaveNote note, WaitFor waitFor) {
    if (edits_.door().postponesSave())
        return SaveResult::Saved; // at the end of the edit; a failure is told and tried again there
    const auto before = FeatureOwner::stations(station_.document());
    // Devices of earlier runs may have waited for the periodic save, which this save makes needless.
    const bool devicesChanged = note != SaveNote::None || watch_.pendingChanges();
    const SaveReport report = watch_.save(note, Attempt::First, waitFor);
    if (devicesChanged || report.readAgain) // otherwise only an owner record changed
        station_.settleList();
    if (before != FeatureOwner::stations(station_.document()))
        return SaveResult::Reloaded;
    return report.failed() ? SaveResult::Failed : SaveResult::Saved;
}

/// The watch rests meanwhile: a reload in the middle would replace what is being saved.
void CFeatureAnswers::deviceDiscovered() {
    ++discovered_;
    watch_.beginEdit();
    if (station_.saveDatafile().failed())
        changesPending(); // the save was reported; the next periodic one takes it along
    redraw();
    indicatorsChanged();
    watch_.endEdit();
}

void CFeatureAnswers::recordEdit(const std::string& name, const std::function<void()>& change) {
    edits_.door().record(name, change);
    if (edits_.door().takePostponedSave())
        station_.saveDatafile();
}

void CFeatureAnswers::hostsDiscovered(std::size_t count) {
    discovered_ += count;
    redraw();
}

void CFeatureAnswers::redraw() {
    news_.tell(&StationObserver::redrawNeeded);
}

void CFeatureAnswers::indicatorsChanged() {
    news_.tell(&StationObserver::indicatorsChanged);
}

void CFeatureAnswers::track(std::int32_t recID) {
    news_.tell(&StationObserver::deviceTracked, recID);
}

} // namespace mirovane
