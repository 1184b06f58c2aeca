#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// The beginning of a command line that opens the terminal emulator of this computer and runs in it what
/// follows, such as "x-terminal-emulator -e". Empty when none of those known is found in PATH.
std::vector<std::string> installedTerminal();

/// The command line that shows a program in a terminal window which stays open until the user has read what
/// the program said. `terminal` as above; `runner` is a program whose main() hands the words behind
/// `terminalRunnerFlag` to `runInTerminal`.
///
/// Some terminal emulators put the words that they get together to one line and give it to a shell. So the
/// words pass through them in letters and digits only, everything else as %XX.
std::vector<std::string> commandInTerminal(const std::vector<std::string>& terminal,
                                           const std::string& runner, const std::vector<std::string>& words);

constexpr std::string_view terminalRunnerFlag = "--in-terminal";

/// Inside the terminal: runs the program to its end, then says how it ended and waits for Enter. Ctrl+C goes
/// to the program alone. `encoded` are the words as `commandInTerminal` wrote them. Returns the exit status
/// for main().
int runInTerminal(const std::vector<std::string>& encoded);

/// The file of the running program; empty when the system does not tell.
std::string ownProgramPath();

} // namespace mirovane
