#pragma once

#include "model/MessageLog.h"
#include "model/Settings.h"
#include "platform/Clock.h"
#include "platform/WorkerPool.h"
#include "platform/files/AbandonableFiles.h"
#include "platform/files/PosixFiles.h"
#include "platform/files/ProgramClaims.h"
#include "platform/process/ProgramLauncher.h"
#include "platform/qt/IniSettingsStore.h"
#include "platform/qt/QtTimers.h"
#include "probes/SystemStepProbes.h"
#include "probes/SystemSweepProbes.h"
#include "ui/frame/MainFrame.h"
#include "ui/frame/WidgetDialogs.h"
#include "ui/frame/base/RecentFiles.h"
#include "ui/handover/Handover.h"

#include <QString>

#include <memory>
#include <optional>
#include <string>

namespace mirovane {

/// Everything that lives as long as the desktop program, in the order in which it must come to be: the
/// settings get their defaults before any window exists, and the application object exists before this.
class CDesktop {
public:
    struct Options {
        std::string configFolder; ///< empty: the user's own
        QString version;
    };

    explicit CDesktop(const Options& options);
    ~CDesktop();

    CMainFrame& frame() { return *frame_; }
    CStation& station() { return *station_; }

    /// Shows the window and opens the datafile; with none, or when it cannot be opened, a new one.
    void start(const std::string& datafile);

    /// Another start of the program wants this window, and perhaps a device in it.
    HandoverAnswer comeUp(const HandoverRequest& request);

    /// The session is about to end: what is not yet on disk goes there, a floor without a file to a file of
    /// its own.
    void saveForSession();

    /// The session ends, nobody can be asked: Live Stat goes off, everything is saved, the window closes.
    /// Returns the program's exit status.
    int endSession();

private:
    static CAbandonableFiles::Patience offMainThread();
    void pauseStation(bool pause);

    CSystemClock clock_;
    CAbandonableFiles files_{std::make_shared<CPosixFiles>(), offMainThread()};
    CWorkerPool datafileThread_{1};
    CFileCalls calls_;
    CProgramClaims programs_{calls_, runtimeFolder()};
    CQtTimerFactory timers_;
    CIniSettingsStore store_;
    CRecentFiles recent_;
    CSettings settings_;
    CMessageLog log_;
    CWidgetDialogs dialogs_;
    CSystemStepProbes probes_;
    CPosixLauncher launcher_;
    CSystemSweepProbes sweepProbes_{probes_.hosts()};
    std::unique_ptr<CStation> station_;
    std::unique_ptr<CMainFrame> frame_;
    std::optional<CPause> pause_;
};

} // namespace mirovane
