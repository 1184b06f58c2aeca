#include "ui/frame/bars/ToolIcons.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace mirovane {

namespace {

const QColor outline(70, 70, 70);
const QColor paper(255, 255, 255);
const QColor folder(236, 184, 84);
const QColor disk(92, 122, 168);
const QColor accent(52, 101, 164);
const QColor steel(140, 148, 160);

// Every picture is drawn on a field of 16 x 16 units.

QPainterPath sheetShape() {
    QPainterPath sheet;
    sheet.addPolygon(QPolygonF{{3.5, 1.5}, {9.5, 1.5}, {12.5, 4.5}, {12.5, 14.5}, {3.5, 14.5}});
    sheet.closeSubpath();
    return sheet;
}

void paintNew(QPainter& painter) {
    painter.setBrush(paper);
    painter.drawPath(sheetShape());
    painter.drawPolyline(QPolygonF{{9.5, 1.5}, {9.5, 4.5}, {12.5, 4.5}});
}

void paintOpen(QPainter& painter) {
    painter.setBrush(folder.darker(115));
    painter.drawPolygon(QPolygonF{{1.5, 13.5}, {1.5, 3.5}, {6.5, 3.5}, {8, 5.5}, {13.5, 5.5}, {13.5, 13.5}});
    painter.setBrush(folder);
    painter.drawPolygon(QPolygonF{{1.5, 13.5}, {4, 7.5}, {15.5, 7.5}, {13.5, 13.5}});
}

void paintSave(QPainter& painter) {
    painter.setBrush(disk);
    painter.drawPolygon(QPolygonF{{1.5, 1.5}, {12.5, 1.5}, {14.5, 3.5}, {14.5, 14.5}, {1.5, 14.5}});
    painter.setBrush(paper);
    painter.drawRect(QRectF(4.5, 1.5, 6, 4));
    painter.drawRect(QRectF(3.5, 8.5, 9, 6));
    painter.fillRect(QRectF(8, 2.5, 1.5, 2), outline);
}

void paintCut(QPainter& painter) {
    painter.setPen(QPen(steel, 1.4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(5, 10.5), QPointF(11, 1.5));
    painter.drawLine(QPointF(11, 10.5), QPointF(5, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(accent, 1.5));
    painter.drawEllipse(QPointF(4.2, 12.2), 2.1, 2.1);
    painter.drawEllipse(QPointF(11.8, 12.2), 2.1, 2.1);
}

void paintCopy(QPainter& painter) {
    painter.setBrush(paper);
    painter.drawRect(QRectF(2.5, 1.5, 8, 10));
    painter.drawRect(QRectF(5.5, 4.5, 8, 10));
    for (const double y : {7.5, 9.5, 11.5})
        painter.drawLine(QPointF(7.5, y), QPointF(11.5, y));
}

void paintPaste(QPainter& painter) {
    painter.setBrush(folder.darker(115));
    painter.drawRect(QRectF(2.5, 2.5, 10, 12));
    painter.setBrush(steel);
    painter.drawRect(QRectF(5.5, 1.5, 4, 2));
    painter.setBrush(paper);
    painter.drawRect(QRectF(6.5, 6.5, 7.5, 8));
}

void paintPrint(QPainter& painter) {
    painter.setBrush(paper);
    painter.drawRect(QRectF(4.5, 1.5, 7, 5));
    painter.setBrush(steel);
    painter.drawRect(QRectF(1.5, 6.5, 13, 5));
    painter.setBrush(paper);
    painter.drawRect(QRectF(4.5, 9.5, 7, 5));
}

/// A pointer with a question mark: point at what you want to know more about.
void paintHelp(QPainter& painter) {
    painter.setBrush(paper);
    painter.drawPolygon(
        QPolygonF{{1.5, 1.5}, {1.5, 11}, {4, 8.8}, {5.6, 12.6}, {7.2, 11.9}, {5.6, 8.2}, {8.8, 8}});
    QPainterPath mark;
    mark.moveTo(9.2, 5);
    mark.cubicTo(9.2, 1, 14.8, 1, 14.8, 4.8);
    mark.cubicTo(14.8, 7.2, 12, 7, 12, 9.8);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(accent, 1.7));
    painter.drawPath(mark);
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawEllipse(QPointF(12, 12.6), 1.1, 1.1);
}

void paintAbout(QPainter& painter) {
    painter.setBrush(accent);
    painter.setPen(QPen(accent.darker(130), 1));
    painter.drawEllipse(QRectF(1.5, 1.5, 13, 13));
    painter.setPen(Qt::NoPen);
    painter.setBrush(paper);
    painter.drawEllipse(QRectF(7, 3.8, 2.2, 2.2));
    painter.drawRect(QRectF(7.2, 7, 1.8, 5.2));
}

void paintProgram(QPainter& painter) {
    painter.setBrush(QColor(238, 240, 243));
    painter.setPen(QPen(outline, 0.6));
    painter.drawRoundedRect(QRectF(0.6, 0.6, 14.8, 14.8), 1.6, 1.6);
    painter.setPen(QPen(QColor(150, 158, 170), 0.7));
    painter.drawPolyline(QPolygonF{{0.8, 9.5}, {5.2, 9.5}, {5.2, 15.2}});
    painter.drawPolyline(QPolygonF{{15.2, 6}, {11.2, 6}, {11.2, 0.8}});
    QPainterPath marker;
    marker.moveTo(8, 14.2);
    marker.cubicTo(6.6, 11, 3.8, 9.4, 3.8, 6.3);
    marker.arcTo(QRectF(3.8, 2, 8.4, 8.4), 180, -180);
    marker.cubicTo(12.2, 9.4, 9.4, 11, 8, 14.2);
    painter.setPen(QPen(accent.darker(140), 0.6));
    painter.setBrush(accent);
    painter.drawPath(marker);
    painter.setBrush(paper);
    painter.drawEllipse(QPointF(8, 6.2), 1.9, 1.9);
}

class CPictureEngine final : public QIconEngine {
public:
    using Paint = void (*)(QPainter&);

    explicit CPictureEngine(Paint picture) : picture_(picture) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const qreal side = std::min(rect.width(), rect.height());
        painter->translate(rect.x() + (rect.width() - side) / 2, rect.y() + (rect.height() - side) / 2);
        painter->scale(side / 16, side / 16);
        painter->setPen(QPen(outline, 1));
        if (mode == QIcon::Disabled)
            painter->setOpacity(0.4);
        picture_(*painter);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine* clone() const override { return new CPictureEngine(*this); }

private:
    Paint picture_;
};

} // namespace

QIcon toolIcon(ToolPicture picture) {
    switch (picture) {
    case ToolPicture::New:
        return QIcon(new CPictureEngine(paintNew));
    case ToolPicture::Open:
        return QIcon(new CPictureEngine(paintOpen));
    case ToolPicture::Save:
        return QIcon(new CPictureEngine(paintSave));
    case ToolPicture::Cut:
        return QIcon(new CPictureEngine(paintCut));
    case ToolPicture::Copy:
        return QIcon(new CPictureEngine(paintCopy));
    case ToolPicture::Paste:
        return QIcon(new CPictureEngine(paintPaste));
    case ToolPicture::Print:
        return QIcon(new CPictureEngine(paintPrint));
    case ToolPicture::Help:
        return QIcon(new CPictureEngine(paintHelp));
    case ToolPicture::About:
        return QIcon(new CPictureEngine(paintAbout));
    }
    return {};
}

QIcon programIcon() {
    QIcon icon;
    CPictureEngine engine(paintProgram);
    // Window managers take ready pixmaps only.
    for (const int side : {16, 24, 32, 48, 64, 128, 256})
        icon.addPixmap(engine.pixmap({side, side}, QIcon::Normal, QIcon::Off));
    return icon;
}

} // namespace mirovane
