#include "ui/widgets/WindowPlacement.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <chrono>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds settleTime{200};

/// What the window system adds to a window, as far as one can know before it is shown.
constexpr QSize frameSize(10, 40);

int areaOf(const QRect& rect) {
    return rect.isEmpty() ? 0 : rect.width() * rect.height();
}

/// Screens do not overlap, so the parts that are seen add up to a window that is seen whole.
bool seenWhole(const QRect& window, const QList<QRect>& screens) {
    int seen = 0;
    for (const QRect& screen : screens)
        seen += areaOf(window.intersected(screen));
    return seen == areaOf(window);
}

QList<QRect> availableAreas() {
    QList<QRect> areas;
    for (const QScreen* screen : QGuiApplication::screens())
        areas.append(screen->availableGeometry());
    return areas;
}

} // namespace

StoredPlacement readPlacement(const CSettings& settings, const PlacementKeys& keys) {
    const auto value = [&settings](std::string_view name) -> std::optional<int> {
        const std::int32_t stored = settings.read(name, placementNotSet);
        return stored == placementNotSet ? std::nullopt : std::optional<int>(stored);
    };
    return {value(keys.left), value(keys.top), value(keys.width), value(keys.height)};
}

QRect reachable(const QRect& wanted, const QList<QRect>& screens) {
    if (screens.isEmpty() || seenWhole(wanted, screens))
        return wanted;
    const QRect& screen = *std::ranges::max_element(screens, {}, [&wanted](const QRect& candidate) {
        return areaOf(
            candidate.intersected(wanted)); // the first, which is the primary one, when none has any of it
    });
    QRect place(wanted.topLeft(), wanted.size().boundedTo(screen.size()));
    place.moveLeft(std::clamp(place.left(), screen.left(), screen.right() + 1 - place.width()));
    place.moveTop(std::clamp(place.top(), screen.top(), screen.bottom() + 1 - place.height()));
    return place;
}

void applyPlacement(QWidget& window, const StoredPlacement& stored) {
    // Far out values from a damaged settings file would overflow inside the window system.
    const auto inRange = [](int value) {
        return std::clamp(value, -30'000, 30'000);
    };
    const QSize size(stored.width ? std::max(inRange(*stored.width), 1) : window.width(),
                     stored.height ? std::max(inRange(*stored.height), 1) : window.height());
    const QPoint corner(stored.left ? inRange(*stored.left) : window.x(),
                        stored.top ? inRange(*stored.top) : window.y());
    const QSize whole = size.expandedTo(window.minimumSizeHint()) + frameSize;
    const QRect place = reachable(QRect(corner, whole), availableAreas());
    window.resize(place.size() - frameSize);
    if (stored.left || stored.top)
        window.move(place.topLeft());
}

bool hasPlacement(const CSettings& settings, const PlacementKeys& keys) {
    const StoredPlacement stored = readPlacement(settings, keys);
    return stored.left && stored.width && stored.height;
}

void restorePlacement(QWidget& window, const CSettings& settings, const PlacementKeys& keys) {
    if (hasPlacement(settings, keys))
        applyPlacement(window, readPlacement(settings, keys));
}

QPoint placeBeside(const QSize& size, const QRect& owner, const QRect& screen) {
    const QSize whole = size + frameSize;
    const int rightmost = screen.right() + 1 - whole.width();
    const bool roomRight = owner.right() + 1 <= rightmost;
    const bool roomLeft = owner.left() - whole.width() >= screen.left();
    const int left = roomRight  ? owner.right() + 1
                     : roomLeft ? owner.left() - whole.width()
                                : std::min(owner.right() + 1 - whole.width(), rightmost);
    const int lowest = screen.bottom() + 1 - whole.height();
    const int belowItsBars = owner.top() + owner.height() / 8;
    return {std::max(left, screen.left()), std::max(std::min(belowItsBars, lowest), screen.top())};
}

void fitToScreen(QWidget& window, const QSize& wanted) {
    const QWidget& shown = window.parentWidget() ? *window.parentWidget() : window;
    const QSize room = shown.screen()->availableGeometry().size() - frameSize;
    window.resize(wanted.expandedTo(window.sizeHint()).boundedTo(room));
}

CPlacementKeeper::CPlacementKeeper(QWidget& window, CSettings& settings, const PlacementKeys& keys)
    : QObject(&window), window_(window), settings_(settings), keys_(keys) {
    delay_.setSingleShot(true);
    connect(&delay_, &QTimer::timeout, this, &CPlacementKeeper::write);
    window.installEventFilter(this);
}

void CPlacementKeeper::flush() {
    if (delay_.isActive()) {
        delay_.stop();
        write();
    }
}

bool CPlacementKeeper::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize)
        delay_.start(settleTime);
    else if (event->type() == QEvent::Close || event->type() == QEvent::Hide)
        flush();
    return QObject::eventFilter(watched, event);
}

void CPlacementKeeper::write() {
    if (window_.windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen))
        return;
    settings_.write(keys_.left, window_.x());
    settings_.write(keys_.top, window_.y());
    settings_.write(keys_.width, window_.width());
    settings_.write(keys_.height, window_.height());
}

} // namespace mirovane
