#pragma once

#include <span>
#include <string>
#include <string_view>

namespace mirovane {

/// An argument of a command, after the device's fields were put in.
struct CommandArgument {
    std::string text;
    bool holdsField = false;
    bool beginsWithField = false; ///< by an empty one, too
    bool oddField = false;        ///< by a field that is not plain for a shell
};

/// "xterm" for "/usr/bin/xterm".
std::string_view programName(std::string_view word);

/// Every shell passes it on as it is: it holds no blanks and no characters that shells obey.
bool isPlainForShell(std::string_view value);

/// "sh -c LINE", "sudo bash -lc LINE": a field in LINE would be read as commands. What follows LINE is not,
/// nor is anything behind the name of a script.
bool givesFieldToShell(std::span<const CommandArgument> arguments);

/// Some programs hand arguments of theirs to a shell: "watch ping HOST", "ssh HOST COMMAND" on the other
/// computer, "xterm -e LINE". Plain fields may be there; this tells whether another one is.
bool handsOddFieldToShell(std::span<const CommandArgument> arguments);

} // namespace mirovane
