#include "ui/frame/editing/SelectCommands.h"

#include "model/FloorMap.h"
#include "model/floor/Hiding.h"

#include <QGuiApplication>

#include <utility>

namespace mirovane {

namespace {

using What = SelectionCommand::What;

constexpr std::array whats = {
    std::pair{CommandId::EditSelectAll, What::All},
    std::pair{CommandId::EditSelectBoxed, What::Boxed},
    std::pair{CommandId::EditSelectMarkedArea, What::MarkedArea},
    std::pair{CommandId::EditSelectType, What::OfType},
    std::pair{CommandId::EditSelectActive, What::Active},
    std::pair{CommandId::EditSelectInactive, What::Inactive},
};

} // namespace

CSelectCommands::CSelectCommands(const EditingParts& parts) : parts_(parts) {}

void CSelectCommands::connectTo(CCommandActions& actions) {
    connectSelect(actions);
    connectHide(actions);
}

// ---- select

void CSelectCommands::connectSelect(CCommandActions& actions) {
    for (const auto& [id, what] : whats)
        actions.setHandler(id, {[this, what = what](const CommandDefinition& command, bool) {
                                    select({what, command.value});
                                },
                                {}});
}

void CSelectCommands::select(SelectionCommand command) {
    const bool additive = QGuiApplication::keyboardModifiers().testFlag(Qt::ControlModifier);
    const SelectionScene scene{parts_.station.document(), parts_.station.display(),
                               parts_.floor.input().gesture().shown().box, parts_.floor.SelectedMarker(),
                               parts_.floor.input().PointerInMarkedArea()};
    const SelectionOutcome outcome = mirovane::select(command, additive, parts_.station.selection(), scene);
    parts_.log.LogMessage(outcome.message, true);
    if (outcome.forLiveStatNow && outcome.count > 0 &&
        parts_.station.features().liveStat().settings().LSAutoPerform)
        parts_.station.features().liveStat().performNow();
}

// ---- hide

bool CSelectCommands::hasMap() const {
    return !floorMapOf(parts_.station.document()).mapPath.empty();
}

template <typename Change>
void CSelectCommands::hide(Change change) {
    CHiding hiding(parts_.station.display(), parts_.settings, parts_.station.selection());
    change(hiding);
    parts_.floor.viewport()->update();
}

void CSelectCommands::connectHide(CCommandActions& actions) {
    actions.setHandler(CommandId::ViewHideType,
                       {[this](const CommandDefinition& command, bool) {
                            hide([&](CHiding& hiding) { hiding.toggleType(command.value); });
                        },
                        [this](const CommandDefinition& command) {
                            return !parts_.station.display().typeVisible(command.value);
                        }});
    actions.setHandler(CommandId::ViewHideFloorMap,
                       {[this](const CommandDefinition&, bool) {
                            hide([this](CHiding& hiding) { hiding.toggleMap(hasMap()); });
                        },
                        [this](const CommandDefinition&) {
                            return parts_.station.display().FloorMapHidden;
                        }});
    actions.setHandler(
        CommandId::ViewHideAll,
        {[this](const CommandDefinition&, bool) { hide([](CHiding& hiding) { hiding.hideAll(); }); }, {}});
    actions.setHandler(
        CommandId::ViewHideNone,
        {[this](const CommandDefinition&, bool) { hide([](CHiding& hiding) { hiding.hideNone(); }); }, {}});
}

} // namespace mirovane
