#pragma once

#include "cli/base/Command.h"

#include <span>
#include <string_view>

namespace mirovane {

/// Every command, in the order of the help. A command is defined beside the function that runs it.
std::span<const Command* const> commands();

/// Null when there is none of this name.
const Command* findCommand(std::string_view name);

} // namespace mirovane
