#include "ui/frame/bars/StationState.h"

#include "feature/FeatureOwner.h"
#include "station/ReminderEdits.h"
#include "ui/widgets/DialogText.h"

#include <QDateTime>
#include <QLocale>

namespace mirovane {

namespace {

/// When it was switched on there the datafile does not tell; the owner's latest sign is what there is.
QString elsewhere(const CMirovaneDoc& document, Feature feature) {
    if (!FeatureOwner::isElsewhere(document, feature))
        return {};
    const OwnerValues owner = FeatureOwner::values(document, feature);
    const QString who = shownText(owner.station.computerName + "\\" + owner.station.userName);
    const QString when =
        QLocale().toString(QDateTime::fromSecsSinceEpoch(owner.modified), QLocale::ShortFormat);
    return feature == Feature::LiveStat
               ? QObject::tr("Another station runs it: %1, last sign of life %2").arg(who, when)
               : QObject::tr("Another station runs it: %1, last discovery %2").arg(who, when);
}

} // namespace

CommandState commandState(const CStation& station) {
    const CMirovaneDoc& document = station.document();
    const bool hasRanges = document.findSpecial(SpecialType::DiscoverRangeRecord) != nullptr;
    CommandState state;
    state.hasDevices = document.deviceCount() > 0;
    state.hasSelection = !station.selection().empty();
    state.hasFloorSelection = !station.selection().empty(CSelection::Scope::Floor);
    state.hasUndo = station.edits().history().next(CEditHistory::Way::Undo) != nullptr;
    state.hasRedo = station.edits().history().next(CEditHistory::Way::Redo) != nullptr;
    state.hasAddressRanges =
        hasRanges || station.features().liveDiscover().enabled(); // it can be switched off
    state.mayRunLiveStat = !station.readOnly() || station.features().liveStat().enabled();
    state.mayRunLiveDiscover = !station.readOnly() || station.features().liveDiscover().enabled();
    state.hasDueReminder = !selectedDueDevices(station).empty();
    return state;
}

IndicatorState indicatorState(const CStation& station) {
    IndicatorState state;
    state.remindersDue = station.reminders().DueCount();
    state.liveDiscoverEnabled = station.features().liveDiscover().enabled();
    state.discovered = station.discovered();
    state.liveStatText = QString::fromStdString(station.features().liveStat().statusText());
    state.liveStatElsewhere = elsewhere(station.document(), Feature::LiveStat);
    state.liveDiscoverElsewhere = elsewhere(station.document(), Feature::LiveDiscover);
    state.anyTypeHidden = station.display().VisibleTypes != -1;
    state.floorMapHidden = station.display().FloorMapHidden;
    return state;
}

} // namespace mirovane
