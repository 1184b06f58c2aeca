#pragma once

#include "model/Document.h"
#include "model/floor/MarkedArea.h"
#include "model/records/Text.h"
#include "ui/floor/geometry/FloorGeometry.h"
#include "ui/floor/paint/FloorViewState.h"
#include "ui/floor/paint/IconSet.h"
#include "ui/floor/paint/LabelFont.h"
#include "ui/floor/paint/LabelLines.h"

#include <QImage>
#include <QPainter>
#include <QPen>

namespace mirovane::test {

/// The floor drawn the plain way, as a first version would: the whole list twice per frame, every text drawn
/// as text, every bitmap scaled where it is drawn, the highlight by its raster operation. Keeps nothing.
/// Logical pixels only, no photo. What the kept and incremental painting must equal, and what it is measured
/// against.
class PlainPainter {
public:
    PlainPainter(const CMirovaneDoc& document, const DisplaySettings& display, const CIconSet& icons,
                 const QImage& map)
        : document_(document), display_(display), icons_(icons), map_(map) {}

    void draw(QImage& canvas, const FloorViewState& state) {
        state_ = &state;
        zoom_ = state.view.zoom;
        const LabelFont font(state.view.LabelFontHeight);
        font_ = &font;
        QPainter painter(&canvas);
        painter.fillRect(canvas.rect(), Qt::white);
        if (!map_.isNull()) {
            const QRect target(-state.view.origin, scaled(map_.size(), zoom_.ZoomPercent));
            painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom_.ZoomPercent != 100);
            painter.drawImage(target, map_);
            painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
        }
        for (const bool onTop : {false, true}) {
            for (std::size_t i = 0; i < document_.size(); ++i) {
                const CHardware& device = document_.at(i);
                if (device.onFloor() && (device.Selected || device.ShowAll) == onTop &&
                    visible(device, onTop))
                    drawDevice(painter, device);
            }
        }
    }

private:
    bool visible(const CHardware& device, bool onTop) const {
        const DisplaySettings& display = display_;
        const bool wanted = display.typeVisible(device.Type) ||
                            (device.ReminderDue && display.ReminderDeviceShow) ||
                            (onTop && !state_->find.FindNothingFound);
        const bool area = device.Type == DeviceType::LocationMarker && showsArea(device);
        const QPoint at = toScaled(device.Position, zoom_.ZoomPercent) - state_->view.origin;
        const bool near = at.x() > -200 && at.x() < state_->view.client.width() && at.y() > -200 &&
                          at.y() < state_->view.client.height();
        return wanted && (near || area);
    }

    bool showsArea(const CHardware& device) const {
        return device.RecID == state_->SelectedMarker || device.RecID == state_->gesture.MarkingMarker;
    }

    void drawText(QPainter& painter, QPoint corner, const LabelLine& line) const {
        drawLabel(painter, corner, laidOut(line, *font_), *font_, painter.window());
    }

    void drawDevice(QPainter& painter, const CHardware& device) const {
        const QPoint at = toScaled(device.Position, zoom_.ZoomPercent) - state_->view.origin;
        const auto shown = shownState(device);
        const QImage bitmap = shown ? icons_.bitmap(device.Type, *shown) : QImage();
        const QSize box =
            shown ? scaled(icons_.sizes().of(device.Type), zoom_.ZoomDevicesPercent) : QSize(0, 0);
        const QImage icon = CIconSet::stretch(bitmap, scaled(bitmap.size(), zoom_.ZoomDevicesPercent));
        painter.drawImage(at, icon);
        const QPoint below = at + QPoint(0, box.height());
        for (const LabelLine& line : labelLines(device, display_, state_->labels()))
            drawText(painter, (line.row < 0 ? at : below) + QPoint(0, line.row * font_->height), line);
        if (device.Selected) {
            painter.fillRect(QRect(at, box), Qt::blue);
            painter.setCompositionMode(QPainter::RasterOp_NotSourceOrDestination);
            painter.drawImage(at, icon);
            painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
            if (const auto line = foundReminderLine(device, state_->labels()))
                drawText(painter, below, *line);
        }
        drawShapes(painter, device, QRect(at, box), bitmap.size());
    }

    void drawShapes(QPainter& painter, const CHardware& device, QRect box, QSize bitmap) const {
        const DisplaySettings& display = display_;
        const auto usePen = [&painter](QColor colour, int width) {
            painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.setBrush(Qt::NoBrush);
            painter.resetTransform();
            if (width % 2)
                painter.translate(0.5, 0.5);
        };
        painter.setRenderHint(QPainter::Antialiasing);
        usePen(Qt::blue, linePenWidth(display));
        for (const FloorLine& line :
             directionLines(device, display, box.topLeft(), bitmap, zoom_.ZoomDevicesPercent))
            painter.drawLine(line.from, line.to);
        if (display.LSStatusDeviceShow && state_->liveStatHolds && state_->liveStatHolds(device.RecID))
            painter.drawEllipse(box);
        if (device.Type == DeviceType::LocationMarker && showsArea(device)) {
            usePen(QColor(240, 240, 0), 5);
            std::vector<QPoint> points;
            for (const MapPoint& corner : parseMarkedArea(device.ToJack))
                points.push_back(toScaled(corner, zoom_.ZoomPercent) - state_->view.origin);
            if (!points.empty() && state_->gesture.MarkingMarker && !state_->SelectedMarker)
                points.push_back(state_->gesture.LastPoint - state_->view.origin);
            if (points.size() > 1)
                painter.drawPolyline(points.data(), static_cast<int>(points.size()));
        }
        painter.resetTransform();
        painter.setRenderHint(QPainter::Antialiasing, false);
    }

    const CMirovaneDoc& document_;
    const DisplaySettings& display_;
    const CIconSet& icons_;
    QImage map_;
    const FloorViewState* state_ = nullptr;
    const LabelFont* font_ = nullptr;
    FloorZoom zoom_;
};

} // namespace mirovane::test
