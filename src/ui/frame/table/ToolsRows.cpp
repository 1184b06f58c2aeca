#include "model/records/Hardware.h"
#include "ui/frame/table/CommandRows.h"

#include <QCoreApplication>

#include <array>

namespace mirovane {

namespace {

constexpr CommandDefinition add(std::int32_t type, std::string_view name, std::string_view text,
                                bool groupStart = false) {
    return {.id = CommandId::ToolsAdd,
            .name = name,
            .menu = MenuId::Tools,
            .text = text,
            .help = QT_TRANSLATE_NOOP("Commands", "Add one to the middle of the floor"),
            .value = type,
            .groupStart = groupStart};
}

// Rows that are alike line up; the formatter would give each a shape of its own.
// clang-format off
constexpr auto toolsTable = std::to_array<CommandDefinition>({
    {.id = CommandId::ToolsFloorMap, .name = "toolsFloorMap", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "&Floor Map..."),
     .help = QT_TRANSLATE_NOOP("Commands", "Choose the picture of the floor")},
    {.id = CommandId::ToolsPhotoPath, .name = "toolsPhotoPath", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "Users Photo Path.."),
     .help = QT_TRANSLATE_NOOP("Commands", "Choose the folder of the users' photos, and their size")},
    {.id = CommandId::ToolsLiveStatOptions, .name = "toolsLiveStatOptions", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "Live Stat/Discover &Option..."),
     .help = QT_TRANSLATE_NOOP("Commands", "Set what Live Stat does with each device type, and how fast"),
     .groupStart = true},
    {.id = CommandId::ToolsLiveStat, .name = "toolsLiveStat", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "&Live Stat (LS - Loop)"),
     .help = QT_TRANSLATE_NOOP("Commands", "Check all devices, over and over"),
     .needs = CommandNeeds::LiveStat, .checkable = true},
    {.id = CommandId::ToolsLiveDiscover, .name = "toolsLiveDiscover", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "Live Discover (LD - Loop)"),
     .help = QT_TRANSLATE_NOOP("Commands", "Look for new hosts in the address ranges of the options, one "
                                            "every few seconds"),
     .needs = CommandNeeds::LiveDiscover, .checkable = true},
    {.id = CommandId::ToolsDiscoverNow, .name = "toolsDiscoverNow", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "D&iscover Now..."),
     .help = QT_TRANSLATE_NOOP("Commands", "Ask all address ranges at once and add the hosts that answer")},
    {.id = CommandId::ToolsLiveStatNow, .name = "toolsLiveStatNow", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "Perform Live Stat &Now on selected object(s)"),
     .help = QT_TRANSLATE_NOOP("Commands", "Check the selected devices now"),
     .needs = CommandNeeds::Selection},
    {.id = CommandId::ToolsResetLiveStatus, .name = "toolsResetLiveStatus", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "Reset Live Status"),
     .help = QT_TRANSLATE_NOOP("Commands", "Forget whether the selected devices were found on or off"),
     .needs = CommandNeeds::Selection},
    {.id = CommandId::ToolsTrackLiveStat, .name = "toolsTrackLiveStat", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "Track \"Live Stat\""),
     .help = QT_TRANSLATE_NOOP("Commands", "Follow Live Stat from device to device on the floor"),
     .checkable = true},
    {.id = CommandId::ToolsGroupByProximity, .name = "toolsGroupByProximity", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "&Group by proximity"),
     .help = QT_TRANSLATE_NOOP("Commands", "Put each device next to the one nearest to it in the list"),
     .needs = CommandNeeds::Devices},
    {.id = CommandId::ToolsApplications, .name = "toolsApplications", .menu = MenuId::Tools,
     .text = QT_TRANSLATE_NOOP("Commands", "Add &Applications.."),
     .help = QT_TRANSLATE_NOOP("Commands", "Name the programs that can be started for the selected devices"),
     .groupStart = true},
    add(DeviceType::LocationMarker, "toolsAddLocationMarker", QT_TRANSLATE_NOOP("Commands", "Add Location Mar&ker"), true),
    add(DeviceType::Jack, "toolsAddJack", QT_TRANSLATE_NOOP("Commands", "Add &Jack")),
    add(DeviceType::Computer, "toolsAddComputer", QT_TRANSLATE_NOOP("Commands", "Add &Computer")),
    add(DeviceType::Printer, "toolsAddPrinter", QT_TRANSLATE_NOOP("Commands", "Add &Printer")),
    add(DeviceType::Laptop, "toolsAddLaptop", QT_TRANSLATE_NOOP("Commands", "Add Lap&top")),
    add(DeviceType::Router, "toolsAddRouter", QT_TRANSLATE_NOOP("Commands", "Add &Router")),
    add(DeviceType::Switch, "toolsAddSwitch", QT_TRANSLATE_NOOP("Commands", "Add &Switch")),
    add(DeviceType::Phone, "toolsAddPhone", QT_TRANSLATE_NOOP("Commands", "Add P&hone")),
    add(DeviceType::Camera, "toolsAddCamera", QT_TRANSLATE_NOOP("Commands", "Add Ca&mera")),
    add(DeviceType::CardModule, "toolsAddCardModule", QT_TRANSLATE_NOOP("Commands", "Add Car&d Module")),
    add(DeviceType::Ups, "toolsAddUps", QT_TRANSLATE_NOOP("Commands", "Add &UPS")),
    add(DeviceType::Wireless, "toolsAddWireless", QT_TRANSLATE_NOOP("Commands", "Add Wir&eless")),
    add(DeviceType::Unknown, "toolsAddUnknown", QT_TRANSLATE_NOOP("Commands", "Add Unknown")),
});
// clang-format on

} // namespace

std::span<const CommandDefinition> toolsCommands() {
    return toolsTable;
}

} // namespace mirovane
