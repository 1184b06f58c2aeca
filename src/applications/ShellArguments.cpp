#include "applications/ShellArguments.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace mirovane {

namespace {

using Arguments = std::span<const CommandArgument>;

constexpr std::array<std::string_view, 9> shells = {"ash", "bash", "csh",  "dash", "fish",
                                                    "ksh", "sh",   "tcsh", "zsh"};

/// Programs that run a line by a shell behind an option that hardly anybody leaves out.
constexpr std::array<std::string_view, 3> lineRunners = {"su", "runuser", "script"};

constexpr std::array<std::string_view, 1> watch = {"watch"};
constexpr std::array<std::string_view, 1> ssh = {"ssh"};

/// "-e" with one word behind it is a line for a shell, with several it is a program and its arguments.
constexpr std::array<std::string_view, 7> lineTerminals = {
    "x-terminal-emulator", "xterm", "uxterm", "lxterm", "rxvt", "urxvt", "lxterminal"};

constexpr std::string_view sshOptionsWithValue = "BbcDEeFIiJLlmOoPpQRSWw";

/// What follows the first of these programs; nothing where none is called.
template <typename Names>
Arguments argumentsOf(Arguments arguments, const Names& names) {
    const auto program = std::ranges::find_if(arguments, [&names](const CommandArgument& argument) {
        return !argument.holdsField && std::ranges::find(names, programName(argument.text)) != names.end();
    });
    if (program == arguments.end())
        return {};
    return arguments.subspan(static_cast<std::size_t>(program - arguments.begin()) + 1);
}

/// "-o pipefail", "--rcfile FILE"
bool takesValue(std::string_view option) {
    return option.starts_with("--") || option.ends_with('o') || option.ends_with('O');
}

/// A shell drops an argument that is empty.
bool isOdd(const CommandArgument& argument) {
    return argument.oddField || (argument.holdsField && argument.text.empty());
}

bool anyOdd(Arguments arguments) {
    return std::ranges::any_of(arguments, isOdd);
}

/// "-x" among its options makes it start the command by itself.
bool watchHandsOver(Arguments arguments) {
    for (std::size_t i = 0; i < arguments.size() && arguments[i].text.starts_with('-'); ++i) {
        const std::string_view option = arguments[i].text;
        if (option == "-x" || option == "--exec")
            return false;
        if (option == "-n" || option == "--interval")
            ++i;
    }
    return anyOdd(arguments);
}

/// The host and the user's name go through no shell, whatever they hold. All else may: options name commands,
/// and what follows the host is run on the other computer.
bool sshHandsOver(Arguments arguments) {
    bool hostSeen = false;
    bool optionsEnded = false;
    char option = 0; // whose value comes next
    for (const CommandArgument& argument : arguments) {
        const std::string_view text = argument.text;
        const char valueOf = std::exchange(option, '\0');
        const bool isOption = valueOf == 0 && !optionsEnded && text.size() > 1 && text.starts_with('-');
        const bool isHost = valueOf == 0 && !isOption && !hostSeen;
        hostSeen = hostSeen || isHost;
        optionsEnded = optionsEnded || (isOption && text == "--");
        if (isOption && text.size() == 2 && sshOptionsWithValue.find(text[1]) != std::string_view::npos)
            option = text[1];
        if (isOdd(argument) && !isHost && valueOf != 'l')
            return true;
    }
    return false;
}

bool terminalHandsOver(Arguments arguments) {
    return arguments.size() > 1 && isOdd(arguments.back()) && arguments[arguments.size() - 2].text == "-e";
}

} // namespace

std::string_view programName(std::string_view word) {
    return word.substr(word.rfind('/') + 1); // npos + 1 is 0
}

bool isPlainForShell(std::string_view value) {
    static constexpr std::string_view marks = "-._/:@,+=%";
    const auto plain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               static_cast<unsigned char>(c) >= 0x80 || marks.find(c) != std::string_view::npos;
    };
    return std::ranges::all_of(value, plain);
}

bool givesFieldToShell(Arguments arguments) {
    bool takesLine = false;
    std::string_view option;
    for (const CommandArgument& argument : argumentsOf(arguments, shells)) {
        const std::string_view text = argument.text;
        if (text.starts_with('-') || text.starts_with('+')) {
            option = text;
            takesLine = takesLine || (!text.starts_with("--") && text.find('c') != std::string_view::npos);
        } else if (takesLine) {
            return argument.holdsField;
        } else if (!takesValue(std::exchange(option, {}))) {
            return false;
        }
    }
    return false;
}

bool handsOddFieldToShell(Arguments arguments) {
    return anyOdd(argumentsOf(arguments, lineRunners)) || watchHandsOver(argumentsOf(arguments, watch)) ||
           sshHandsOver(argumentsOf(arguments, ssh)) ||
           terminalHandsOver(argumentsOf(arguments, lineTerminals));
}

} // namespace mirovane
