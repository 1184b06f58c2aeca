#pragma once

#include "cli/Arguments.h"
#include "cli/Output.h"
#include "model/Hardware.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// What a command works with. Lives for the command's run.
struct CommandContext {
    Output& out;
    Arguments arguments;
    std::string configFolder; ///< of --config; empty for the user's own
};

/// One entry of the command table.
struct Command {
    std::string_view name;
    std::string_view help;  ///< one line
    std::string_view usage; ///< what follows the name
    std::size_t least;      ///< positionals
    std::size_t most;
    std::span<const OptionDefinition> options; ///< besides --config and --help, which every command has
    std::string_view details;                  ///< further lines of its help, each ended
    ExitStatus (*run)(CommandContext&);
};

constexpr std::size_t anyNumber = static_cast<std::size_t>(-1);

/// In the order of the help.
std::span<const Command> commands();
const Command* findCommand(std::string_view name);

// One file per family holds these.
ExitStatus runNew(CommandContext& context);
ExitStatus runRecords(CommandContext& context);
ExitStatus runList(CommandContext& context);
ExitStatus runCheck(CommandContext& context);
ExitStatus runUpgrade(CommandContext& context);
ExitStatus runAdd(CommandContext& context);
ExitStatus runSet(CommandContext& context);
ExitStatus runDelete(CommandContext& context);
ExitStatus runCopy(CommandContext& context);
ExitStatus runImport(CommandContext& context);
ExitStatus runExport(CommandContext& context);
ExitStatus runCriteria(CommandContext& context);
ExitStatus runRanges(CommandContext& context);
ExitStatus runStation(CommandContext& context);
ExitStatus runSweep(CommandContext& context);
ExitStatus runPing(CommandContext& context);
ExitStatus runLookup(CommandContext& context);
ExitStatus runSnmpGet(CommandContext& context);
ExitStatus runRegistry(CommandContext& context);
ExitStatus runLoggedOn(CommandContext& context);
ExitStatus runMatch(CommandContext& context);
ExitStatus runTest(CommandContext& context);

/// What a command that changed devices prints: their record IDs, a line each.
void printRecIDs(Output& out, const std::vector<std::int32_t>& recIDs);

/// The computer's clock as a record holds it.
TimeStamp secondsNow();

/// Reports a wrong command line and names the way out.
ExitStatus usageError(CommandContext& context, std::string_view sentence);

} // namespace mirovane
