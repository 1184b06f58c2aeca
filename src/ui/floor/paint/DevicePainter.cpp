#include "ui/floor/paint/DevicePainter.h"

#include "model/floor/MarkedArea.h"
#include "model/records/Text.h"

#include <QPen>

#include <algorithm>

namespace mirovane {

namespace {

const QColor lineBlue(0, 0, 255);
const QColor areaYellow(240, 240, 0);
constexpr int areaPenWidth = 5;

/// An odd number of pixels lies evenly around a line only when the line runs through the middle of pixels.
class CLinePainter {
public:
    CLinePainter(QPainter& painter, QColor colour, int width) : painter_(painter) {
        painter_.save();
        painter_.setRenderHint(QPainter::Antialiasing);
        painter_.setBrush(Qt::NoBrush);
        painter_.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        if (width % 2 != 0)
            painter_.translate(0.5, 0.5);
    }
    ~CLinePainter() { painter_.restore(); }
    CLinePainter(const CLinePainter&) = delete;
    CLinePainter& operator=(const CLinePainter&) = delete;

    QPainter* operator->() const { return &painter_; }

private:
    QPainter& painter_;
};

} // namespace

CDevicePainter::CDevicePainter(const DisplaySettings& display, CIconSet& icons, CPhotoStore& photos)
    : display_(display), icons_(icons), photos_(photos) {}

void CDevicePainter::begin(const FloorViewState& state) {
    state_ = state;
    penWidth_ = std::max(1, state.view.px(linePenWidth(display_) * state.view.lineScale));
    labels_.begin(display_, state.labels(), std::max(1, state.view.px(state.view.LabelFontHeight)));
}

CDevicePainter::Figure CDevicePainter::figureOf(const CHardware& device) {
    const FloorView& view = state_.view;
    const std::int32_t percent = view.zoom.ZoomDevicesPercent;
    Figure figure;
    figure.corner = view.toFrame(device.Position);
    figure.bitmap = QSize(0, 0);
    QSize box(0, 0);
    if (const auto state = shownState(device)) {
        figure.bitmap = icons_.bitmap(device.Type, *state).size();
        box = scaled(icons_.sizes().of(device.Type), percent);
    }
    figure.box = view.pxRect(figure.corner, box);
    figure.drawn = view.pxRect(figure.corner, scaled(figure.bitmap, percent));
    figure.textTop = figure.box.topLeft();
    figure.textBottom = figure.box.topLeft() + QPoint(0, figure.box.height());
    figure.labels = &labels_.block(device);
    figure.bounds = boundsOf(device, figure);
    return figure;
}

void CDevicePainter::DrawDevice(const FloorCanvas& canvas, const CHardware& device, const Figure& figure,
                                QRect clip, bool withoutDecorations) {
    QPainter& painter = canvas.painter;
    const bool hidden = device.Selected && !withoutDecorations && figure.drawn == figure.box;
    if (!hidden) // under its highlight
        drawIcon(painter, device, figure);
    labels_.draw(canvas, *figure.labels, figure.textTop, figure.textBottom, clip);
    if (withoutDecorations)
        return;
    if (device.Selected) {
        drawHighlight(painter, device, figure);
        drawFoundReminder(canvas, device, figure, clip);
    }
    drawPhoto(painter, device, figure);
    drawLines(painter, device, figure);
    if (showsRing(device))
        drawRing(painter, device, figure);
    if (showsMarkedArea(device))
        drawMarkedArea(painter, device);
}

std::vector<QRect> CDevicePainter::labelRects(const Figure& figure) const {
    std::vector<QRect> rects;
    for (const LaidLine& line : figure.labels->lines)
        if (line.width > 0)
            rects.push_back(labels_.placeOf(line, figure.textTop, figure.textBottom));
    return rects;
}

void CDevicePainter::drawIcon(QPainter& painter, const CHardware& device, const Figure& figure) {
    if (figure.drawn.isEmpty())
        return;
    painter.drawImage(figure.drawn.topLeft(),
                      icons_.stretched(device.Type, *shownState(device), figure.drawn.size()));
}

/// Where the bitmap is as large as the layout box the two steps, blue box and bitmap over it, are one kept
/// image.
void CDevicePainter::drawHighlight(QPainter& painter, const CHardware& device, const Figure& figure) {
    if (!figure.drawn.isEmpty() && figure.drawn == figure.box) {
        painter.drawImage(figure.drawn.topLeft(),
                          icons_.highlighted(device.Type, *shownState(device), figure.drawn.size()));
        return;
    }
    painter.fillRect(figure.box, lineBlue);
    if (figure.drawn.isEmpty())
        return;
    painter.setCompositionMode(QPainter::RasterOp_NotSourceOrDestination);
    painter.drawImage(figure.drawn.topLeft(),
                      icons_.stretched(device.Type, *shownState(device), figure.drawn.size()));
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void CDevicePainter::drawFoundReminder(const FloorCanvas& canvas, const CHardware& device,
                                       const Figure& figure, QRect clip) {
    if (const auto line = foundReminderLine(device, state_.labels()))
        labels_.drawLine(canvas, figure.textBottom, labels_.laidOut(*line), clip);
}

QImage CDevicePainter::photoOf(const CHardware& device) {
    if (!device.ShowAll || !state_.gesture.LabelsShown || device.Username.empty())
        return {};
    return photos_.photo(QString::fromStdString(displayText(device.Username)));
}

QRect CDevicePainter::photoRect(QSize photo, const Figure& figure) const {
    const QSize size = photoSize(photo, figure.bitmap.width(), state_.view.zoom, display_.PhotoScale);
    return size.isEmpty() ? QRect() : state_.view.pxRect(figure.corner - QPoint(size.width(), 0), size);
}

void CDevicePainter::drawPhoto(QPainter& painter, const CHardware& device, const Figure& figure) {
    const QImage photo = photoOf(device);
    const QRect place = photoRect(photo.size(), figure);
    if (place.isEmpty())
        return;
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(place, photo);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
}

void CDevicePainter::drawLines(QPainter& painter, const CHardware& device, const Figure& figure) {
    if (!device.SlashDraw && !device.BackslashDraw && !device.HorzDraw && !device.VertDraw)
        return;
    CLinePainter pen(painter, lineBlue, penWidth_);
    for (const FloorLine& line :
         directionLines(device, display_, figure.corner, figure.bitmap, state_.view.zoom.ZoomDevicesPercent))
        pen->drawLine(state_.view.px(line.from), state_.view.px(line.to));
}

bool CDevicePainter::drawsSmoothLines(const CHardware& device) const {
    return device.SlashDraw || device.BackslashDraw || device.HorzDraw || device.VertDraw ||
           showsRing(device) || showsMarkedArea(device);
}

bool CDevicePainter::showsRing(const CHardware& device) const {
    return display_.LSStatusDeviceShow && std::ranges::binary_search(state_.liveStatHolds, device.RecID);
}

void CDevicePainter::drawRing(QPainter& painter, const CHardware&, const Figure& figure) {
    CLinePainter pen(painter, lineBlue, penWidth_);
    pen->drawEllipse(figure.box);
}

bool CDevicePainter::showsMarkedArea(const CHardware& device) const {
    return device.Type == DeviceType::LocationMarker && device.RecID != 0 && !device.ToJack.empty() &&
           (device.RecID == state_.SelectedMarker || device.RecID == state_.gesture.MarkingMarker);
}

std::vector<QPoint> CDevicePainter::markedAreaPoints(const CHardware& device) const {
    const FloorView& view = state_.view;
    std::vector<QPoint> points;
    for (const MapPoint& corner : parseMarkedArea(device.ToJack))
        points.push_back(view.px(view.toFrame(corner)));
    if (!points.empty() && state_.gesture.MarkingMarker != 0 && state_.SelectedMarker == 0)
        points.push_back(view.px(state_.gesture.LastPoint - view.origin));
    return points;
}

void CDevicePainter::drawMarkedArea(QPainter& painter, const CHardware& device) {
    const std::vector<QPoint> points = markedAreaPoints(device);
    if (points.size() < 2)
        return;
    CLinePainter pen(painter, areaYellow, std::max(1, state_.view.px(areaPenWidth * state_.view.lineScale)));
    pen->drawPolyline(points.data(), static_cast<int>(points.size()));
}

QRect CDevicePainter::boundsOf(const CHardware& device, const Figure& figure) {
    const int margin = penWidth_ / 2 + 2;
    QRect all = (figure.box | figure.drawn).adjusted(-margin, -margin, margin, margin);
    if (const QRect labels = labels_.covered(*figure.labels, figure.textTop, figure.textBottom);
        !labels.isEmpty())
        all |= labels.adjusted(-1, -1, 1, 1); // with its seams
    if (const auto line = foundReminderLine(device, state_.labels())) {
        const int width = labels_.laidOut(*line).width;
        const int overhang = labels_.font().overhang;
        all |=
            QRect(figure.textBottom, QSize(width, labels_.font().height)).adjusted(-overhang, 0, overhang, 0);
    }
    if (const QImage photo = photoOf(device); !photo.isNull())
        all |= photoRect(photo.size(), figure);
    if (showsMarkedArea(device)) {
        const int areaMargin = state_.view.px(areaPenWidth * state_.view.lineScale);
        for (const QPoint& point : markedAreaPoints(device))
            all |= QRect(point, QSize(1, 1)).adjusted(-areaMargin, -areaMargin, areaMargin, areaMargin);
    }
    return all;
}

} // namespace mirovane
