#include "ui/frame/MainFrame.h"

#include "model/Text.h"
#include "ui/dialogs/DiscoverNowWindow.h"
#include "ui/dialogs/ListViewWindow.h"
#include "ui/dialogs/WindowPlacement.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/ApplicationsMenu.h"
#include "ui/frame/FrameMenus.h"
#include "ui/frame/FrameToolBar.h"
#include "ui/frame/IdleNotifier.h"
#include "ui/frame/MessageLogWindow.h"
#include "ui/frame/ToolIcons.h"

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

bool anySelected(const CMirovaneDoc& document) {
    for (std::size_t i = 0; i < document.size(); ++i) {
        if (document.at(i).isDevice() && document.at(i).Selected != 0)
            return true;
    }
    return false;
}

} // namespace

CMainFrame::CMainFrame(CStation& station, FrameDialogs& dialogs, CRecentFiles& recent,
                       ProgramLauncher& launcher, CMirovaneView* floor)
    : station_(station),
      dialogs_(dialogs),
      recent_(recent),
      floor_(floor),
      actions_(new CCommandActions(*this)),
      toolbar_(makeToolBar(*this, *actions_)),
      panes_(*statusBar()),
      messageLog_(std::make_unique<CMessageLogWindow>(station.log(), station.settings())),
      files_(station, dialogs, recent, [this] { refresh(); }),
      exportCommand_(station, dialogs),
      viewCommands_(station.document(),
                    {*toolbar_, *statusBar(), [this] { messageLog_->present(); }, [this] { showListView(); },
                     [this] {
                         floor_->viewport()->update();
                     }}),
      toolsCommands_(station, dialogs, {[this] { floor_->reloadFloorMap(); }, this}),
      applicationCommands_({station, dialogs, launcher, *this}) {
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

CMainFrame::~CMainFrame() = default;

void CMainFrame::refresh() {
    showTitle();
    panes_.refresh(indicatorState());
    actions_->refresh(commandState());
}

void CMainFrame::saveForSession(const std::string& rescuePath) {
    applicationCommands_.storeTyping();
    toolsCommands_.storeTyping();
    const CMirovaneDoc& document = station_.document();
    if (!document.modified())
        return;
    if (!document.path().empty())
        station_.saveDatafile();
    else if (!station_.saveDatafileAs(rescuePath))
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
        listView_ = std::make_unique<CListViewWindow>(station_);
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
        discoverNow_ = new CDiscoverNowWindow(station_, dialogs_, this);
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
    hasSelection_ = anySelected(station_.document());
    actions_->refresh(commandState());
}

void CMainFrame::connectStation() {
    station_.log().addListener(
        [frame = QPointer<CMainFrame>(this)](const std::string& line, bool toStatusBar) {
            if (frame && toStatusBar)
                frame->panes_.SetStatusText(QString::fromStdString(displayText(line)));
        });
    station_.onReminders = [frame = QPointer<CMainFrame>(this), before = station_.onReminders] {
        if (before)
            before();
        if (frame && frame->showsReminder())
            QApplication::alert(frame);
    };
    connect(floor_, &CMirovaneView::floorMapFailed, this, [this](const QString& sentence, bool missing) {
        if (missing)
            dialogs_.fail(sentence.toStdString());
    });
    if (KeyboardLights::displayIsLocal(qEnvironmentVariable("DISPLAY")))
        keyboard_.emplace();
    connect(new IdleNotifier(this), &IdleNotifier::idle, this, &CMainFrame::refresh);
}

void CMainFrame::placeWindow() {
    setMinimumSize(smallestSize);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    resize(defaultSize.boundedTo(screen.size() * 9 / 10));
    applyPlacement(*this, readPlacement(station_.settings(), mainFramePlacement));
    new PlacementKeeper(*this, station_.settings(), mainFramePlacement);
}

void CMainFrame::showTitle() {
    const QString title = showsReminder()
                              ? QStringLiteral("Reminder Due:%1").arg(station_.reminders().DueCount())
                              : QString::fromStdString(mirovane::windowTitle(station_.document().path()));
    // Doubled, or a file named so would lose it: alone it is where a window title marks changes.
    const QString literal = QString(title).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    if (literal != QMainWindow::windowTitle())
        setWindowTitle(literal);
}

bool CMainFrame::showsReminder() const {
    const CReminderCheck& reminders = station_.reminders();
    return reminders.DueCount() > 0 && reminders.ReminderPhase() &&
           station_.document().display().ReminderTitlebarShow;
}

CommandState CMainFrame::commandState() {
    const CMirovaneDoc& document = station_.document();
    const bool hasRanges = document.findSpecial(SpecialType::DiscoverRangeRecord) != nullptr;
    return {document.deviceCount() > 0, hasSelection_, hasRanges || station_.liveDiscover().enabled()};
}

IndicatorState CMainFrame::indicatorState() const {
    IndicatorState state;
    state.remindersDue = station_.reminders().DueCount();
    state.liveDiscoverEnabled = station_.liveDiscover().enabled();
    state.discovered = station_.document().discovered();
    state.liveStatText = QString::fromStdString(station_.liveStat().statusText());
    state.anyTypeHidden = station_.document().display().VisibleTypes != -1;
    if (keyboard_)
        state.keyboardText = keyboardText(keyboard_->read());
    return state;
}

} // namespace mirovane
