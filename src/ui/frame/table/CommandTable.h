#pragma once

#include "ui/frame/table/CommandNeeds.h"
#include "ui/frame/table/Menus.h"

#include <QString>

#include <cstdint>
#include <span>
#include <string_view>

namespace mirovane {

enum class CommandId {
    FileNew,
    FileOpen,
    FileSave,
    FileSaveAs,
    FileExport,
    FilePrint,
    FilePrintPreview,
    FilePrintSetup,
    FileSend,
    FileRecent, ///< stands for the recently used datafiles, an entry each
    FileExit,
    EditUndo,
    EditRedo,
    EditProperties,
    EditCut,
    EditCopy,
    EditPaste,
    EditDelete,
    EditDuplicate,
    EditMoveTo,
    EditArrange, ///< `value` is the Arrangement
    EditSelectAll,
    EditSelectBoxed,
    EditSelectMarkedArea,
    EditSelectType,     ///< `value` is the device type, also in the next two
    EditSelectActive,   ///< found to be on
    EditSelectInactive, ///< off, or not checked yet
    EditFind,
    EditFindNext,
    EditFindReminderDue,
    EditQuickFind,
    ViewToolbar,
    ViewStatusBar,
    ViewDisplayToggle, ///< every command that switches one display setting; `setting` says which
    ViewZoom,          ///< the zoom commands without a dialog; `value` is their ZoomCommand
    ViewZoomCustom,
    ViewDiscoverMisc,
    ViewMessageLogs,
    ViewListView,
    ViewHideType, ///< `value` is the device type
    ViewHideFloorMap,
    ViewHideAll,
    ViewHideNone,
    ToolsFloorMap,
    ToolsPhotoPath,
    ToolsLiveStatOptions,
    ToolsLiveStat,
    ToolsLiveDiscover,
    ToolsLiveStatNow,
    ToolsResetLiveStatus,
    ToolsTrackLiveStat,
    ToolsGroupByProximity,
    ToolsApplications,
    ToolsAdd, ///< `value` is the device type
    ToolsDiscoverNow,
    HelpTopics,
    HelpContext,
    HelpAbout,
    ReminderPutOff, ///< `value`: a ReminderDelay
    ReminderDone,
};

/// One command of the main window. The table is the only place where a command's words and keys are written;
/// menus, toolbar, tooltips and the help line in the status bar are made from it. Its rows are in the source
/// file of their menu, which marks their texts with QT_TRANSLATE_NOOP("Commands", ...); `commandText` is what
/// people see.
struct CommandDefinition {
    CommandId id;                  ///< its handler's; the commands of a family share it
    std::string_view name = {};    ///< object name of its action; unique
    MenuId menu = MenuId::None;    ///< None: key and toolbar only
    std::string_view text = {};    ///< menu text, "&" before the mnemonic letter
    std::string_view keys = {};    ///< "Ctrl+N", several with a blank between them; the menu shows the first
    std::string_view help = {};    ///< shown in the status bar while the entry is pointed at
    std::string_view setting = {}; ///< the setting that the command switches
    std::int32_t value = 0;        ///< which of its family: a device type, a ZoomCommand
    CommandNeeds needs = CommandNeeds::Nothing;
    bool checkable = false;
    bool groupStart = false; ///< a separator comes before it
};

/// In menu order; a submenu is where its first command is.
std::span<const CommandDefinition> commandTable();

/// A text of the table or of the menus in the user's language.
QString commandText(std::string_view text);

} // namespace mirovane
