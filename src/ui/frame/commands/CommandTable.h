#pragma once

#include <span>
#include <string_view>

namespace mirovane {

enum class CommandId {
    FileNew,
    FileOpen,
    FileSave,
    FileSaveAs,
    FileExport,
    FileRecent, ///< stands for the recently used datafiles, an entry each
    FileExit,
    ViewToolbar,
    ViewStatusBar,
    ViewDisplayToggle, ///< every command that switches one display setting; `setting` says which
    ViewMessageLogs,
    ViewListView,
    ToolsFloorMap,
    ToolsLiveStatOptions,
    ToolsLiveStat,
    ToolsLiveDiscover,
    ToolsLiveStatNow,
    ToolsTrackLiveStat,
    ToolsApplications,
    ToolsDiscoverNow,
    HelpAbout,
};

/// What must be there before a command can do anything.
enum class CommandNeeds { Nothing, Devices, Selection, AddressRanges };

/// One command of the main window. The table below is the only place where a command's words and keys are
/// written; menus, toolbar, tooltips and the help line in the status bar are made from it.
struct CommandDefinition {
    CommandId id;
    std::string_view name = {}; ///< object name of its action; unique
    std::string_view menu =
        {}; ///< where it stands: "&View", or "&View/&Properties"; empty: key and toolbar only
    std::string_view text = {};    ///< menu text, "&" before the mnemonic letter
    std::string_view keys = {};    ///< "Ctrl+N", several with a blank between them
    std::string_view help = {};    ///< shown in the status bar while the entry is pointed at
    std::string_view setting = {}; ///< the display setting that the command switches
    CommandNeeds needs = CommandNeeds::Nothing;
    bool checkable = false;
    bool groupStart = false; ///< a separator stands before it
};

/// Menu bar from left to right. A menu without entries is not shown.
std::span<const std::string_view> menuBarOrder();

/// In menu order.
std::span<const CommandDefinition> commandTable();

} // namespace mirovane
