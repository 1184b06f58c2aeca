#pragma once

#include "cli/base/Arguments.h"
#include "cli/base/Output.h"
#include "model/records/Hardware.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What a command works with. Lives for the command's run.
struct CommandContext {
    COutput& out;
    Arguments arguments;
    std::string configFolder; ///< of --config; empty for the user's own
};

/// One command, defined beside the function that runs it; cli/Commands.cpp lists them all.
struct Command {
    std::string_view name;
    std::string_view help;  ///< one line
    std::string_view usage; ///< what follows the name
    std::size_t least = 1;  ///< positionals
    std::size_t most = 1;
    std::span<const OptionDefinition> options = {}; ///< besides --config and --help, which every command has
    std::string_view details = {};                  ///< further lines of its help, each ended
    ExitStatus (*run)(CommandContext&) = nullptr;
};

constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

inline constexpr OptionDefinition jsonOption{"--json", 0, "", "print one JSON document"};

/// What a command that changed devices prints: their record IDs, a line each.
void printRecIDs(COutput& out, const std::vector<std::int32_t>& recIDs);

/// The computer's clock as a record holds it.
TimeStamp secondsNow();

/// Reports what is wrong with the command line.
ExitStatus usageError(CommandContext& context, std::string_view sentence);

} // namespace mirovane
