#include "ui/find/FlashRing.h"

#include <QPainter>

#include <chrono>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds blinkTime{220};
constexpr int blinks = 8;
constexpr int room = 14; ///< between the place and the ring's outer edge
constexpr int thickness = 5;

} // namespace

void CFlashRing::flash(QWidget& over, const QRect& place) {
    for (CFlashRing* before : over.findChildren<CFlashRing*>(QString(), Qt::FindDirectChildrenOnly))
        delete before;
    (new CFlashRing(over, place))->show();
}

CFlashRing::CFlashRing(QWidget& over, const QRect& place) : QWidget(&over), blinksLeft_(blinks) {
    setObjectName(QStringLiteral("flashRing"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    setGeometry(place.adjusted(-room, -room, room, room));
    connect(&timer_, &QTimer::timeout, this, &CFlashRing::blink);
    timer_.start(blinkTime);
}

void CFlashRing::blink() {
    if (--blinksLeft_ > 0) {
        setVisible(!isVisible());
        return;
    }
    timer_.stop();
    deleteLater();
}

/// Dark between light, so that it is seen on every floor map.
void CFlashRing::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF ring = QRectF(rect()).adjusted(thickness, thickness, -thickness, -thickness);
    painter.setPen(QPen(Qt::white, thickness + 3));
    painter.drawRoundedRect(ring, room, room);
    painter.setPen(QPen(QColor(220, 20, 60), thickness));
    painter.drawRoundedRect(ring, room, room);
}

} // namespace mirovane
