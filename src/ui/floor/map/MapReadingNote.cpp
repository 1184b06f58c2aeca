#include "ui/floor/map/MapReadingNote.h"

#include <QToolTip>

namespace mirovane {

namespace {

constexpr int quickMilliseconds = 400;

} // namespace

CMapReadingNote::CMapReadingNote(QWidget* floor) : QLabel(tr("Reading the floor map..."), floor) {
    setObjectName(QStringLiteral("mapReadingNote"));
    setPalette(QToolTip::palette());
    setForegroundRole(QPalette::ToolTipText);
    setBackgroundRole(QPalette::ToolTipBase);
    setAutoFillBackground(true);
    setMargin(6);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    adjustSize();
    move(8, 8);
    hide();
    patience_.setSingleShot(true);
    patience_.setInterval(quickMilliseconds);
    connect(&patience_, &QTimer::timeout, this, &QWidget::show);
}

void CMapReadingNote::setReading(bool reading) {
    if (reading && isHidden()) {
        patience_.start();
    } else if (!reading) {
        patience_.stop();
        hide();
    }
}

} // namespace mirovane
