#pragma once

#include "applications/ApplicationCommand.h"
#include "model/MessageLog.h"
#include "model/Settings.h"
#include "platform/process/ProgramLauncher.h"

#include <string>

namespace mirovane {

/// The user's setting with the command line that opens a terminal emulator, "x-terminal-emulator -e" for
/// example; absent or empty: the first of the known ones that is installed.
constexpr const char* terminalSetting = "TerminalCommand";

/// Starts what an External Application came to and writes into the log what was started and what was not, a
/// line per reason. Asks nobody and shows no box. Main thread.
class CApplicationStarter {
public:
    struct Parts {
        ProgramLauncher& launcher;
        CSettings& settings;
        CMessageLog& log;
        std::string terminalRunner; ///< see commandInTerminal(); empty: no program can run in a terminal
    };

    explicit CApplicationStarter(Parts parts) : parts_(std::move(parts)) {}

    /// `name` is the application's.
    void start(const std::string& name, const ApplicationRun& run);

private:
    struct Ready {
        std::vector<std::string> before; ///< words in front of the program's own
        std::string problem;             ///< why nothing can be started
    };

    Ready makeReady(ProgramPlace place) const;
    std::vector<std::string> wordsFor(ProgramPlace place, const Ready& ready,
                                      const ProgramWords& words) const;

    void say(std::string line, const std::string& whom, const std::string& reason);

    Parts parts_;
};

} // namespace mirovane
