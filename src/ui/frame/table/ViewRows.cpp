#include "model/records/Hardware.h"
#include "ui/floor/geometry/ZoomSteps.h"
#include "ui/frame/table/CommandRows.h"

#include <QCoreApplication>

#include <array>

namespace mirovane {

namespace {

constexpr CommandDefinition displayToggle(MenuId menu, std::string_view setting, std::string_view text,
                                          std::string_view keys, std::string_view help,
                                          bool groupStart = false) {
    return {.id = CommandId::ViewDisplayToggle,
            .name = setting,
            .menu = menu,
            .text = text,
            .keys = keys,
            .help = help,
            .setting = setting,
            .checkable = true,
            .groupStart = groupStart};
}

constexpr CommandDefinition label(std::string_view setting, std::string_view text, std::string_view keys,
                                  std::string_view help, bool groupStart = false) {
    return displayToggle(MenuId::Properties, setting, text, keys, help, groupStart);
}

constexpr CommandDefinition zoom(ZoomCommand command, std::string_view name, std::string_view text,
                                 std::string_view keys, std::string_view help, bool groupStart = false) {
    return {.id = CommandId::ViewZoom,
            .name = name,
            .menu = MenuId::Zoom,
            .text = text,
            .keys = keys,
            .help = help,
            .value = static_cast<std::int32_t>(command),
            .groupStart = groupStart};
}

constexpr CommandDefinition hide(std::int32_t type, std::string_view name, std::string_view text) {
    return {.id = CommandId::ViewHideType,
            .name = name,
            .menu = MenuId::Hide,
            .text = text,
            .help = QT_TRANSLATE_NOOP("Commands", "Hide or show the devices of this type"),
            .value = type,
            .checkable = true};
}

// Rows that are alike line up; the formatter would give each a shape of its own.
// clang-format off
constexpr auto viewTable = std::to_array<CommandDefinition>({
    {.id = CommandId::ViewToolbar, .name = "viewToolbar", .menu = MenuId::View,
     .text = QT_TRANSLATE_NOOP("Commands", "&Toolbar"),
     .help = QT_TRANSLATE_NOOP("Commands", "Show or hide the toolbar"),
     .setting = "ToolbarShow", .checkable = true},
    {.id = CommandId::ViewStatusBar, .name = "viewStatusBar", .menu = MenuId::View,
     .text = QT_TRANSLATE_NOOP("Commands", "&Status Bar"),
     .help = QT_TRANSLATE_NOOP("Commands", "Show or hide the status bar"),
     .setting = "StatusBarShow", .checkable = true},
    displayToggle(MenuId::View, "LSStatusDeviceShow",
                  QT_TRANSLATE_NOOP("Commands", "LS Status on Devices"), "",
                  QT_TRANSLATE_NOOP("Commands", "Draw a ring around devices that Live Stat is checking"),
                  true),
    displayToggle(MenuId::View, "ReminderTitlebarShow",
                  QT_TRANSLATE_NOOP("Commands", "Reminder on Title Bar"), "",
                  QT_TRANSLATE_NOOP("Commands", "Count due reminders in the window's title")),
    displayToggle(MenuId::View, "ReminderDeviceShow",
                  QT_TRANSLATE_NOOP("Commands", "Reminder on Devices"), "",
                  QT_TRANSLATE_NOOP("Commands", "Show the to-do text under devices whose reminder is due")),
    {.id = CommandId::ViewDiscoverMisc, .name = "viewDiscoverMisc", .menu = MenuId::View,
     .text = QT_TRANSLATE_NOOP("Commands", "&Discover/Misc"), .keys = "Ctrl+D",
     .help = QT_TRANSLATE_NOOP("Commands", "Show the devices that are not on the floor"), .groupStart = true},
    {.id = CommandId::ViewMessageLogs, .name = "viewMessageLogs", .menu = MenuId::View,
     .text = QT_TRANSLATE_NOOP("Commands", "&Message logs"), .keys = "Ctrl+M",
     .help = QT_TRANSLATE_NOOP("Commands", "Show what was done in the background, line by line")},
    {.id = CommandId::ViewListView, .name = "viewListView", .menu = MenuId::View,
     .text = QT_TRANSLATE_NOOP("Commands", "&List View"), .keys = "Ctrl+L",
     .help = QT_TRANSLATE_NOOP("Commands", "Show the devices as a table")},

    hide(DeviceType::LocationMarker, "viewHideLocationMarker", QT_TRANSLATE_NOOP("Commands", "Location Mar&ker")),
    hide(DeviceType::Jack, "viewHideJack", QT_TRANSLATE_NOOP("Commands", "&Jacks")),
    hide(DeviceType::Computer, "viewHideComputer", QT_TRANSLATE_NOOP("Commands", "&Computers")),
    hide(DeviceType::Printer, "viewHidePrinter", QT_TRANSLATE_NOOP("Commands", "&Printers")),
    hide(DeviceType::Laptop, "viewHideLaptop", QT_TRANSLATE_NOOP("Commands", "Lap&tops")),
    hide(DeviceType::Router, "viewHideRouter", QT_TRANSLATE_NOOP("Commands", "&Routers")),
    hide(DeviceType::Switch, "viewHideSwitch", QT_TRANSLATE_NOOP("Commands", "&Switches")),
    hide(DeviceType::Phone, "viewHidePhone", QT_TRANSLATE_NOOP("Commands", "P&hones")),
    hide(DeviceType::Camera, "viewHideCamera", QT_TRANSLATE_NOOP("Commands", "Ca&mera")),
    hide(DeviceType::CardModule, "viewHideCardModule", QT_TRANSLATE_NOOP("Commands", "Car&d Module")),
    hide(DeviceType::Ups, "viewHideUps", QT_TRANSLATE_NOOP("Commands", "&UPS")),
    hide(DeviceType::Wireless, "viewHideWireless", QT_TRANSLATE_NOOP("Commands", "Wir&eless")),
    hide(DeviceType::Unknown, "viewHideUnknown", QT_TRANSLATE_NOOP("Commands", "Unknown")),
    {.id = CommandId::ViewHideFloorMap, .name = "viewHideFloorMap", .menu = MenuId::Hide,
     .text = QT_TRANSLATE_NOOP("Commands", "&Floor Map"),
     .help = QT_TRANSLATE_NOOP("Commands", "Hide or show the picture of the floor"), .checkable = true,
     .groupStart = true},
    {.id = CommandId::ViewHideAll, .name = "viewHideAll", .menu = MenuId::Hide,
     .text = QT_TRANSLATE_NOOP("Commands", "&All"),
     .help = QT_TRANSLATE_NOOP("Commands", "Hide the devices of every type"), .groupStart = true},
    {.id = CommandId::ViewHideNone, .name = "viewHideNone", .menu = MenuId::Hide,
     .text = QT_TRANSLATE_NOOP("Commands", "&None"),
     .help = QT_TRANSLATE_NOOP("Commands", "Show every device, and the picture of the floor")},

    zoom(ZoomCommand::In, "viewZoomIn", QT_TRANSLATE_NOOP("Commands", "&In  5%"), "+",
         QT_TRANSLATE_NOOP("Commands", "Show the floor 5 % larger")),
    zoom(ZoomCommand::Out, "viewZoomOut", QT_TRANSLATE_NOOP("Commands", "&Out 5%"), "-",
         QT_TRANSLATE_NOOP("Commands", "Show the floor 5 % smaller")),
    zoom(ZoomCommand::To25, "viewZoom25", QT_TRANSLATE_NOOP("Commands", "&25%"), "",
         QT_TRANSLATE_NOOP("Commands", "Show the floor at a quarter of its size"), true),
    zoom(ZoomCommand::To50, "viewZoom50", QT_TRANSLATE_NOOP("Commands", "&50%"), "",
         QT_TRANSLATE_NOOP("Commands", "Show the floor at half of its size")),
    zoom(ZoomCommand::To100, "viewZoom100", QT_TRANSLATE_NOOP("Commands", "&100%"), "*",
         QT_TRANSLATE_NOOP("Commands", "Show the floor at its own size")),
    zoom(ZoomCommand::To200, "viewZoom200", QT_TRANSLATE_NOOP("Commands", "2&00%"), "",
         QT_TRANSLATE_NOOP("Commands", "Show the floor at twice its size")),
    zoom(ZoomCommand::To300, "viewZoom300", QT_TRANSLATE_NOOP("Commands", "&300%"), "",
         QT_TRANSLATE_NOOP("Commands", "Show the floor at three times its size")),
    zoom(ZoomCommand::FitWidth, "viewZoomWidth", QT_TRANSLATE_NOOP("Commands", "Fit to &width"), "",
         QT_TRANSLATE_NOOP("Commands", "Show the whole width of the floor map"), true),
    zoom(ZoomCommand::FitHeight, "viewZoomHeight", QT_TRANSLATE_NOOP("Commands", "Fit to &Height"), "",
         QT_TRANSLATE_NOOP("Commands", "Show the whole height of the floor map")),
    zoom(ZoomCommand::FitAll, "viewZoomAll", QT_TRANSLATE_NOOP("Commands", "Fit &all"), "",
         QT_TRANSLATE_NOOP("Commands", "Show the floor map as large as the window allows")),
    {.id = CommandId::ViewZoomCustom, .name = "viewZoomCustom", .menu = MenuId::Zoom,
     .text = QT_TRANSLATE_NOOP("Commands", "&Custom..."), .keys = "/",
     .help = QT_TRANSLATE_NOOP("Commands", "Choose any zoom, and the size of the labels")},
    displayToggle(MenuId::Zoom, "ZoomDevices", QT_TRANSLATE_NOOP("Commands", "Zoom Devices"), "",
                  QT_TRANSLATE_NOOP("Commands", "Let the zoom commands change the icons"), true),
    displayToggle(MenuId::Zoom, "ZoomFloormap", QT_TRANSLATE_NOOP("Commands", "Zoom Floormap"), "",
                  QT_TRANSLATE_NOOP("Commands", "Let the zoom commands change the floor map")),

    label("PropertiesComputer", QT_TRANSLATE_NOOP("Commands", "Computer name"), "1",
          QT_TRANSLATE_NOOP("Commands", "Show computer names under devices")),
    label("PropertiesIPAddress", QT_TRANSLATE_NOOP("Commands", "IP Address"), "2",
          QT_TRANSLATE_NOOP("Commands", "Show IP addresses under devices")),
    label("PropertiesUsername", QT_TRANSLATE_NOOP("Commands", "Username"), "3",
          QT_TRANSLATE_NOOP("Commands", "Show user names under devices")),
    label("PropertiesMACAddress", QT_TRANSLATE_NOOP("Commands", "MAC Address"), "4",
          QT_TRANSLATE_NOOP("Commands", "Show MAC addresses under devices")),
    label("PropertiesJack", QT_TRANSLATE_NOOP("Commands", "Jack"), "5",
          QT_TRANSLATE_NOOP("Commands", "Show jack numbers under devices")),
    label("PropertiesComment", QT_TRANSLATE_NOOP("Commands", "Comment"), "6",
          QT_TRANSLATE_NOOP("Commands", "Show comments under devices")),
    label("PropertiesSlash", QT_TRANSLATE_NOOP("Commands", "/ Text"), "7",
          QT_TRANSLATE_NOOP("Commands", "Show the texts of the / lines")),
    label("PropertiesBackslash", QT_TRANSLATE_NOOP("Commands", "\\ Text"), "8",
          QT_TRANSLATE_NOOP("Commands", "Show the texts of the \\ lines")),
    label("PropertiesHorz", QT_TRANSLATE_NOOP("Commands", "- Text"), "9",
          QT_TRANSLATE_NOOP("Commands", "Show the texts of the - lines")),
    label("PropertiesVert", QT_TRANSLATE_NOOP("Commands", "| Text"), "0",
          QT_TRANSLATE_NOOP("Commands", "Show the texts of the | lines")),
    label("PropertiesSlashDraw", QT_TRANSLATE_NOOP("Commands", "Draw /"), "Ctrl+7",
          QT_TRANSLATE_NOOP("Commands", "Draw the / lines"), true),
    label("PropertiesBackslashDraw", QT_TRANSLATE_NOOP("Commands", "Draw \\"), "Ctrl+8",
          QT_TRANSLATE_NOOP("Commands", "Draw the \\ lines")),
    label("PropertiesHorzDraw", QT_TRANSLATE_NOOP("Commands", "Draw -"), "Ctrl+9",
          QT_TRANSLATE_NOOP("Commands", "Draw the - lines")),
    label("PropertiesVertDraw", QT_TRANSLATE_NOOP("Commands", "Draw |"), "Ctrl+0",
          QT_TRANSLATE_NOOP("Commands", "Draw the | lines")),
});
// clang-format on

} // namespace

std::span<const CommandDefinition> viewCommands() {
    return viewTable;
}

} // namespace mirovane
