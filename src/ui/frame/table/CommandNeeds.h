#pragma once

#include <span>
#include <string_view>

namespace mirovane {

/// What must be there before a command can do anything.
enum class CommandNeeds {
    Nothing,
    Devices,
    Selection,
    FloorSelection,
    Undo,
    Redo,
    LiveStat,
    LiveDiscover,
    DueReminder
};

/// What the window's commands depend on at this moment, a flag for each of their needs.
struct CommandState {
    bool hasDevices = false;
    bool hasSelection = false;
    bool hasFloorSelection = false;
    bool hasUndo = false;
    bool hasRedo = false;
    bool hasAddressRanges = false;
    bool mayRunLiveStat = false; ///< other stations would learn of it
    bool mayRunLiveDiscover = false;
    bool hasDueReminder = false; ///< of a selected device
};

/// A need, a flag that it takes, and what the status bar says about a command that waits for it: what is
/// missing, and where to get it.
struct NeedDefinition {
    CommandNeeds need;
    bool CommandState::*met;
    std::string_view reason;
};

std::span<const NeedDefinition> needTable();

/// Why a command with this need is disabled; empty when it is enabled.
std::string_view unmetReason(CommandNeeds need, const CommandState& state);

} // namespace mirovane
