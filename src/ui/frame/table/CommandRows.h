#pragma once

#include "ui/frame/table/CommandTable.h"

namespace mirovane {

// Each menu's part of the table, in menu order.
std::span<const CommandDefinition> fileCommands();
std::span<const CommandDefinition> editCommands();
std::span<const CommandDefinition> viewCommands();
std::span<const CommandDefinition> toolsCommands();
std::span<const CommandDefinition> helpCommands(); ///< and those of the right mouse button

} // namespace mirovane
