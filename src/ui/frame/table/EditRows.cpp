#include "model/floor/Arrange.h"
#include "model/records/Hardware.h"
#include "ui/frame/table/CommandRows.h"

#include <QCoreApplication>

#include <array>

namespace mirovane {

namespace {

constexpr CommandDefinition edit(CommandId id, std::string_view name, std::string_view text,
                                 std::string_view keys, std::string_view help,
                                 CommandNeeds needs = CommandNeeds::Nothing, bool groupStart = false) {
    return {.id = id,
            .name = name,
            .menu = MenuId::Edit,
            .text = text,
            .keys = keys,
            .help = help,
            .needs = needs,
            .groupStart = groupStart};
}

constexpr CommandDefinition arranging(Arrangement arrangement, std::string_view name, std::string_view text,
                                      std::string_view help, bool groupStart = false) {
    return {.id = CommandId::EditArrange,
            .name = name,
            .menu = MenuId::Arrange,
            .text = text,
            .help = help,
            .value = static_cast<std::int32_t>(arrangement),
            .needs = CommandNeeds::FloorSelection,
            .groupStart = groupStart};
}

constexpr CommandDefinition select(CommandId id, std::int32_t type, std::string_view name,
                                   std::string_view text, std::string_view keys, std::string_view help,
                                   bool groupStart = false) {
    return {.id = id,
            .name = name,
            .menu = MenuId::Select,
            .text = text,
            .keys = keys,
            .help = help,
            .value = type,
            .groupStart = groupStart};
}

constexpr CommandDefinition active(std::int32_t type, std::string_view name, std::string_view text,
                                   bool groupStart = false) {
    return select(CommandId::EditSelectActive, type, name, text, "",
                  QT_TRANSLATE_NOOP("Commands", "Select those that were found to be on"), groupStart);
}

constexpr CommandDefinition inactive(std::int32_t type, std::string_view name, std::string_view text,
                                     bool groupStart = false) {
    return select(CommandId::EditSelectInactive, type, name, text, "",
                  QT_TRANSLATE_NOOP("Commands", "Select those that are off or were not checked yet"),
                  groupStart);
}

// Rows that are alike line up; the formatter would give each a shape of its own.
// clang-format off
constexpr auto editTable = std::to_array<CommandDefinition>({
    edit(CommandId::EditUndo, "editUndo", QT_TRANSLATE_NOOP("Commands", "&Undo"), "Ctrl+Z Alt+Backspace",
         QT_TRANSLATE_NOOP("Commands", "Take the latest edit back"), CommandNeeds::Undo),
    edit(CommandId::EditRedo, "editRedo", QT_TRANSLATE_NOOP("Commands", "&Redo"), "Ctrl+Y Ctrl+Shift+Z",
         QT_TRANSLATE_NOOP("Commands", "Make the edit that was taken back again"), CommandNeeds::Redo),
    edit(CommandId::EditCut, "editCut", QT_TRANSLATE_NOOP("Commands", "Cu&t"), "Ctrl+X Shift+Del",
         QT_TRANSLATE_NOOP("Commands", "Copy the selected devices as text and delete them"), CommandNeeds::Selection, true),
    edit(CommandId::EditCopy, "editCopy", QT_TRANSLATE_NOOP("Commands", "&Copy"), "Ctrl+C Ctrl+Ins",
         QT_TRANSLATE_NOOP("Commands", "Copy the selected devices as text, for another floor or a spreadsheet"), CommandNeeds::Selection),
    edit(CommandId::EditPaste, "editPaste", QT_TRANSLATE_NOOP("Commands", "P&aste"), "Ctrl+V Shift+Ins",
         QT_TRANSLATE_NOOP("Commands", "Add the devices of a text that was copied here or in a spreadsheet")),
    edit(CommandId::EditDelete, "editDelete", QT_TRANSLATE_NOOP("Commands", "&Delete"), "Del",
         QT_TRANSLATE_NOOP("Commands", "Delete the selected devices"), CommandNeeds::FloorSelection),
    edit(CommandId::EditDuplicate, "editDuplicate", QT_TRANSLATE_NOOP("Commands", "Dup&licate"), "Ctrl+Shift+D",
         QT_TRANSLATE_NOOP("Commands", "Add a copy of each selected device, its name counted up"), CommandNeeds::FloorSelection),
    edit(CommandId::EditMoveTo, "editMoveTo", QT_TRANSLATE_NOOP("Commands", "&Move to"), "",
         QT_TRANSLATE_NOOP("Commands", "Move the selected devices to the Discovered/Misc window"), CommandNeeds::FloorSelection, true),
    {.id = CommandId::EditFind, .name = "editFind", .menu = MenuId::Edit,
     .text = QT_TRANSLATE_NOOP("Commands", "&Find..."), .keys = "Ctrl+F",
     .help = QT_TRANSLATE_NOOP("Commands", "Find devices by text, by reminder or by due reminder"),
     .needs = CommandNeeds::Devices, .groupStart = true},
    {.id = CommandId::EditFindNext, .name = "editFindNext", .menu = MenuId::Edit,
     .text = QT_TRANSLATE_NOOP("Commands", "Find &Next"), .keys = "F3",
     .help = QT_TRANSLATE_NOOP("Commands", "Find the next device that fits the last search"),
     .needs = CommandNeeds::Devices},
    {.id = CommandId::EditFindReminderDue, .name = "editFindReminderDue", .menu = MenuId::Edit,
     .text = QT_TRANSLATE_NOOP("Commands", "Find Reminder Due"), .keys = "F4",
     .help = QT_TRANSLATE_NOOP("Commands", "Find the next device whose reminder is due"),
     .needs = CommandNeeds::Devices},
    {.id = CommandId::EditQuickFind, .name = "editQuickFind", .menu = MenuId::Edit,
     .text = QT_TRANSLATE_NOOP("Commands", "&Quick Find"), .keys = "Ctrl+K",
     .help = QT_TRANSLATE_NOOP("Commands", "Find a device by anything that is known of it, while you type"),
     .needs = CommandNeeds::Devices},
    arranging(Arrangement::AlignLeft, "editAlignLeft", QT_TRANSLATE_NOOP("Commands", "Align &left"),
              QT_TRANSLATE_NOOP("Commands", "Align the left edges of the selected devices")),
    arranging(Arrangement::AlignCentre, "editAlignCentre", QT_TRANSLATE_NOOP("Commands", "Align &centre"),
              QT_TRANSLATE_NOOP("Commands", "Align the centres of the selected devices below each other")),
    arranging(Arrangement::AlignRight, "editAlignRight", QT_TRANSLATE_NOOP("Commands", "Align &right"),
              QT_TRANSLATE_NOOP("Commands", "Align the right edges of the selected devices")),
    arranging(Arrangement::AlignTop, "editAlignTop", QT_TRANSLATE_NOOP("Commands", "Align &top"),
              QT_TRANSLATE_NOOP("Commands", "Align the top edges of the selected devices")),
    arranging(Arrangement::AlignMiddle, "editAlignMiddle", QT_TRANSLATE_NOOP("Commands", "Align &middle"),
              QT_TRANSLATE_NOOP("Commands", "Align the centres of the selected devices beside each other")),
    arranging(Arrangement::AlignBottom, "editAlignBottom", QT_TRANSLATE_NOOP("Commands", "Align &bottom"),
              QT_TRANSLATE_NOOP("Commands", "Align the bottom edges of the selected devices")),
    arranging(Arrangement::DistributeHorizontally, "editDistributeHorizontally", QT_TRANSLATE_NOOP("Commands", "Distribute &horizontally"),
              QT_TRANSLATE_NOOP("Commands", "Put equal distances between the selected devices from left to right"), true),
    arranging(Arrangement::DistributeVertically, "editDistributeVertically", QT_TRANSLATE_NOOP("Commands", "Distribute &vertically"),
              QT_TRANSLATE_NOOP("Commands", "Put equal distances between the selected devices from top to bottom")),
    select(CommandId::EditSelectAll, 0, "selectAll",
           QT_TRANSLATE_NOOP("Commands", "&All"), "Ctrl+A",
           QT_TRANSLATE_NOOP("Commands", "Select every visible device of the floor")),
    select(CommandId::EditSelectBoxed, 0, "selectBoxed",
           QT_TRANSLATE_NOOP("Commands", "&Boxed"), "Ctrl+B",
           QT_TRANSLATE_NOOP("Commands", "Select the devices inside the box")),
    select(CommandId::EditSelectType, DeviceType::LocationMarker, "selectLocationMarkers",
           QT_TRANSLATE_NOOP("Commands", "Location Markers"), "",
           QT_TRANSLATE_NOOP("Commands", "Select the Location Markers")),
    select(CommandId::EditSelectMarkedArea, 0, "selectMarkedArea",
           QT_TRANSLATE_NOOP("Commands", "Loca&tion Marker's Marked Area"), "Ctrl+T",
           QT_TRANSLATE_NOOP("Commands", "Select the devices on the marked areas of the selected Location Markers")),
    select(CommandId::EditSelectType, DeviceType::Jack, "selectJack",
           QT_TRANSLATE_NOOP("Commands", "Jack"), "",
           QT_TRANSLATE_NOOP("Commands", "Select the jacks"), true),
    active(DeviceType::Computer, "selectActiveComputer", QT_TRANSLATE_NOOP("Commands", "Active Computers"), true),
    active(DeviceType::Printer, "selectActivePrinter", QT_TRANSLATE_NOOP("Commands", "Active Printers")),
    active(DeviceType::Laptop, "selectActiveLaptop", QT_TRANSLATE_NOOP("Commands", "Active Laptops")),
    active(DeviceType::Router, "selectActiveRouter", QT_TRANSLATE_NOOP("Commands", "Active Routers")),
    active(DeviceType::Switch, "selectActiveSwitch", QT_TRANSLATE_NOOP("Commands", "Active Switches")),
    active(DeviceType::Phone, "selectActivePhone", QT_TRANSLATE_NOOP("Commands", "Active Phones")),
    active(DeviceType::Camera, "selectActiveCamera", QT_TRANSLATE_NOOP("Commands", "Active Camera")),
    active(DeviceType::CardModule, "selectActiveCardModule", QT_TRANSLATE_NOOP("Commands", "Active Card Modules")),
    active(DeviceType::Ups, "selectActiveUps", QT_TRANSLATE_NOOP("Commands", "Active UPS")),
    active(DeviceType::Wireless, "selectActiveWireless", QT_TRANSLATE_NOOP("Commands", "Active Wireless")),
    active(DeviceType::Unknown, "selectActiveUnknown", QT_TRANSLATE_NOOP("Commands", "Active Unkown")),
    inactive(DeviceType::Computer, "selectInactiveComputer", QT_TRANSLATE_NOOP("Commands", "Inactive Computers"), true),
    inactive(DeviceType::Printer, "selectInactivePrinter", QT_TRANSLATE_NOOP("Commands", "Inactive Printers")),
    inactive(DeviceType::Laptop, "selectInactiveLaptop", QT_TRANSLATE_NOOP("Commands", "Inactive Laptops")),
    inactive(DeviceType::Router, "selectInactiveRouter", QT_TRANSLATE_NOOP("Commands", "Inactive Routers")),
    inactive(DeviceType::Switch, "selectInactiveSwitch", QT_TRANSLATE_NOOP("Commands", "Inactive Switches")),
    inactive(DeviceType::Phone, "selectInactivePhone", QT_TRANSLATE_NOOP("Commands", "Inactive Phones")),
    inactive(DeviceType::Camera, "selectInactiveCamera", QT_TRANSLATE_NOOP("Commands", "Inactive Camera")),
    inactive(DeviceType::CardModule, "selectInactiveCardModule", QT_TRANSLATE_NOOP("Commands", "Inactive Card Modules")),
    inactive(DeviceType::Ups, "selectInactiveUps", QT_TRANSLATE_NOOP("Commands", "Inactive UPS")),
    inactive(DeviceType::Wireless, "selectInactiveWireless", QT_TRANSLATE_NOOP("Commands", "Inactive Wireless")),
    inactive(DeviceType::Unknown, "selectInactiveUnknown", QT_TRANSLATE_NOOP("Commands", "Inactive Unknown")),
    edit(CommandId::EditProperties, "editProperties", QT_TRANSLATE_NOOP("Commands", "&Properties"), "Alt+Return Alt+Enter",
         QT_TRANSLATE_NOOP("Commands", "Edit the selected devices; without any, look at the floor as a whole"), CommandNeeds::Nothing, true),
    {.id = CommandId::EditProperties, .name = "floorProperties", .menu = MenuId::RightClick,
     .text = QT_TRANSLATE_NOOP("Commands", "P&roperties"),
     .help = QT_TRANSLATE_NOOP("Commands", "Edit the selected devices; without any, look at the floor as a whole")},
});
// clang-format on

} // namespace

std::span<const CommandDefinition> editCommands() {
    return editTable;
}

} // namespace mirovane
