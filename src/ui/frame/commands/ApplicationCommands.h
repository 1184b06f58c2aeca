#pragma once

#include "applications/ApplicationStarter.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameDialogs.h"

#include <QPointer>

namespace mirovane {

struct ApplicationValues;
class CApplicationsWindow;

/// External Applications in the main window: the window that edits them, and what a choice from their menu
/// does. Main thread.
class CApplicationCommands {
public:
    struct Parts {
        CStation& station;
        FrameDialogs& dialogs;
        CSettings& settings;
        CMessageLog& log;
        ProgramLauncher& launcher;
        QWidget& window; ///< which the External Applications window belongs to
    };

    /// All references outlive the object.
    explicit CApplicationCommands(Parts parts);

    void connectTo(CCommandActions& actions);

    void showWindow();

    /// What is being typed in the window goes into the document: before it is saved for the last time.
    void storeTyping();

    /// Runs the application for every selected device of the floor map. Asks before it starts very many
    /// programs at once.
    void run(const ApplicationValues& application);

private:
    Parts parts_;
    CApplicationStarter starter_;
    QPointer<CApplicationsWindow> window_;
};

} // namespace mirovane
