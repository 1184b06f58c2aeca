#pragma once

#include "platform/process/ProgramLauncher.h"
#include "ui/frame/file/FileCommands.h"

namespace mirovane {

/// File, Send: a new mail with the datafile attached, in the user's own mail program. What is not yet on disk
/// is saved first.
class CMailCommand {
public:
    /// All outlive the object.
    CMailCommand(const CStation& station, FrameDialogs& dialogs, ProgramLauncher& launcher,
                 CFileCommands& files)
        : station_(station), dialogs_(dialogs), launcher_(launcher), files_(files) {}

    void connectTo(CCommandActions& actions);

    void send();

private:
    const CStation& station_;
    FrameDialogs& dialogs_;
    ProgramLauncher& launcher_;
    CFileCommands& files_;
};

} // namespace mirovane
