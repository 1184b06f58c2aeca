#include "ui/frame/table/CommandNeeds.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

constexpr std::array needs = {
    NeedDefinition{
        CommandNeeds::Devices, &CommandState::hasDevices,
        QT_TRANSLATE_NOOP("Commands", "There are no devices yet: add one, or choose Tools, Discover Now...")},
    NeedDefinition{CommandNeeds::Selection, &CommandState::hasSelection,
                   QT_TRANSLATE_NOOP("Commands", "No device is selected: click one on the floor first")},
    NeedDefinition{CommandNeeds::FloorSelection, &CommandState::hasFloorSelection,
                   QT_TRANSLATE_NOOP("Commands", "No device of the floor is selected: click one first")},
    NeedDefinition{CommandNeeds::Undo, &CommandState::hasUndo,
                   QT_TRANSLATE_NOOP("Commands", "Nothing was edited since the datafile was opened")},
    NeedDefinition{CommandNeeds::Redo, &CommandState::hasRedo,
                   QT_TRANSLATE_NOOP("Commands", "No edit was taken back since the latest one")},
    NeedDefinition{
        CommandNeeds::LiveStat, &CommandState::hasDevices,
        QT_TRANSLATE_NOOP("Commands", "There are no devices yet: add one, or choose Tools, Discover Now...")},
    NeedDefinition{CommandNeeds::LiveStat, &CommandState::mayRunLiveStat,
                   QT_TRANSLATE_NOOP("Commands", "The datafile cannot be written, and no other station would "
                                                 "learn that Live Stat runs here")},
    NeedDefinition{CommandNeeds::LiveDiscover, &CommandState::mayRunLiveDiscover,
                   QT_TRANSLATE_NOOP("Commands", "The datafile cannot be written, and no other station would "
                                                 "learn that Live Discover runs here")},
    NeedDefinition{CommandNeeds::LiveDiscover, &CommandState::hasAddressRanges,
                   QT_TRANSLATE_NOOP("Commands", "Live Discover needs an address range: Tools, Live "
                                                 "Stat/Discover Option...")},
    NeedDefinition{CommandNeeds::DueReminder, &CommandState::hasDueReminder,
                   QT_TRANSLATE_NOOP("Commands", "No selected device has a due reminder: F4 finds one")},
};

} // namespace

std::span<const NeedDefinition> needTable() {
    return needs;
}

std::string_view unmetReason(CommandNeeds need, const CommandState& state) {
    const auto unmet = std::ranges::find_if(needs, [need, &state](const NeedDefinition& definition) {
        return definition.need == need && !(state.*definition.met);
    });
    return unmet == needs.end() ? std::string_view() : unmet->reason;
}

} // namespace mirovane
