#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// A field that a command's placeholder stands for.
struct CommandField {
    char selector = 0; ///< 'N' for $mvN
    std::string value;
};

/// An argument of a command, after the device's fields were put in.
struct CommandArgument {
    std::string text;
    std::string written; ///< the same without the fields: what whoever made the command wrote
    std::vector<CommandField> fields;
    bool beginsWithField = false; ///< by an empty one, too

    bool holdsField() const { return !fields.empty(); }
};

/// "xterm" for "/usr/bin/xterm".
std::string_view programName(std::string_view word);

/// Every shell passes it on as it is: it holds no blanks and no characters that shells obey, and no program
/// takes it for an option.
bool isPlainForShell(std::string_view value);

/// Why no process may be started with these arguments: a field, which comes from the network, might become a
/// command. Empty: it may.
///
/// There is one rule for all programs, because which of them hand their arguments to a shell, here or on
/// another computer, is nowhere written down. A field that is an argument by itself, or a part of one without
/// blanks and shell characters, is safe with a plain program. It has to be plain where the command joins it
/// with blanks or shell characters, which is how a line for somebody's shell looks, and where an interpreter
/// or a remote shell is named anywhere in the command.
std::string fieldRefusal(std::span<const CommandArgument> arguments);

} // namespace mirovane
