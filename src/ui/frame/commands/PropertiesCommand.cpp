#include "ui/frame/commands/PropertiesCommand.h"

namespace mirovane {

CPropertiesCommand::CPropertiesCommand(const Parts& parts)
    : window_(parts.window), editor_({parts.station, parts.clock, prompts_, parts.mapSize}, nullptr) {
    QObject::connect(&editor_, &CPropertiesEditor::showDevice, &parts.window, parts.showDevice);
    QObject::connect(&editor_, &CPropertiesEditor::markArea, &parts.window, parts.markArea);
}

void CPropertiesCommand::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::EditProperties, {[this](const CommandDefinition&, bool) { run(); }, {}});
}

} // namespace mirovane
