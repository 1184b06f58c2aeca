#include "app/OptionTable.h"
#include "cli/Commands.h"
#include "docs/man/Reference.h"
#include "model/records/Hardware.h"
#include "model/rows/ListRows.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace mirovane::reference {

namespace {

/// What may stand behind an option, by the name that its help gives the value.
struct Values {
    enum class Kind { Free, File, Folder, Words };

    Kind kind = Kind::Free;
    std::vector<std::string> words;
};

std::vector<std::string> typeNames() {
    std::vector<std::string> names;
    for (std::int32_t type = DeviceType::first; type <= DeviceType::last; ++type)
        names.emplace_back(typeName(type));
    return names;
}

std::vector<std::string> columnTitles() {
    std::vector<std::string> titles;
    for (const ListColumnDefinition& column : listColumns())
        titles.emplace_back(column.title);
    return titles;
}

/// A value of a new kind must be decided about here, else nothing is generated.
Values valuesOf(std::string_view option, std::string_view names) {
    constexpr std::array<std::string_view, 5> files{"FILE", "CONF", "OUT", "OUT.prom", "OUT.png"};
    constexpr std::array<std::string_view, 19> free{
        "N",         "TEXT",    "SECONDS",      "RECID...",   "X,Y",
        "CONDITION", "FROM TO", "N TO",         "RECID,...",  "ROW COLUMN VALUE",
        "RECID",     "PERCENT", "NAME COMMAND", "PIXELS",     "LABEL,...",
        "TYPE,...",  "WxH",     "NUMBER",       "X1,Y1,X2,Y2"};
    if (option == "--type")
        return {Values::Kind::Words, typeNames()};
    if (option == "--paper")
        return {Values::Kind::Words, {"A3", "A4", "A5", "Letter", "Legal"}};
    if (names == "COLUMN")
        return {Values::Kind::Words, columnTitles()};
    if (names == "WEIGHT")
        return {Values::Kind::Words, {"debug", "info", "notice", "err"}};
    if (names == "DIR")
        return {Values::Kind::Folder, {}};
    if (names == "OUT.pdf" || std::ranges::find(files, names) != files.end())
        return {Values::Kind::File, {}};
    if (names.empty() || std::ranges::find(free, names) != free.end())
        return {};
    throw std::logic_error("what completes the value " + std::string(names) + " of " + std::string(option) +
                           "?");
}

/// The datafile comes first, in most commands.
bool takesDatafile(const Command& command) {
    return command.usage.starts_with("FILE") || command.usage.starts_with("[FILE]");
}

bool takesHosts(const Command& command) {
    return command.usage.find("HOST") != std::string_view::npos;
}

std::string lines(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text.append(text.empty() ? "" : "\n").append(word);
    return text;
}

// ---- bash

std::string bashValues(std::string_view command, const OptionDefinition& option) {
    const Values values = valuesOf(option.name, option.valueNames);
    if (option.values == 0)
        return {};
    std::string action;
    switch (values.kind) {
    case Values::Kind::Free:
        action = "COMPREPLY=()";
        break;
    case Values::Kind::File:
        action = "compopt -o filenames; COMPREPLY=($(compgen -f -- \"$cur\"))";
        break;
    case Values::Kind::Folder:
        action = "compopt -o filenames; COMPREPLY=($(compgen -d -- \"$cur\"))";
        break;
    case Values::Kind::Words:
        action = "compopt -o filenames; COMPREPLY=($(compgen -W '" + lines(values.words) + "' -- \"$cur\"))";
        break;
    }
    return "    '" + std::string(command) + " " + std::string(option.name) + "') " + action + "; return ;;\n";
}

std::string bashOptions(const Command& command) {
    std::vector<std::string> names;
    for (const OptionDefinition& option : command.options)
        names.emplace_back(option.name);
    names.insert(names.end(), {"--config", "--help"});
    return "    " + std::string(command.name) + ") options='" + lines(names) + "' ;;\n";
}

std::string bashPositionals(const Command& command) {
    if (takesDatafile(command))
        return {}; // the usual
    return "    " + std::string(command.name) + ") " +
           (takesHosts(command) ? "COMPREPLY=($(compgen -A hostname -- \"$cur\"))" : "COMPREPLY=()") +
           "; return ;;\n";
}

constexpr std::string_view bashHead = R"(# What bash completes for mirovane and mirovanectl.

_mirovanectl() {
    local IFS=$'\n' cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]} command= options= i positionals=0
    # "--type=Printer" comes as three words.
    if [[ $cur == = ]]; then
        cur=
    elif [[ $prev == = && $COMP_CWORD -gt 1 ]]; then
        prev=${COMP_WORDS[COMP_CWORD-2]}
    fi
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
        --config) ((i++)) ;;
        -* | =) ;;
        *)
            if [[ -z $command ]]; then
                command=${COMP_WORDS[i]}
            else
                ((positionals++))
            fi
            ;;
        esac
    done
    if [[ $prev == --config ]]; then
        compopt -o filenames
        COMPREPLY=($(compgen -d -- "$cur"))
        return
    fi
)";

std::string quotedForZsh(std::string_view text, std::string_view special) {
    std::string quoted;
    for (const char c : text) {
        if (c == '\'')
            quoted += "'\\''";
        else {
            if (special.find(c) != std::string_view::npos)
                quoted += '\\';
            quoted += c;
        }
    }
    return quoted;
}

// ---- zsh

std::string zshAction(const Values& values) {
    switch (values.kind) {
    case Values::Kind::File:
        return "_files";
    case Values::Kind::Folder:
        return "_files -/";
    case Values::Kind::Words: {
        std::string words;
        for (const std::string& word : values.words)
            words.append(words.empty() ? "" : " ").append(quotedForZsh(word, " \\|/#-:"));
        return "(" + words + ")";
    }
    case Values::Kind::Free:
        break;
    }
    return " ";
}

std::string zshOption(std::string_view name, int count, std::string_view valueNames, std::string_view help) {
    std::string spec = "    '*" + std::string(name) + "[" + quotedForZsh(help, "[]:\\") + "]";
    const std::string action = zshAction(valuesOf(name, valueNames));
    std::string_view rest = valueNames;
    for (int value = 0; value < (count == OptionDefinition::recordIDs ? 1 : count); ++value) {
        const std::string_view one = rest.substr(0, rest.find(' '));
        rest.remove_prefix(std::min(one.size() + 1, rest.size()));
        spec += ":" + quotedForZsh(one, ":\\") + ":" + action;
    }
    return spec + "'";
}

std::string zshCommand(const Command& command) {
    std::string text = "  " + std::string(command.name) + ")\n    _arguments -s -S \\\n";
    for (const OptionDefinition& option : command.options)
        text += zshOption(option.name, option.values, option.valueNames, option.help) + " \\\n";
    for (const OptionDefinition& option : {configOption, helpOption})
        text += zshOption(option.name, option.values, option.valueNames, option.help) + " \\\n";
    if (takesDatafile(command))
        text += "    '1:datafile:_files -g \"*.mv(-.)\"' '*:argument:_files'";
    else
        text += takesHosts(command) ? "    '*:host:_hosts'" : "    '*:argument: '";
    return text + "\n    ;;\n";
}

template <typename Options>
std::string zshDesktopOptions(const Options& options) {
    std::string text;
    for (const DesktopOption& option : options)
        text += zshOption("--" + std::string(option.name), option.value.empty() ? 0 : 1, option.value,
                          option.help) +
                " \\\n";
    return text;
}

template <typename Options>
void addNames(std::vector<std::string>& names, const Options& options) {
    for (const DesktopOption& option : options)
        names.push_back("--" + std::string(option.name));
}

std::string bashOfDesktop() {
    std::vector<std::string> names;
    addNames(names, windowOptions);
    addNames(names, commonDrawOptions);
    addNames(names, pictureOptions);
    addNames(names, pageOptions);
    return "\n_mirovane() {\n"
           "    local IFS=$'\\n' cur=${COMP_WORDS[COMP_CWORD]}\n"
           "    if [[ $cur == -* ]]; then\n"
           "        COMPREPLY=($(compgen -W '" +
           lines(names) +
           "' -- \"$cur\"))\n"
           "    else\n"
           "        compopt -o filenames\n"
           "        COMPREPLY=($(compgen -d -- \"$cur\") $(compgen -f -X '!*.mv' -- \"$cur\"))\n"
           "    fi\n"
           "}\n"
           "complete -F _mirovane mirovane\n";
}

} // namespace

std::string bashCompletion() {
    std::vector<std::string> names;
    std::string values;
    std::string options;
    std::string positionals;
    for (const Command* command : commands()) {
        names.emplace_back(command->name);
        for (const OptionDefinition& option : command->options)
            values += bashValues(command->name, option);
        options += bashOptions(*command);
        positionals += bashPositionals(*command);
    }
    names.insert(names.end(), {"--config", "--help", "--version"});
    return std::string(bashHead) +
           "    if [[ -z $command ]]; then\n"
           "        COMPREPLY=($(compgen -W '" +
           lines(names) +
           "' -- \"$cur\"))\n"
           "        return\n"
           "    fi\n"
           "    case \"$command $prev\" in\n" +
           values +
           "    esac\n"
           "    case $command in\n" +
           options +
           "    esac\n"
           "    if [[ $cur == -* ]]; then\n"
           "        COMPREPLY=($(compgen -W \"$options\" -- \"$cur\"))\n"
           "        return\n"
           "    fi\n"
           "    case $command in\n" +
           positionals +
           "    esac\n"
           "    compopt -o filenames\n"
           "    if ((positionals == 0)); then\n"
           "        COMPREPLY=($(compgen -d -- \"$cur\") $(compgen -f -X '!*.mv' -- \"$cur\"))\n"
           "    else\n"
           "        COMPREPLY=($(compgen -f -- \"$cur\"))\n"
           "    fi\n"
           "}\n"
           "complete -F _mirovanectl mirovanectl\n" +
           bashOfDesktop();
}

std::string zshCompletionOfMirovane() {
    return "#compdef mirovane\n\n_arguments -s -S \\\n" + zshDesktopOptions(windowOptions) +
           zshDesktopOptions(commonDrawOptions) + zshDesktopOptions(pictureOptions) +
           zshDesktopOptions(pageOptions) + "    '1:datafile:_files -g \"*.mv(-.)\"'\n";
}

std::string zshCompletionOfMirovanectl() {
    std::string described;
    std::string cases;
    for (const Command* command : commands()) {
        described += "  '" + std::string(command->name) + ":" + quotedForZsh(command->help, ":\\") + "'\n";
        cases += zshCommand(*command);
    }
    std::string program;
    for (const OptionDefinition& option : programOptions)
        program += zshOption(option.name, option.values, option.valueNames, option.help) + " \\\n";
    return "#compdef mirovanectl\n\nlocal curcontext=$curcontext state line\nlocal -a "
           "commands\ncommands=(\n" +
           described + ")\n_arguments -s -S -C \\\n" + program +
           "    '1:command:->command' '*::argument:->argument'\n"
           "case $state in\n"
           "command)\n  _describe -t commands command commands\n  ;;\n"
           "argument)\n"
           "  curcontext=${curcontext%:*:*}:mirovanectl-$words[1]:\n"
           "  case $words[1] in\n" +
           cases + "  esac\n  ;;\nesac\n";
}

} // namespace mirovane::reference
