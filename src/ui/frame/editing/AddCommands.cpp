#include "ui/frame/editing/AddCommands.h"

namespace mirovane {

namespace {

/// Half of an icon, so that the copy can be seen and taken hold of beside what it is a copy of.
constexpr MapPoint duplicateOffset{16, 16};

} // namespace

CAddCommands::CAddCommands(const EditingParts& parts)
    : parts_(parts), runner_(parts.station, parts.dialogs) {}

void CAddCommands::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::ToolsAdd,
                       {[this](const CommandDefinition& command, bool) { add(command.value); }, {}});
    actions.setHandler(CommandId::EditDuplicate,
                       {[this](const CommandDefinition&, bool) { duplicate(); }, {}});
}

void CAddCommands::add(std::int32_t type) {
    if (!parts_.station.display().typeVisible(type)) {
        parts_.dialogs.fail("The device is hidden. Un-hide device and repeat the Add.");
        return;
    }
    if (!runner_.runAdding(addDevice(type, newDevicePlace(parts_.floor.window())), 1))
        return;
    parts_.floor.setSelectedMarker(0);
    parts_.log.LogMessage(addedMessage(type), true);
}

void CAddCommands::duplicate() {
    const auto devices = parts_.station.selection().members(CSelection::Scope::Floor);
    if (devices.empty())
        return;
    std::vector<CHardware> copies = duplicates(parts_.station.document(), devices, duplicateOffset);
    const std::size_t wanted = copies.size();
    std::size_t added = 0;
    runner_.runAdding(addDevices(stepName("Duplicate", wanted), std::move(copies), added), wanted);
    parts_.log.LogMessage("Duplicated " + std::to_string(added) + " device(s)", true);
}

} // namespace mirovane
