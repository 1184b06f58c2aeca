#include "cli/Cli.h"

#include "cli/Commands.h"
#include "cli/base/FoldedText.h"

#include <array>
#include <cstring>
#include <new>
#include <vector>

namespace mirovane {

namespace {

constexpr OptionDefinition shortHelpOption{"-h", 0, "", ""};

constexpr std::size_t helpColumn = 26;

std::string helpLine(std::string left, std::string_view right) {
    left.insert(0, "  ");
    left.append(left.size() < helpColumn ? helpColumn - left.size() : 1, ' ');
    return left.append(right).append("\n");
}

std::string optionLine(const OptionDefinition& option) {
    std::string left(option.name);
    if (!option.valueNames.empty())
        left.append(" ").append(option.valueNames);
    return helpLine(std::move(left), option.help);
}

std::string overallHelp() {
    std::string text = "usage: mirovanectl [--config DIR] COMMAND ...\n\n"
                       "Reads, changes and watches Mirovane datafiles without a display.\n\n";
    for (const Command* command : commands())
        text += helpLine(std::string(command->name), command->help);
    text += "\n" + optionLine(configOption) +
            helpLine("--help", "show this help; after a command, the help of that command") +
            optionLine(versionOption);
    text += "\nExit status: 0 done, 1 the answer is no, 2 wrong command line, 3 a file could not be read or\n"
            "written, 4 refused because another station runs Live Stat or Live Discover.\n";
    return text;
}

std::string commandHelp(const Command& command) {
    std::string text =
        "usage: mirovanectl " + std::string(command.name) + " " + std::string(command.usage) + "\n\n";
    text += std::string(command.help) + "\n\n";
    for (const OptionDefinition& option : command.options)
        text += optionLine(option);
    text += optionLine(configOption) + optionLine(helpOption);
    if (!command.details.empty())
        text += "\n" + std::string(command.details);
    return text;
}

void printHelp(COutput& out, const std::string& text) {
    const int width = out.terminalWidth();
    out.print(width > 0 ? folded(text, static_cast<std::size_t>(width)) : text);
}

/// Where the command's name is: the first word that is neither an option nor the value of --config.
std::size_t commandPlace(std::span<const std::string> words) {
    for (std::size_t at = 0; at < words.size(); ++at)
        if (words[at] == configOption.name)
            ++at;
        else if (words[at].empty() || words[at][0] != '-')
            return at;
    return words.size();
}

ExitStatus withoutCommand(std::span<const std::string> words, COutput& out) {
    const std::array definitions{configOption, helpOption, shortHelpOption, versionOption};
    const auto parsed = parseArguments(words, definitions);
    if (!parsed) {
        out.diagnose(parsed.error().sentence);
        return ExitStatus::Usage;
    }
    if (parsed.value().has("--version"))
        out.printLine("mirovanectl " MIROVANE_VERSION);
    else if (parsed.value().has("--help") || parsed.value().has("-h"))
        printHelp(out, overallHelp());
    else {
        out.diagnose("no command", "run mirovanectl --help for those there are");
        return ExitStatus::Usage;
    }
    return ExitStatus::Done;
}

ExitStatus runCommand(const Command& command, std::span<const std::string> words, COutput& out) {
    std::vector<OptionDefinition> definitions(command.options.begin(), command.options.end());
    definitions.insert(definitions.end(), {configOption, helpOption, shortHelpOption});
    auto parsed = parseArguments(words, definitions);
    if (!parsed) {
        out.diagnose(parsed.error().sentence);
        return ExitStatus::Usage;
    }
    CommandContext context{out, std::move(parsed.value()), ""};
    if (context.arguments.has("--help") || context.arguments.has("-h")) {
        printHelp(out, commandHelp(command));
        return ExitStatus::Done;
    }
    context.configFolder = context.arguments.value("--config").value_or("");
    if (context.arguments.has("--config") && context.configFolder.empty())
        return usageError(context, "option --config: it needs a folder");
    const std::size_t given = context.arguments.positionals.size();
    if (given < command.least || given > command.most) {
        const std::string what = given < command.least ? "too few arguments" : "too many arguments";
        return usageError(context, what + ": usage: mirovanectl " + std::string(command.name) + " " +
                                       std::string(command.usage));
    }
    return command.run(context);
}

ExitStatus dispatch(std::span<const std::string> words, COutput& out) {
    const std::size_t place = commandPlace(words);
    if (place == words.size())
        return withoutCommand(words, out);
    const Command* command = findCommand(words[place]);
    if (!command) {
        out.diagnose("unknown command " + words[place], "run mirovanectl --help for those there are");
        return ExitStatus::Usage;
    }
    std::vector<std::string> rest(words.begin(), words.end());
    rest.erase(rest.begin() + static_cast<std::ptrdiff_t>(place));
    return runCommand(*command, rest, out);
}

} // namespace

int runCli(std::span<const std::string> words, COutput& out) {
    ExitStatus status = ExitStatus::FileFailed;
    try {
        status = dispatch(words, out);
    } catch (const std::bad_alloc&) {
        out.diagnose("cannot go on", "Out of memory");
    }
    if (!out.flush() && !out.readerGone()) {
        out.diagnose("cannot write the results", std::strerror(out.failure()));
        status = ExitStatus::FileFailed;
    }
    return static_cast<int>(status);
}

} // namespace mirovane
