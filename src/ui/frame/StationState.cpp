#include "ui/frame/StationState.h"

namespace mirovane {

CommandState commandState(const CStation& station) {
    const CMirovaneDoc& document = station.document();
    const bool hasRanges = document.findSpecial(SpecialType::DiscoverRangeRecord) != nullptr;
    CommandState state;
    state.hasDevices = document.deviceCount() > 0;
    state.hasSelection = !station.selection().empty();
    state.hasFloorSelection = !station.selection().empty(CSelection::Scope::Floor);
    state.hasUndo = station.history().next(CEditHistory::Way::Undo) != nullptr;
    state.hasRedo = station.history().next(CEditHistory::Way::Redo) != nullptr;
    state.hasAddressRanges = hasRanges || station.liveDiscover().enabled(); // it can be switched off
    return state;
}

IndicatorState indicatorState(const CStation& station) {
    IndicatorState state;
    state.remindersDue = station.reminders().DueCount();
    state.liveDiscoverEnabled = station.liveDiscover().enabled();
    state.discovered = station.discovered();
    state.liveStatText = QString::fromStdString(station.liveStat().statusText());
    state.anyTypeHidden = station.display().VisibleTypes != -1;
    state.floorMapHidden = station.display().FloorMapHidden;
    return state;
}

} // namespace mirovane
