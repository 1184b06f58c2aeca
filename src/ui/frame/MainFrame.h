#pragma once

#include "ui/frame/ApplicationCommands.h"
#include "ui/frame/CommandActions.h"
#include "ui/frame/ExportCommand.h"
#include "ui/frame/FileCommands.h"
#include "ui/frame/FrameDialogs.h"
#include "ui/frame/KeyboardLocks.h"
#include "ui/frame/RecentFiles.h"
#include "ui/frame/StatusPanes.h"
#include "ui/frame/ToolsCommands.h"
#include "ui/frame/ViewCommands.h"

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
class CMainFrame : public QMainWindow {
    Q_OBJECT

public:
    /// The references outlive the frame. `floor` is the view on the station's document and becomes the
    /// frame's own.
    CMainFrame(CStation& station, FrameDialogs& dialogs, CRecentFiles& recent, ProgramLauncher& launcher,
               CMirovaneView* floor);
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
    CommandState commandState();
    IndicatorState indicatorState() const;

    CStation& station_;
    FrameDialogs& dialogs_;
    CRecentFiles& recent_;
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
    CToolsCommands toolsCommands_;
    CApplicationCommands applicationCommands_;
    CApplicationsMenu* applicationsMenu_ = nullptr;
    std::optional<KeyboardLights> keyboard_;
    bool hasSelection_ = false; ///< as of the moment when a menu was last opened
    bool sessionEnded_ = false;
};

} // namespace mirovane
