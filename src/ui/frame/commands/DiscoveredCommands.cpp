#include "ui/frame/commands/DiscoveredCommands.h"

#include "ui/discovered/DiscoveredDrag.h"
#include "ui/floor/MirovaneView.h"

#include <QApplication>
#include <QDropEvent>

namespace mirovane {

CDiscoveredCommands::CDiscoveredCommands(Parts parts) : parts_(parts) {
    parts_.floor.viewport()->setAcceptDrops(true);
    parts_.floor.viewport()->installEventFilter(this);
    parts_.floor.input().setDropTarget(this);
}

/// The floor lives a little longer.
CDiscoveredCommands::~CDiscoveredCommands() {
    parts_.floor.input().setDropTarget(nullptr);
}

void CDiscoveredCommands::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::ViewDiscoverMisc,
                       {[this](const CommandDefinition&, bool) { discovered().present(); }, {}});
    moveTo_ = actions.action("editMoveTo");
}

CDiscoveredWindow& CDiscoveredCommands::discovered() {
    using From = CFindCommands::From;
    if (!discovered_) {
        CFindCommands& finding = parts_.finding;
        discovered_ = std::make_unique<CDiscoveredWindow>(
            CDiscoveredWindow::Parts{
                parts_.station, parts_.dialogs, parts_.settings, parts_.log, parts_.floor.drawing().icons(),
                [this] { return newDevicePlace(parts_.floor.window()); },
                [this, &finding] { finding.find(From::DiscoveredMisc, discovered_.get()); },
                [&finding] { finding.findNext(From::DiscoveredMisc); },
                [&finding] { finding.findReminderDue(From::DiscoveredMisc); },
                [this] {
                    editSelected();
                }},
            &parts_.window);
        discovered_->setWindowIcon(parts_.window.windowIcon());
        discovered_->openBeside(parts_.window);
    }
    return *discovered_;
}

void CDiscoveredCommands::close() {
    if (discovered_)
        discovered_->close();
}

void CDiscoveredCommands::editSelected() {
    CPropertiesEditor::Neighbours order;
    for (const CHardware* device : discovered_->view().devices())
        order.push_back(parts_.station.document().keyOf(*device));
    parts_.properties.run(parts_.station.selection().members(CSelection::Scope::DiscoveredMisc), *discovered_,
                          std::move(order));
}

// ---- dragged off the floor

bool CDiscoveredCommands::isAt(QPoint screenPoint) const {
    return discovered_ && discovered_->isVisible() &&
           QApplication::topLevelAt(screenPoint) == discovered_.get();
}

/// Queued: the question's event loop must not begin while the floor still handles the button.
void CDiscoveredCommands::devicesDropped() {
    if (moveTo_)
        QMetaObject::invokeMethod(moveTo_, &QAction::trigger, Qt::QueuedConnection);
}

// ---- dropped on the floor

/// What is not ours goes on to the main window, which opens datafiles that are dropped on it.
bool CDiscoveredCommands::eventFilter(QObject* watched, QEvent* event) {
    const bool moves = event->type() == QEvent::DragEnter || event->type() == QEvent::DragMove;
    if (!moves && event->type() != QEvent::Drop)
        return QObject::eventFilter(watched, event);
    auto& drop = *static_cast<QDropEvent*>(event);
    const auto devices = draggedDevices(drop.mimeData());
    drop.setAccepted(!devices.empty());
    if (devices.empty() || moves)
        return true;
    const QPoint scaledAt = parts_.floor.scaledPoint(drop.position().toPoint());
    const std::int32_t zoom = floorZoom(parts_.station.display()).ZoomPercent;
    discovered().dropOnFloor(devices, {unscaled(scaledAt.x(), zoom), unscaled(scaledAt.y(), zoom)});
    return true;
}

} // namespace mirovane
