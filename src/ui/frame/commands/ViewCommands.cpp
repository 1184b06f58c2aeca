#include "ui/frame/commands/ViewCommands.h"

namespace mirovane {

CViewCommands::CViewCommands(DisplaySettings& display, CSettings& settings, Parts parts)
    : display_(display), settings_(settings), parts_(std::move(parts)) {}

void CViewCommands::connectTo(CCommandActions& actions) {
    const auto bar = [this, &actions](CommandId id, QWidget& widget) {
        for (const CommandDefinition& command : commandTable())
            if (command.id == id)
                widget.setVisible(settings_.read(command.setting, 1) != 0);
        actions.setHandler(id, {[this, &widget](const CommandDefinition& command, bool on) {
                                    widget.setVisible(on);
                                    settings_.write(command.setting, on ? 1 : 0);
                                },
                                [&widget](const CommandDefinition&) {
                                    return !widget.isHidden();
                                }});
    };
    bar(CommandId::ViewToolbar, parts_.toolbar);
    bar(CommandId::ViewStatusBar, parts_.statusBar);
    actions.setHandler(CommandId::ViewDisplayToggle,
                       {[this](const CommandDefinition& command, bool on) { setDisplay(command, on); },
                        [this](const CommandDefinition& command) {
                            return isDisplayed(command);
                        }});
    actions.setHandler(CommandId::ViewMessageLogs,
                       {[this](const CommandDefinition&, bool) { parts_.showMessageLog(); }, {}});
    actions.setHandler(CommandId::ViewListView,
                       {[this](const CommandDefinition&, bool) { parts_.showListView(); }, {}});
}

void CViewCommands::setDisplay(const CommandDefinition& command, bool on) {
    const auto toggle = displayToggle(command.setting);
    if (!toggle)
        return;
    display_.*toggle = on;
    settings_.write(command.setting, on ? 1 : 0);
    parts_.repaintFloor();
}

bool CViewCommands::isDisplayed(const CommandDefinition& command) const {
    const auto toggle = displayToggle(command.setting);
    return toggle && display_.*toggle;
}

} // namespace mirovane
