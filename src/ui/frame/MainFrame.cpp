#include "ui/frame/MainFrame.h"

#include "model/records/Text.h"
#include "ui/discover/DiscoverNowWindow.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/FrameMenus.h"
#include "ui/frame/FrameToolBar.h"
#include "ui/frame/MessageLogWindow.h"
#include "ui/frame/StationState.h"
#include "ui/frame/ToolIcons.h"
#include "ui/frame/commands/ApplicationsMenu.h"
#include "ui/list/ListViewWindow.h"
#include "ui/widgets/IdleNotifier.h"
#include "ui/widgets/WindowPlacement.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QPointer>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>

namespace mirovane {

namespace {

constexpr QSize defaultSize(1280, 860);
constexpr QSize smallestSize(420, 300);

} // namespace

CMainFrame::CMainFrame(const Services& services, CMirovaneView* floor)
    : station_(services.station),
      dialogs_(services.dialogs),
      recent_(services.recent),
      settings_(services.settings),
      log_(services.log),
      floor_(floor),
      actions_(new CCommandActions(*this)),
      toolbar_(makeToolBar(*this, *actions_)),
      panes_(*statusBar()),
      messageLog_(std::make_unique<CMessageLogWindow>(log_, settings_)),
      files_(station_, dialogs_, recent_, [this] { refresh(); }),
      exportCommand_(station_, settings_, dialogs_),
      viewCommands_(station_.display(), settings_,
                    {*toolbar_, *statusBar(), [this] { messageLog_->present(); }, [this] { showListView(); },
                     [this] {
                         floor_->viewport()->update();
                     }}),
      zoomCommands_(*new CFloorZooming(*floor_, station_.display(), settings_), dialogs_),
      toolsCommands_(station_, dialogs_,
                     {[this] { floor_->reloadFloorMap(); }, this, settings_, services.clock}),
      applicationCommands_({station_, dialogs_, settings_, log_, services.launcher, *this}) {
    setObjectName(QStringLiteral("mainFrame"));
    setWindowIcon(programIcon());
    messageLog_->setWindowIcon(windowIcon());
    setCentralWidget(floor_);
    connectCommands();
    makeMenus();
    connectStation();
    placeWindow();
    refresh();
    floor_->setFocus();
}

CMainFrame::~CMainFrame() {
    station_.removeObserver(*this);
    log_.removeListener(*this);
}

void CMainFrame::refresh() {
    showTitle();
    panes_.refresh(indicators());
    actions_->refresh(commandState(station_));
}

void CMainFrame::saveForSession(const std::string& rescuePath) {
    applicationCommands_.storeTyping();
    toolsCommands_.storeTyping();
    const CMirovaneDoc& document = station_.document();
    if (!document.modified())
        return;
    if (!station_.datafile().path().empty())
        station_.saveDatafile();
    else if (station_.saveDatafileAs(rescuePath).saved())
        recent_.add(rescuePath);
}

std::optional<FileError> CMainFrame::endSession() {
    sessionEnded_ = true;
    applicationCommands_.storeTyping();
    toolsCommands_.storeTyping();
    auto error = station_.shutDown();
    close();
    return error;
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    applicationCommands_.storeTyping();
    toolsCommands_.storeTyping();
    if (!sessionEnded_ && !files_.close()) {
        event->ignore();
        return;
    }
    messageLog_->close();
    if (listView_)
        listView_->close();
    QMainWindow::closeEvent(event);
}

void CMainFrame::connectCommands() {
    files_.connectTo(*actions_);
    exportCommand_.connectTo(*actions_);
    viewCommands_.connectTo(*actions_);
    zoomCommands_.connectTo(*actions_);
    toolsCommands_.connectTo(*actions_);
    applicationCommands_.connectTo(*actions_);
    if (station_.discoverNow())
        actions_->setHandler(CommandId::ToolsDiscoverNow,
                             {[this](const CommandDefinition&, bool) { showDiscoverNow(); }, {}});
    actions_->setHandler(CommandId::FileExit, {[this](const CommandDefinition&, bool) { close(); }, {}});
    actions_->setHandler(CommandId::HelpAbout,
                         {[this](const CommandDefinition&, bool) { dialogs_.about(); }, {}});
}

/// Made when it is first asked for: a program that never shows the list does not pay for it at its start.
void CMainFrame::showListView() {
    if (!listView_) {
        listView_ = std::make_unique<CListViewWindow>(station_, settings_);
        listView_->setWindowIcon(windowIcon());
        connect(listView_.get(), &CListViewWindow::showOnFloor, this, &CMainFrame::showOnFloor);
    }
    listView_->present();
}

void CMainFrame::showOnFloor(std::int32_t recID) {
    const CHardware* device = station_.document().findDevice(recID);
    if (!device)
        return;
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
    floor_->setFocus();
    floor_->showDevice(*device);
}

void CMainFrame::showDiscoverNow() {
    if (!discoverNow_) {
        discoverNow_ = new CDiscoverNowWindow(station_, settings_, dialogs_, this);
        connect(discoverNow_, &CDiscoverNowWindow::rangesWanted, this,
                [this] { toolsCommands_.openLiveStatOptions(discoverNow_); });
    }
    discoverNow_->present();
}

void CMainFrame::makeMenus() {
    new CFrameMenus(*menuBar(),
                    {*actions_, recent_, [this](const std::string& path) { files_.openPath(path); },
                     [this] {
                         menuOpens();
                     }});
    applicationsMenu_ = new CApplicationsMenu(
        *menuBar(), {station_.document(), *actions_,
                     [this](const ApplicationValues& application) { applicationCommands_.run(application); },
                     [this] {
                         menuOpens();
                     }});
    floor_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(floor_, &QWidget::customContextMenuRequested, this, [this](const QPoint& place) {
        applicationsMenu_->popup(floor_->viewport()->mapToGlobal(place));
    });
}

void CMainFrame::menuOpens() {
    actions_->refresh(commandState(station_));
}

void CMainFrame::connectStation() {
    log_.addListener(*this);
    station_.addObserver(*this);
    connect(floor_, &CMirovaneView::floorMapFailed, this, [this](const QString& sentence, bool missing) {
        if (missing)
            dialogs_.fail(sentence.toStdString());
    });
    if (CKeyboardLights::displayIsLocal(qEnvironmentVariable("DISPLAY")))
        keyboard_.emplace();
    connect(new CIdleNotifier(this), &CIdleNotifier::idle, this, &CMainFrame::refresh);
}

void CMainFrame::remindersChanged() {
    if (showsReminder())
        QApplication::alert(this);
}

void CMainFrame::lineLogged(const LogLine& line) {
    if (line.toStatusBar)
        panes_.SetStatusText(QString::fromStdString(displayText(line.shown())));
}

void CMainFrame::placeWindow() {
    setMinimumSize(smallestSize);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    resize(defaultSize.boundedTo(screen.size() * 9 / 10));
    applyPlacement(*this, readPlacement(settings_, mainFramePlacement));
    new CPlacementKeeper(*this, settings_, mainFramePlacement);
}

void CMainFrame::showTitle() {
    const QString title = showsReminder()
                              ? tr("Reminder Due:%1").arg(station_.reminders().DueCount())
                              : QString::fromStdString(mirovane::windowTitle(station_.datafile().path()));
    // Doubled, or a file named so would lose it: alone it is where a window title marks changes.
    const QString literal = QString(title).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    if (literal != QMainWindow::windowTitle())
        setWindowTitle(literal);
}

bool CMainFrame::showsReminder() const {
    const CReminders& reminders = station_.reminders();
    return reminders.DueCount() > 0 && reminders.ReminderPhase() && station_.display().ReminderTitlebarShow;
}

IndicatorState CMainFrame::indicators() const {
    IndicatorState state = indicatorState(station_);
    if (keyboard_)
        state.keyboardText = keyboardText(keyboard_->read());
    return state;
}

} // namespace mirovane
