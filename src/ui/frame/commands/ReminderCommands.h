#pragma once

#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameDialogs.h"

namespace mirovane {

/// Putting due reminders off, and ending them. Both are in the menu of the right mouse button, and only while
/// a selected device has a due reminder. Main thread; all references outlive the object.
class CReminderCommands {
public:
    CReminderCommands(CStation& station, FrameDialogs& dialogs) : station_(station), dialogs_(dialogs) {}

    void connectTo(CCommandActions& actions);

private:
    void report(const SaveReport& saved);

    CStation& station_;
    FrameDialogs& dialogs_;
};

} // namespace mirovane
