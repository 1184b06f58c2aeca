#pragma once

#include "ui/frame/FrameCommands.h"
#include "ui/frame/FrameWindows.h"
#include "ui/frame/bars/StatusPanes.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameServices.h"
#include "ui/widgets/KeyboardLocks.h"

#include <QMainWindow>

#include <memory>
#include <optional>

namespace mirovane {

class CApplicationsMenu;
class CFrameToolBar;
class CMirovaneView;

/// The one main window: menus, toolbar, the floor and the status bar.
/// Knows how its parts are put together, and nothing of what they do. Main thread only.
class CMainFrame : public QMainWindow, private StationObserver, private LogListener {
    Q_OBJECT

public:
    using Services = FrameServices;

    /// `floor` is the view on the station's document and becomes the frame's own.
    CMainFrame(const Services& services, CMirovaneView* floor);
    ~CMainFrame() override;

    CFileCommands& files() { return commands_.files(); }
    CCommandActions& actions() { return *actions_; }
    CFindCommands& finding() { return commands_.finding(); }
    CDiscoveredCommands& discovered() { return commands_.discovered(); }
    CApplicationsMenu& applicationsMenu() { return *applicationsMenu_; }
    CMessageLogWindow& messageLog() { return windows_.messageLog(); }

    /// Null before it was first shown.
    CListViewWindow* listView() { return windows_.listView(); }

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
    QMenu* createPopupMenu() override;

private:
    void makeMenus();
    void menuOpens();
    void connectWindows();
    void connectPaneKeys();
    void connectStation();
    void showOnFloor(std::int32_t recID);
    void placeWindow();
    void showTitle();
    bool showsReminder() const;
    IndicatorState indicators() const;

    // StationObserver, LogListener
    void remindersChanged() override;
    void lineLogged(const LogLine& line) override;

    Services services_;
    CMirovaneView* floor_;
    CCommandActions* actions_;
    CFrameToolBar* toolbar_;
    CStatusPanes panes_;
    CFrameWindows windows_;
    CFrameCommands commands_;
    CApplicationsMenu* applicationsMenu_ = nullptr;
    std::optional<CKeyboardLights> keyboard_;
    bool sessionEnded_ = false;
};

} // namespace mirovane
