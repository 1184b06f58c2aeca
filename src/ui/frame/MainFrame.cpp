#include "ui/frame/MainFrame.h"

#include "model/records/Text.h"
#include "ui/find/QuickFindPopup.h"
#include "ui/floor/MirovaneView.h"
#include "ui/frame/FileDrop.h"
#include "ui/frame/FrameTitle.h"
#include "ui/frame/MessageLogWindow.h"
#include "ui/frame/bars/FrameMenus.h"
#include "ui/frame/bars/FrameToolBar.h"
#include "ui/frame/bars/MarkerSelector.h"
#include "ui/frame/bars/StationState.h"
#include "ui/frame/bars/ToolIcons.h"
#include "ui/frame/commands/ApplicationsMenu.h"
#include "ui/widgets/IdleNotifier.h"
#include "ui/widgets/WindowPlacement.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QPointer>
#include <QScreen>
#include <QShortcut>
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
      toolbar_(new CFrameToolBar(*this, *actions_, services.station.document(), services.settings)),
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
    connectPaneKeys();
    connectStation();
    connect(
        new CFileDrop(*this), &CFileDrop::dropped, this,
        [this](const std::string& path) { files().openPath(path); }, Qt::QueuedConnection);
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
    commands_.discovered().close();
    QMainWindow::closeEvent(event);
}

void CMainFrame::connectWindows() {
    connect(&windows_, &CFrameWindows::deviceWanted, this, &CMainFrame::showOnFloor);
    connect(
        &windows_, &CFrameWindows::rowPropertiesWanted, this, [this] { commands_.editListRows(); });
    connect(&windows_, &CFrameWindows::rangesWanted, this,
            [this](QWidget* asking) { commands_.tools().openLiveStatOptions(asking); });
    connect(floor_, &CMirovaneView::selectedMarkerChanged, this, [this](std::int32_t recID) {
        const CHardware* marker = services_.station.document().findDevice(recID);
        if (marker)
            toolbar_->markers().SelectMarkerItem(marker->Comment);
        else
            toolbar_->markers().ClearMarkerSelection();
    });
    connect(&toolbar_->markers(), &CMarkerSelector::markerChosen, this, [this](std::int32_t recID) {
        finding().findMarker(recID);
        floor_->setFocus();
    });
    connect(
        &toolbar_->quickFind(), &CQuickFindField::wanted, this,
        [this](const QString& typed) {
            const QWidget& field = toolbar_->quickFind();
            finding().quickFind(field.mapToGlobal(QPoint(0, field.height())), typed);
        });
    connect(&panes_, &CStatusPanes::remindersClicked, this, [this] {
        if (QAction* next = actions_->action("editFindReminderDue"))
            next->trigger();
    });
}

/// The floor and the toolbar's list: of two panes the next one is also the one before.
void CMainFrame::connectPaneKeys() {
    for (const char* key : {"F6", "Shift+F6"})
        connect(
            new QShortcut(QKeySequence(QLatin1String(key)), this), &QShortcut::activated, this,
            [this] {
                QWidget& markers = toolbar_->markers();
                if (!markers.isVisible() || markers.hasFocus())
                    floor_->setFocus(Qt::ShortcutFocusReason);
                else
                    markers.setFocus(Qt::ShortcutFocusReason);
            });
}

/// In front of a window manager's own choice: both bars are switched where their marks are.
QMenu* CMainFrame::createPopupMenu() {
    auto* menu = new QMenu(this);
    menu->addActions({actions_->action("viewToolbar"), actions_->action("viewStatusBar")});
    return menu;
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
    const CStation& station = services_.station;
    const std::string& datafile = station.datafile().path();
    const QString title = showsReminder() ? tr("Reminder Due:%1").arg(station.reminders().DueCount())
                                          : frameTitle(datafile, files().readOnly());
    if (title != windowTitle())
        setWindowTitle(title);
    const bool modified = datafile.empty() && station.document().modified() && !showsReminder();
    if (modified != isWindowModified()) // or each idle moment would make the next one
        setWindowModified(modified);
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
