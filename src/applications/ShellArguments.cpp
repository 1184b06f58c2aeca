#include "applications/ShellArguments.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

/// Programs that run what is in their arguments: shells, languages, remote shells, and those that pass their
/// arguments on to one of them. Without the number of a version: "python" is "python3.11", too.
constexpr std::array<std::string_view, 65> interpreters = {"ash",        "awk",
                                                           "bash",       "busybox",
                                                           "cmd",        "cmd.exe",
                                                           "csh",        "dash",
                                                           "emacs",      "eval",
                                                           "expect",     "fish",
                                                           "gawk",       "gdb",
                                                           "guile",      "irb",
                                                           "ksh",        "lua",
                                                           "lxterm",     "lxterminal",
                                                           "make",       "mawk",
                                                           "mksh",       "mosh",
                                                           "node",       "nodejs",
                                                           "osascript",  "parallel",
                                                           "pdsh",       "perl",
                                                           "php",        "plink",
                                                           "powershell", "powershell.exe",
                                                           "psexec",     "psexec.exe",
                                                           "pwsh",       "python",
                                                           "rexec",      "rlogin",
                                                           "rsh",        "rsync",
                                                           "ruby",       "runuser",
                                                           "rxvt",       "screen",
                                                           "script",     "sed",
                                                           "sh",         "socat",
                                                           "ssh",        "su",
                                                           "tclsh",      "tcsh",
                                                           "tmux",       "urxvt",
                                                           "uxterm",     "vi",
                                                           "vim",        "watch",
                                                           "winexe",     "x-terminal-emulator",
                                                           "xargs",      "xterm",
                                                           "zsh"};

struct FieldLabel {
    char selector;
    std::string_view label;
};

constexpr std::array<FieldLabel, 10> labels = {{{'N', "Name"},
                                                {'I', "IP Address"},
                                                {'U', "Username"},
                                                {'J', "to Jack/#"},
                                                {'C', "Comment/Marker"},
                                                {'/', "/ Text"},
                                                {'\\', "\\ Text"},
                                                {'-', "-- Text"},
                                                {'|', "| Text"},
                                                {'T', "To Do"}}};

std::string labelOf(const CommandField& field) {
    const auto* found = std::ranges::find(labels, field.selector, &FieldLabel::selector);
    return found == labels.end() ? std::string("field") : "field \"" + std::string(found->label) + "\"";
}

bool isPlainCharacter(char c) {
    constexpr std::string_view marks = "-._/:@,+=%";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           static_cast<unsigned char>(c) >= 0x80 || marks.find(c) != std::string_view::npos;
}

bool isNameCharacter(char c) {
    return isPlainCharacter(c) && std::string_view("/:@,=%").find(c) == std::string_view::npos;
}

bool isInterpreter(std::string_view word) {
    const auto known = [](std::string_view name) {
        return std::ranges::find(interpreters, name) != interpreters.end();
    };
    const auto end = word.find_last_not_of("0123456789.-");
    return known(word) || (end != std::string_view::npos && known(word.substr(0, end + 1)));
}

/// The first interpreter among the words that were written, wherever in an argument it is; empty for none.
std::string_view interpreterIn(std::string_view written) {
    while (!written.empty()) {
        const auto begin = std::ranges::find_if(written, isNameCharacter);
        const auto end = std::find_if_not(begin, written.end(), isNameCharacter);
        const std::string_view word(begin, end);
        if (isInterpreter(word))
            return word;
        written = std::string_view(end, written.end());
    }
    return {};
}

std::string_view interpreterIn(std::span<const CommandArgument> arguments) {
    for (const CommandArgument& argument : arguments)
        if (const std::string_view word = interpreterIn(argument.written); !word.empty())
            return word;
    return {};
}

std::string whyNotPlain(const CommandField& field) {
    if (field.value.starts_with('-'))
        return "begins with \"-\"";
    return "holds a blank or a character that a shell obeys";
}

} // namespace

std::string_view programName(std::string_view word) {
    return word.substr(word.rfind('/') + 1); // npos + 1 is 0
}

bool isPlainForShell(std::string_view value) {
    return !value.starts_with('-') && std::ranges::all_of(value, isPlainCharacter);
}

std::string fieldRefusal(std::span<const CommandArgument> arguments) {
    const std::string interpreter(interpreterIn(arguments));
    for (const CommandArgument& argument : arguments) {
        const bool joined = !std::ranges::all_of(argument.written, isPlainCharacter);
        if (interpreter.empty() && !joined)
            continue;
        const std::string because = joined
                                        ? "the command joins it with blanks or characters of a shell"
                                        : "\"" + interpreter + "\" in the command may take it for a command";
        for (const CommandField& field : argument.fields)
            if (!isPlainForShell(field.value))
                return "the " + labelOf(field) + " " + whyNotPlain(field) + ", and " + because;
        if (!interpreter.empty() && argument.holdsField() && argument.text.empty()) // a shell drops it
            return "the " + labelOf(argument.fields.front()) + " is empty, and " + because;
    }
    return {};
}

} // namespace mirovane
