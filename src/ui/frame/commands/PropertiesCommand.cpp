#include "ui/frame/commands/PropertiesCommand.h"

#include <algorithm>
#include <utility>

namespace mirovane {

CPropertiesCommand::CPropertiesCommand(const Parts& parts)
    : selection_(parts.station.selection()),
      window_(parts.window),
      endMarking_(parts.endMarking),
      editor_({parts.station, parts.clock, prompts_, parts.mapSize}, nullptr) {
    QObject::connect(&editor_, &CPropertiesEditor::showDevice, &parts.window, parts.showDevice);
    QObject::connect(&editor_, &CPropertiesEditor::markArea, &parts.window, parts.markArea);
}

void CPropertiesCommand::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::EditProperties, {[this](const CommandDefinition&, bool) { run(); }, {}});
}

void CPropertiesCommand::run() {
    endMarking(selection_.members(CSelection::Scope::Floor));
    editor_.openForFloor(window_);
}

void CPropertiesCommand::run(const std::vector<const CHardware*>& devices, QWidget& window,
                             CPropertiesEditor::Neighbours neighbours) {
    endMarking(devices);
    editor_.open(devices, window, std::move(neighbours));
}

void CPropertiesCommand::endMarking(const std::vector<const CHardware*>& devices) const {
    if (std::any_of(devices.begin(), devices.end(), [](const CHardware* device) {
            return floorCode(device->Type) == DeviceType::LocationMarker;
        }))
        endMarking_();
}

} // namespace mirovane
