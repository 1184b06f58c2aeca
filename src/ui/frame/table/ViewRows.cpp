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

// Rows that are alike line up; the formatter would give each a shape of its own.
// clang-format off
constexpr auto rows = std::to_array<CommandDefinition>({
    {.id = CommandId::ViewToolbar, .name = "viewToolbar", .menu = MenuId::View,
     .text = QT_TRANSLATE_NOOP("Commands", "&Toolbar"),
     .help = QT_TRANSLATE_NOOP("Commands", "Show or hide the toolbar"),
     .checkable = true},
    {.id = CommandId::ViewStatusBar, .name = "viewStatusBar", .menu = MenuId::View,
     .text = QT_TRANSLATE_NOOP("Commands", "&Status Bar"),
     .help = QT_TRANSLATE_NOOP("Commands", "Show or hide the status bar"),
     .checkable = true},
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
    {.id = CommandId::ViewMessageLogs, .name = "viewMessageLogs", .menu = MenuId::View,
     .text = QT_TRANSLATE_NOOP("Commands", "&Message logs"), .keys = "Ctrl+M",
     .help = QT_TRANSLATE_NOOP("Commands", "Show what was done in the background, line by line"),
     .groupStart = true},
    {.id = CommandId::ViewListView, .name = "viewListView", .menu = MenuId::View,
     .text = QT_TRANSLATE_NOOP("Commands", "&List View"), .keys = "Ctrl+L",
     .help = QT_TRANSLATE_NOOP("Commands", "Show the devices as a table")},

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
    return rows;
}

} // namespace mirovane
