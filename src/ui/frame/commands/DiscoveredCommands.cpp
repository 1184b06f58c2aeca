#include "ui/frame/commands/DiscoveredCommands.h"

#include "ui/discovered/DiscoveredDrag.h"
#include "ui/floor/MirovaneView.h"

#include <QDropEvent>

namespace mirovane {

CDiscoveredCommands::CDiscoveredCommands(Parts parts) : parts_(parts) {
    parts_.floor.viewport()->setAcceptDrops(true);
    parts_.floor.viewport()->installEventFilter(this);
}

void CDiscoveredCommands::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::ViewDiscoverMisc,
                       {[this](const CommandDefinition&, bool) { discovered().present(); }, {}});
}

CDiscoveredWindow& CDiscoveredCommands::discovered() {
    using From = CFindCommands::From;
    if (!discovered_) {
        CFindCommands& finding = parts_.finding;
        discovered_ = std::make_unique<CDiscoveredWindow>(CDiscoveredWindow::Parts{
            parts_.station, parts_.dialogs, parts_.settings, parts_.log, parts_.floor.drawing().icons(),
            [this] { return newDevicePlace(parts_.floor.window()); },
            [this, &finding] { finding.find(From::DiscoveredMisc, discovered_.get()); },
            [&finding] { finding.findNext(From::DiscoveredMisc); },
            [&finding] {
                finding.findReminderDue(From::DiscoveredMisc);
            }});
        discovered_->setWindowIcon(parts_.window.windowIcon());
    }
    return *discovered_;
}

void CDiscoveredCommands::close() {
    if (discovered_)
        discovered_->close();
}

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
