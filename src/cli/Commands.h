#pragma once

#include "cli/base/Command.h"

#include <array>
#include <span>
#include <string_view>

namespace mirovane {

inline constexpr OptionDefinition configOption{"--config", 1, "DIR",
                                               "settings from DIR instead of the user's own"};
inline constexpr OptionDefinition helpOption{"--help", 0, "", "show this help"};
inline constexpr OptionDefinition versionOption{"--version", 0, "", "show the version"};

/// What may be given without a command.
inline constexpr std::array programOptions{configOption, helpOption, versionOption};

/// Every command, in the order of the help. A command is defined beside the function that runs it.
std::span<const Command* const> commands();

/// Null when no command has this name.
const Command* findCommand(std::string_view name);

} // namespace mirovane
