#include "ui/frame/commands/CommandTable.h"

#include <array>

namespace mirovane {

namespace {

constexpr std::string_view file = "&File";
constexpr std::string_view view = "&View";
constexpr std::string_view properties = "&View/&Properties";
constexpr std::string_view tools = "&Tools";
constexpr std::string_view help = "&Help";

constexpr std::array<std::string_view, 5> menus = {file, "&Edit", view, tools, help};

constexpr CommandDefinition displayToggle(std::string_view menu, std::string_view setting,
                                          std::string_view text, std::string_view keys,
                                          std::string_view helpLine, bool groupStart) {
    return {CommandId::ViewDisplayToggle, setting, menu,      text, keys, helpLine, setting,
            CommandNeeds::Nothing,        true,    groupStart};
}

constexpr CommandDefinition label(std::string_view setting, std::string_view text, std::string_view key,
                                  std::string_view helpLine) {
    return displayToggle(properties, setting, text, key, helpLine, false);
}

// Entries that are alike line up in columns; the formatter would give each a shape of its own.
// clang-format off
constexpr std::array commands = {
    CommandDefinition{.id = CommandId::FileNew, .name = "fileNew", .menu = file, .text = "&New",
                      .keys = "Ctrl+N", .help = "Start a new, empty datafile"},
    CommandDefinition{.id = CommandId::FileOpen, .name = "fileOpen", .menu = file, .text = "&Open...",
                      .keys = "Ctrl+O", .help = "Open a datafile"},
    CommandDefinition{.id = CommandId::FileSave, .name = "fileSave", .text = "&Save", .keys = "Ctrl+S",
                      .help = "Save the datafile"},
    CommandDefinition{.id = CommandId::FileSaveAs, .name = "fileSaveAs", .menu = file, .text = "Save &As...",
                      .help = "Save the datafile under a new name"},
    CommandDefinition{.id = CommandId::FileExport, .name = "fileExport", .menu = file, .text = "&Export...",
                      .help = "Write the rows of the List View into a text file", .groupStart = true},
    CommandDefinition{.id = CommandId::FileRecent, .name = "fileRecent", .menu = file,
                      .help = "Open this datafile", .groupStart = true},
    CommandDefinition{.id = CommandId::FileExit, .name = "fileExit", .menu = file, .text = "E&xit",
                      .help = "Switch Live Stat off, save and leave the program", .groupStart = true},

    CommandDefinition{.id = CommandId::ViewToolbar, .name = "viewToolbar", .menu = view, .text = "&Toolbar",
                      .help = "Show or hide the toolbar", .checkable = true},
    CommandDefinition{.id = CommandId::ViewStatusBar, .name = "viewStatusBar", .menu = view,
                      .text = "&Status Bar", .help = "Show or hide the status bar", .checkable = true},
    displayToggle(view, "LSStatusDeviceShow", "LS Status on Devices", "",
                  "Draw a ring around devices that Live Stat is checking", true),
    displayToggle(view, "ReminderTitlebarShow", "Reminder on Title Bar", "",
                  "Count due reminders in the window's title", false),
    displayToggle(view, "ReminderDeviceShow", "Reminder on Devices", "",
                  "Show the to-do text under devices whose reminder is due", false),
    CommandDefinition{.id = CommandId::ViewMessageLogs, .name = "viewMessageLogs", .menu = view,
                      .text = "&Message logs", .keys = "Ctrl+M",
                      .help = "Show what was done in the background, line by line", .groupStart = true},
    CommandDefinition{.id = CommandId::ViewListView, .name = "viewListView", .menu = view,
                      .text = "&List View", .keys = "Ctrl+L", .help = "Show the devices as a table"},

    label("PropertiesComputer",   "Computer name", "1", "Show computer names under devices"),
    label("PropertiesIPAddress",  "IP Address",    "2", "Show IP addresses under devices"),
    label("PropertiesUsername",   "Username",      "3", "Show user names under devices"),
    label("PropertiesMACAddress", "MAC Address",   "4", "Show MAC addresses under devices"),
    label("PropertiesJack",       "Jack",          "5", "Show jack numbers under devices"),
    label("PropertiesComment",    "Comment",       "6", "Show comments under devices"),
    label("PropertiesSlash",      "/ Text",        "7", "Show the texts of the / lines"),
    label("PropertiesBackslash",  "\\ Text",       "8", "Show the texts of the \\ lines"),
    label("PropertiesHorz",       "- Text",        "9", "Show the texts of the - lines"),
    label("PropertiesVert",       "| Text",        "0", "Show the texts of the | lines"),
    displayToggle(properties, "PropertiesSlashDraw", "Draw /", "Ctrl+7", "Draw the / lines", true),
    displayToggle(properties, "PropertiesBackslashDraw", "Draw \\", "Ctrl+8", "Draw the \\ lines", false),
    displayToggle(properties, "PropertiesHorzDraw", "Draw -", "Ctrl+9", "Draw the - lines", false),
    displayToggle(properties, "PropertiesVertDraw", "Draw |", "Ctrl+0", "Draw the | lines", false),

    CommandDefinition{.id = CommandId::ToolsFloorMap, .name = "toolsFloorMap", .menu = tools,
                      .text = "&Floor Map...", .help = "Choose the picture of the floor"},
    CommandDefinition{.id = CommandId::ToolsLiveStatOptions, .name = "toolsLiveStatOptions", .menu = tools,
                      .text = "Live Stat/Discover &Option...",
                      .help = "Set what Live Stat does with each device type, and how fast", .groupStart = true},
    CommandDefinition{.id = CommandId::ToolsLiveStat, .name = "toolsLiveStat", .menu = tools,
                      .text = "&Live Stat (LS - Loop)", .help = "Check all devices, over and over",
                      .needs = CommandNeeds::Devices, .checkable = true},
    CommandDefinition{.id = CommandId::ToolsLiveDiscover, .name = "toolsLiveDiscover", .menu = tools,
                      .text = "Live Discover (LD - Loop)",
                      .help = "Look for new hosts in the address ranges of the options, one every few seconds",
                      .needs = CommandNeeds::AddressRanges, .checkable = true},
    CommandDefinition{.id = CommandId::ToolsDiscoverNow, .name = "toolsDiscoverNow", .menu = tools,
                      .text = "&Discover Now...",
                      .help = "Ask all address ranges at once and add the hosts that answer"},
    CommandDefinition{.id = CommandId::ToolsLiveStatNow, .name = "toolsLiveStatNow", .menu = tools,
                      .text = "Perform Live Stat &Now on selected object(s)",
                      .help = "Check the selected devices now", .needs = CommandNeeds::Selection},
    CommandDefinition{.id = CommandId::ToolsTrackLiveStat, .name = "toolsTrackLiveStat", .menu = tools,
                      .text = "Track \"Live Stat\"", .help = "Follow Live Stat from device to device on the floor",
                      .checkable = true},
    CommandDefinition{.id = CommandId::ToolsApplications, .name = "toolsApplications", .menu = tools,
                      .text = "Add &Applications..",
                      .help = "Name the programs that can be started for the selected devices",
                      .groupStart = true},

    CommandDefinition{.id = CommandId::HelpAbout, .name = "helpAbout", .menu = help,
                      .text = "&About Mirovane...", .help = "What this program is, and its version"},
};
// clang-format on

} // namespace

std::span<const std::string_view> menuBarOrder() {
    return menus;
}

std::span<const CommandDefinition> commandTable() {
    return commands;
}

} // namespace mirovane
