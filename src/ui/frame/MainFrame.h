#pragma once

#include "ui/frame/StatusPanes.h"
#include "ui/frame/commands/ApplicationCommands.h"
#include "ui/frame/commands/CommandActions.h"
#include "ui/frame/commands/ExportCommand.h"
#include "ui/frame/commands/FileCommands.h"
#include "ui/frame/commands/FrameDialogs.h"
#include "ui/frame/commands/RecentFiles.h"
#include "ui/frame/commands/ToolsCommands.h"
#include "ui/frame/commands/ViewCommands.h"
#include "ui/frame/commands/ZoomCommands.h"
#include "ui/widgets/KeyboardLocks.h"

#include <QMainWindow>

#include <memory>
#include <optional>

namespace mirovane {

class CApplicationsMenu;
class CListViewWindow;
class CDiscoverNowWindow;
class CMessageLogWindow;
class CMirovaneView;

/// The one top-level window: menus, toolbar, the floor and the status bar; beside it the message log and
/// the list of devices.
/// Knows how its parts are put together, and nothing of what they do. Main thread only.
class CMainFrame : public QMainWindow, private StationObserver, private LogListener {
    Q_OBJECT

public:
    /// What the frame and its windows work with; all of it outlives the frame.
    struct Services {
        CStation& station;
        FrameDialogs& dialogs;
        CRecentFiles& recent;
        ProgramLauncher& launcher;
        CSettings& settings;
        CMessageLog& log;
        const Clock& clock;
    };

    /// `floor` is the view on the station's document and becomes the frame's own.
    CMainFrame(const Services& services, CMirovaneView* floor);
    ~CMainFrame() override;

    CFileCommands& files() { return files_; }
    CCommandActions& actions() { return *actions_; }
    CApplicationsMenu& applicationsMenu() { return *applicationsMenu_; }
    CMessageLogWindow& messageLog() { return *messageLog_; }

    /// Null before it was first shown.
    CListViewWindow* listView() { return listView_.get(); }

    /// Title, panes, check marks and enablement, from the state of things now.
    void refresh();

    /// Saves what is not yet on disk, without asking anybody. A floor that has no file yet is saved under
    /// `rescuePath`, which becomes the first of the recently used files. A failure has been logged.
    void saveForSession(const std::string& rescuePath);

    /// Closes the window without asking anybody: Live Stat goes off and the datafile is saved. Returns the
    /// save's error.
    std::optional<FileError> endSession();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void connectCommands();
    void showDiscoverNow();
    void makeMenus();
    void menuOpens();
    void showListView();
    void showOnFloor(std::int32_t recID);
    void connectStation();
    void placeWindow();
    void showTitle();
    bool showsReminder() const;
    IndicatorState indicators() const;

    // StationObserver, LogListener
    void remindersChanged() override;
    void lineLogged(const LogLine& line) override;

    CStation& station_;
    FrameDialogs& dialogs_;
    CRecentFiles& recent_;
    CSettings& settings_;
    CMessageLog& log_;
    CMirovaneView* floor_;
    CCommandActions* actions_;
    QToolBar* toolbar_;
    CStatusPanes panes_;
    std::unique_ptr<CMessageLogWindow> messageLog_;
    CDiscoverNowWindow* discoverNow_ = nullptr; ///< a child of this window, made when it is first wanted
    std::unique_ptr<CListViewWindow> listView_;
    CFileCommands files_;
    CExportCommand exportCommand_;
    CViewCommands viewCommands_;
    CZoomCommands zoomCommands_;
    CToolsCommands toolsCommands_;
    CApplicationCommands applicationCommands_;
    CApplicationsMenu* applicationsMenu_ = nullptr;
    std::optional<CKeyboardLights> keyboard_;
    bool sessionEnded_ = false;
};

} // namespace mirovane
