#include "ui/discovered/DiscoveredWindow.h"

#include "ui/find/FlashRing.h"
#include "ui/widgets/DialogText.h"
#include "ui/widgets/SaveFailure.h"
#include "ui/widgets/WaitCursor.h"
#include "ui/widgets/WindowPlacement.h"

#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLocale>
#include <QMenuBar>
#include <QScreen>
#include <QVBoxLayout>

namespace mirovane {

namespace {

using Scope = CSelection::Scope;

constexpr QSize firstSize(5 * DiscoveredGrid::CellWidth + 30, 3 * DiscoveredGrid::CellHeight + 40);
constexpr QSize smallestSize(160, 160);
constexpr PlacementKeys placement{"WindowDiscoverTopX", "WindowDiscoverTopY", "WindowDiscoverBotX",
                                  "WindowDiscoverBotY"};
constexpr int edge = 10;

/// Window systems keep no other kind of window above its owner.
constexpr Qt::WindowFlags flagsAboveOwner = Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                            Qt::WindowMinMaxButtonsHint | Qt::WindowCloseButtonHint;

} // namespace

CDiscoveredWindow::CDiscoveredWindow(Parts parts, QWidget* owner)
    : QWidget(owner, flagsAboveOwner),
      parts_(std::move(parts)),
      view_(new CDiscoveredView(parts_.station, parts_.icons, this)),
      status_(new QLabel(this)),
      edit_(new QMenu(tr("&Edit"), this)) {
    setObjectName(QStringLiteral("discoveredWindow"));
    setWindowTitle(tr("Discovered/Misc Device - Mirovane"));
    setAttribute(Qt::WA_QuitOnClose, false);
    layOut();
    fillMenus();
    setMinimumSize(smallestSize);
    resize(firstSize.boundedTo(QGuiApplication::primaryScreen()->availableSize() * 9 / 10));
    restorePlacement(*this, parts_.settings, placement);
    new CPlacementKeeper(*this, parts_.settings, placement);
    connect(view_, &CDiscoveredView::changed, this, &CDiscoveredWindow::showStatus);
    connect(view_, &CDiscoveredView::propertiesWanted, this, parts_.properties);
    view_->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view_, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { edit_->popup(view_->viewport()->mapToGlobal(at)); });
    showStatus();
    view_->setFocus();
}

void CDiscoveredWindow::layOut() {
    auto* bar = new QMenuBar(this);
    bar->setNativeMenuBar(false); // a window of its own has menus of its own
    bar->addMenu(edit_);
    status_->setObjectName(QStringLiteral("discoveredStatus"));
    status_->setTextFormat(Qt::PlainText);
    status_->setContentsMargins(edge, 0, edge, 0);
    auto* top = new QHBoxLayout;
    top->setContentsMargins(0, 0, 0, 0);
    top->addWidget(bar, 1);
    top->addWidget(status_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(top);
    layout->addWidget(view_);
}

// ---- the menu

QAction* CDiscoveredWindow::add(QMenu& menu, const QString& text, const char* name, const QKeySequence& key,
                                std::function<void()> run) {
    QAction* action = menu.addAction(text);
    action->setObjectName(QLatin1String(name));
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, std::move(run));
    addAction(action);
    return action;
}

void CDiscoveredWindow::fillMenus() {
    edit_->setObjectName(QStringLiteral("discoveredEdit"));
    onSelection_.push_back(add(
        *edit_, tr("&Delete"), "discoveredDelete", Qt::Key_Delete, [this] { deleteSelected(); }));
    onSelection_.push_back(add(*edit_, tr("&Move to"), "discoveredMoveTo", {}, [this] { moveToFloor(); }));
    QMenu* types = edit_->addMenu(tr("&These are"));
    types->setObjectName(QStringLiteral("discoveredTypes"));
    onSelection_.push_back(types->menuAction());
    fillTypes(*types);
    QAction* properties = add(*edit_, tr("&Properties"), "discoveredProperties", {}, parts_.properties);
    properties->setShortcuts(
        {QKeySequence(QStringLiteral("Alt+Return")), QKeySequence(QStringLiteral("Alt+Enter"))});
    onSelection_.push_back(properties);
    edit_->addSeparator();
    add(*edit_, tr("&Find..."), "discoveredFind", QKeySequence(QStringLiteral("Ctrl+F")), parts_.find);
    add(*edit_, tr("Find &Next"), "discoveredFindNext", Qt::Key_F3, parts_.findNext);
    add(*edit_, tr("Find Reminder Due"), "discoveredFindReminderDue", Qt::Key_F4, parts_.findReminderDue);
    edit_->addSeparator();
    add(*edit_, tr("Select &All"), "discoveredSelectAll", QKeySequence(QStringLiteral("Ctrl+A")),
        [this] { view_->selectAll(); });
    QAction* sort = add(*edit_, tr("&Sort by address"), "discoveredSort", {}, [this] {
        const bool listed = view_->sorting() == DiscoveredSorting::AsListed;
        view_->setSorting(listed ? DiscoveredSorting::ByAddress : DiscoveredSorting::AsListed);
    });
    sort->setCheckable(true);
}

void CDiscoveredWindow::fillTypes(QMenu& menu) {
    static constexpr const char* texts[] = {
        QT_TR_NOOP("&Jacks"),   QT_TR_NOOP("&Computers"),    QT_TR_NOOP("&Printers"),
        QT_TR_NOOP("&Laptops"), QT_TR_NOOP("&Switches"),     QT_TR_NOOP("&Routers"),
        QT_TR_NOOP("P&hones"),  QT_TR_NOOP("C&ameras"),      QT_TR_NOOP("Unk&nown"),
        QT_TR_NOOP("&UPS"),     QT_TR_NOOP("Card &Modules"), QT_TR_NOOP("&Wireless")};
    std::int32_t type = DeviceType::first;
    for (const char* text : texts) {
        QAction* action = menu.addAction(tr(text));
        action->setObjectName(QStringLiteral("discoveredType%1").arg(type));
        connect(action, &QAction::triggered, this, [this, type] { changeType(type); });
        ++type;
    }
}

void CDiscoveredWindow::showStatus() {
    const std::size_t selected = parts_.station.selection().count(Scope::DiscoveredMisc);
    for (QAction* action : onSelection_)
        action->setEnabled(selected > 0);
    if (!isVisible())
        return;
    const QLocale locale;
    const std::size_t all = view_->devices().size();
    QString text = all == 1 ? tr("1 device") : tr("%1 devices").arg(locale.toString(qulonglong{all}));
    if (selected > 0)
        text += tr(", %1 selected").arg(locale.toString(qulonglong{selected}));
    status_->setText(text);
}

// ---- commands

void CDiscoveredWindow::openBeside(const QWidget& window) {
    if (!hasPlacement(parts_.settings, placement))
        move(placeBeside(size(), window.frameGeometry(), window.screen()->availableGeometry()));
}

void CDiscoveredWindow::present() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    showStatus();
}

void CDiscoveredWindow::show(const CHardware& device, bool flash) {
    present();
    view_->revealSelected();
    const QRect place = view_->reveal(device);
    if (flash && !place.isEmpty())
        CFlashRing::flash(*view_->viewport(), place);
}

std::vector<DeviceKey> CDiscoveredWindow::selected(Scope scope) const {
    std::vector<DeviceKey> keys;
    for (const CHardware* device : parts_.station.selection().members(scope))
        keys.push_back(parts_.station.document().keyOf(*device));
    return keys;
}

/// False when the user does not want it.
bool CDiscoveredWindow::carryOut(DiscoveredEdit edit) {
    if (edit.request.devices.empty())
        return false;
    const bool deletes = edit.request.kind == EditRequest::Kind::Delete;
    const auto kind = deletes ? Question::Kind::DeleteDevices : Question::Kind::MoveDevices;
    if (!edit.question.empty() && !parts_.dialogs.ask({kind, edit.question}))
        return false;
    if (deletes)
        parts_.log.LogMessage("Deleting item(s)..., waiting for Live Stat to finish with the item.", true);
    SaveReport saved;
    {
        const CWaitCursor wait;
        saved = parts_.station.edit(edit.request, edit.change);
    }
    parts_.log.LogMessage(edit.done, true);
    if (saved.failed())
        parts_.dialogs.fail(saveFailureText(*saved.error));
    return true;
}

void CDiscoveredWindow::moveToFloor() {
    carryOut(mirovane::moveToFloor(selected(Scope::DiscoveredMisc), {parts_.floorMiddle()}));
}

void CDiscoveredWindow::dropOnFloor(const std::vector<DeviceKey>& devices, MapPoint corner) {
    DiscoveredEdit edit = mirovane::moveToFloor(devices, droppedPlaces(corner, devices.size()));
    edit.question.clear();
    carryOut(std::move(edit));
}

/// Delete counts what is selected on the floor as well: it is one selection.
void CDiscoveredWindow::deleteSelected() {
    if (parts_.station.selection().empty(Scope::DiscoveredMisc))
        return;
    carryOut(mirovane::deleteSelected(selected(Scope::Everywhere)));
}

void CDiscoveredWindow::changeType(std::int32_t type) {
    carryOut(mirovane::changeType(selected(Scope::DiscoveredMisc), type));
}

void CDiscoveredWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

} // namespace mirovane
