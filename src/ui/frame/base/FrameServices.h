#pragma once

#include "applications/ApplicationStarter.h"
#include "model/MessageLog.h"
#include "model/Settings.h"
#include "platform/Clock.h"
#include "ui/frame/base/FrameDialogs.h"
#include "ui/frame/base/RecentFiles.h"

namespace mirovane {

/// What the main window, its windows and its commands work with; all of it outlives them.
struct FrameServices {
    CStation& station;
    FrameDialogs& dialogs;
    CRecentFiles& recent;
    ProgramLauncher& launcher;
    CSettings& settings;
    CMessageLog& log;
    const Clock& clock;
};

} // namespace mirovane
