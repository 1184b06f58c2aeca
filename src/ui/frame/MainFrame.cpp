#include "ui/frame/MainFrame.h"

#include "model/records/Text.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/FrameMenus.h"
#include "ui/frame/FrameToolBar.h"
#include "ui/frame/MessageLogWindow.h"
#include "ui/frame/StationState.h"
#include "ui/frame/ToolIcons.h"
#include "ui/frame/commands/ApplicationsMenu.h"
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
    : services_(services),
      floor_(floor),
      actions_(new CCommandActions(*this)),
      toolbar_(makeToolBar(*this, *actions_)),
      panes_(*statusBar()),
      windows_(services, *this),
      commands_(services, {*this, *floor, *toolbar_, *statusBar(), windows_, [this] {
                               refresh();
                           }}) {
    setObjectName(QStringLiteral("mainFrame"));
    setWindowIcon(programIcon());
    messageLog().setWindowIcon(windowIcon());
    setCentralWidget(floor_);
    commands_.connectTo(*actions_);
    makeMenus();
    connectWindows();
    connectStation();
    placeWindow();
    refresh();
    floor_->setFocus();
}

CMainFrame::~CMainFrame() {
    services_.station.removeObserver(*this);
    services_.log.removeListener(*this);
}

void CMainFrame::refresh() {
    showTitle();
    panes_.refresh(indicators());
    actions_->refresh(commandState(services_.station));
}

void CMainFrame::saveForSession(const std::string& rescuePath) {
    commands_.storeTyping();
    const CMirovaneDoc& document = services_.station.document();
    if (!document.modified())
        return;
    if (!services_.station.datafile().path().empty())
        services_.station.saveDatafile();
    else if (services_.station.saveDatafileAs(rescuePath).saved())
        services_.recent.add(rescuePath);
}

std::optional<FileError> CMainFrame::endSession() {
    sessionEnded_ = true;
    commands_.storeTyping();
    auto error = services_.station.shutDown();
    close();
    return error;
}

void CMainFrame::closeEvent(QCloseEvent* event) {
    commands_.storeTyping();
    if (!sessionEnded_ && !files().close()) {
        event->ignore();
        return;
    }
    windows_.close();
    QMainWindow::closeEvent(event);
}

void CMainFrame::connectWindows() {
    connect(&windows_, &CFrameWindows::deviceWanted, this, &CMainFrame::showOnFloor);
    connect(&windows_, &CFrameWindows::rangesWanted, this,
            [this](QWidget* asking) { commands_.tools().openLiveStatOptions(asking); });
}

void CMainFrame::showOnFloor(std::int32_t recID) {
    const CHardware* device = services_.station.document().findDevice(recID);
    if (!device)
        return;
    setWindowState(windowState() & ~Qt::WindowMinimized);
    raise();
    activateWindow();
    floor_->setFocus();
    floor_->showDevice(*device);
}

void CMainFrame::makeMenus() {
    new CFrameMenus(*menuBar(),
                    {*actions_, services_.recent, [this](const std::string& path) { files().openPath(path); },
                     [this] {
                         menuOpens();
                     }});
    applicationsMenu_ = new CApplicationsMenu(*menuBar(), {services_.station.document(), *actions_,
                                                           [this](const ApplicationValues& application) {
                                                               commands_.applications().run(application);
                                                           },
                                                           [this] { return commands_.targets(); },
                                                           [this] {
                                                               menuOpens();
                                                           }});
    floor_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(floor_, &QWidget::customContextMenuRequested, this, [this](const QPoint& place) {
        applicationsMenu_->popup(floor_->viewport()->mapToGlobal(place));
    });
}

void CMainFrame::menuOpens() {
    actions_->refresh(commandState(services_.station));
}

void CMainFrame::connectStation() {
    services_.log.addListener(*this);
    services_.station.addObserver(*this);
    connect(floor_, &CMirovaneView::floorMapFailed, this, [this](const QString& sentence, bool missing) {
        if (missing)
            commands_.editing().floorMap().offerAnother(sentence.toStdString());
    });
    // Queued: the dialog's event loop must not begin within the double-click.
    connect(
        &floor_->input(), &CFloorInput::propertiesWanted, this,
        [this] {
            if (QAction* properties = actions_->action("editProperties"))
                properties->trigger();
        },
        Qt::QueuedConnection);
    connect(&floor_->input(), &CFloorInput::pointerMoved, this,
            [this](std::optional<MapPoint> at) { panes_.showPointer(at); });
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
    applyPlacement(*this, readPlacement(services_.settings, mainFramePlacement));
    new CPlacementKeeper(*this, services_.settings, mainFramePlacement);
}

void CMainFrame::showTitle() {
    const QString title =
        showsReminder() ? tr("Reminder Due:%1").arg(services_.station.reminders().DueCount())
                        : QString::fromStdString(mirovane::windowTitle(services_.station.datafile().path()));
    // Doubled, or a file named so would lose it: alone it is where a window title marks changes.
    const QString literal = QString(title).replace(QStringLiteral("[*]"), QStringLiteral("[*][*]"));
    if (literal != QMainWindow::windowTitle())
        setWindowTitle(literal);
}

bool CMainFrame::showsReminder() const {
    const CReminders& reminders = services_.station.reminders();
    return reminders.DueCount() > 0 && reminders.ReminderPhase() &&
           services_.station.display().ReminderTitlebarShow;
}

IndicatorState CMainFrame::indicators() const {
    IndicatorState state = indicatorState(services_.station);
    if (keyboard_)
        state.keyboardText = keyboardText(keyboard_->read());
    return state;
}

} // namespace mirovane
