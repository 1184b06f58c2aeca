#pragma once

#include "model/Document.h"
#include "model/records/Text.h"
#include "ui/floor/paint/FloorViewState.h"
#include "ui/floor/paint/IconSet.h"

#include <QImage>
#include <QPainter>
#include <QPen>
#include <QRegion>
#include <QRegularExpression>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace mirovane::test {

/// The floor drawn the plain way, as a first version would: the whole list twice per frame, every text drawn
/// as text, every bitmap scaled where it is drawn, the highlight by its raster operation. Keeps nothing, and
/// shares with the painter that it judges neither the texts nor the lines nor the photo. Logical pixels only.
class PlainPainter {
public:
    PlainPainter(const CMirovaneDoc& document, const DisplaySettings& display, const CIconSet& icons,
                 const QImage& map)
        : document_(document), display_(display), icons_(icons), map_(map) {}

    /// By user name.
    std::map<std::string, QImage> photos;

    /// Off for a painter that is only there to be measured against: it looks for what each label lies on by
    /// asking all that were drawn before.
    bool seams = true;

    void draw(QImage& canvas, const FloorViewState& state) {
        state_ = &state;
        zoom_ = state.view.zoom;
        chooseFont(state.view.LabelFontHeight);
        drawn_.clear();
        QPainter painter(&canvas);
        painter.setClipRect(canvas.rect());
        painter.fillRect(canvas.rect(), Qt::white);
        if (!map_.isNull()) {
            const QRect target(-state.view.origin, QSize(map_.width() * zoom_.ZoomPercent / 100,
                                                         map_.height() * zoom_.ZoomPercent / 100));
            painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom_.ZoomPercent != 100);
            painter.drawImage(target, map_);
            painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
        }
        for (const bool onTop : {false, true}) {
            for (std::size_t i = 0; i < document_.size(); ++i) {
                const CHardware& device = document_.at(i);
                if (device.Type >= 1 && device.Type < 1000 && (device.Selected || device.ShowAll) == onTop &&
                    visible(device, onTop))
                    drawDevice(painter, device);
            }
        }
    }

private:
    struct Line {
        QString text;
        QColor background;
        bool underlined = false;
        int row = 0;
    };

    QPoint toWindow(int x, int y) const {
        return QPoint(x * zoom_.ZoomPercent / 100, y * zoom_.ZoomPercent / 100) - state_->view.origin;
    }
    QSize byDevicesZoom(QSize size) const {
        return {size.width() * zoom_.ZoomDevicesPercent / 100,
                size.height() * zoom_.ZoomDevicesPercent / 100};
    }

    bool visible(const CHardware& device, bool onTop) const {
        const bool shown = (display_.VisibleTypes >> (device.Type - 1) & 1) != 0;
        const bool wanted = shown || (device.ReminderDue && display_.ReminderDeviceShow) ||
                            (onTop && !state_->find.FindNothingFound);
        const QPoint at = toWindow(device.Position.x, device.Position.y);
        const bool near = at.x() > -200 && at.x() < state_->view.client.width() && at.y() > -200 &&
                          at.y() < state_->view.client.height();
        return wanted && (near || showsArea(device));
    }

    bool showsArea(const CHardware& device) const {
        return device.Type == 13 && device.RecID != 0 &&
               (device.RecID == state_->SelectedMarker || device.RecID == state_->gesture.MarkingMarker);
    }

    // ---- texts

    void chooseFont(int height) {
        height_ = height;
        font_ = QFont(QStringList{QStringLiteral("Arial"), QStringLiteral("Liberation Sans")});
        font_.setStyleHint(QFont::SansSerif);
        font_.setHintingPreference(QFont::PreferFullHinting);
        font_.setKerning(false);
        int size = height;
        for (font_.setPixelSize(size); size > 1 && QFontMetrics(font_).height() > height;
             font_.setPixelSize(size))
            --size;
    }

    static QString text(std::string_view bytes) {
        static const QRegularExpression controls(QStringLiteral("[\\x00-\\x1f]"));
        return QString::fromStdString(displayText(bytes)).replace(controls, QStringLiteral(" "));
    }

    std::vector<Line> linesOf(const CHardware& device) const {
        std::vector<Line> lines;
        if (device.Selected && !state_->gesture.LabelsShown)
            return lines;
        QColor background = Qt::white;
        int row = 0;
        const auto write = [&](const QString& words, bool underlined = false) {
            lines.push_back({words, background, underlined, row++});
        };
        const FindState& find = state_->find;
        if (device.ReminderDue &&
            ((state_->ReminderPhase && display_.ReminderDeviceShow) || find.FindReminderMode)) {
            background = QColor(255, 0, 0);
            write(QStringLiteral("Due:") + text(device.ToDo), true);
        }
        if (device.ShowAll)
            background = QColor(190, 190, 190);
        if (device.Selected && find.FindHitCount > 1)
            lines.push_back({QStringLiteral("Found:%1").arg(find.FindHitCount), background, false, -1});
        const auto field = [&](const std::string& value, bool on) {
            if (!value.empty() && (on || device.ShowAll))
                write(text(value));
        };
        field(device.Name, display_.PropertiesComputer);
        field(device.IPAddress, display_.PropertiesIPAddress);
        if (!device.Username.empty() && (display_.PropertiesUsername || device.ShowAll)) {
            if (device.State == 1 && device.Username.front() != '[' && device.Username.back() != ']')
                background = QColor(255, 0, 255);
            write(text(device.Username));
            background = device.ShowAll ? QColor(190, 190, 190) : QColor(Qt::white);
        }
        field(device.MACAddress, display_.PropertiesMACAddress);
        if (device.Type != 13)
            field(device.ToJack, display_.PropertiesJack);
        if (!device.Comment.empty() && (display_.PropertiesComment || device.ShowAll || device.Type == 13))
            for (const QString& piece : QString::fromStdString(displayText(device.Comment)).split(u'\r'))
                write(text(piece.toStdString()));
        field(device.SlashText, display_.PropertiesSlash);
        field(device.BackslashText, display_.PropertiesBackslash);
        field(device.HorzText, display_.PropertiesHorz);
        if (device.Type != 13)
            field(device.VertText, display_.PropertiesVert);
        return lines;
    }

    QRect placeOf(const Line& line, QPoint top, QPoint below) const {
        const int y = line.row < 0 ? top.y() - height_ : below.y() + line.row * height_;
        return {top.x(), y, QFontMetrics(font_).horizontalAdvance(line.text), height_};
    }

    void drawText(QPainter& painter, const Line& line, const QRect& place) const {
        QFont font = font_;
        font.setUnderline(line.underlined);
        const QFontMetrics metrics(font_);
        painter.fillRect(place, line.background);
        painter.setClipRect(
            QRect(painter.window().left(), place.top(), painter.window().width(), place.height()));
        painter.setFont(font);
        painter.setPen(Qt::black);
        painter.drawText(place.left(),
                         place.top() + metrics.ascent() + std::max(0, height_ - metrics.height()) / 2,
                         line.text);
        painter.setClipRect(painter.window());
    }

    void drawSeams(QPainter& painter, const std::vector<QRect>& lines) const {
        const QColor grey(128, 128, 128);
        for (const QRect& line : lines) {
            const QRect around = line.adjusted(-1, -1, 1, 1);
            for (const QRect& lower : drawn_)
                if (lower.intersects(around))
                    for (const QRect& part : QRegion(around) - line)
                        painter.fillRect(part & lower, grey);
        }
    }

    // ---- one device

    static int shown(const CHardware& device) {
        const int state = device.Type == 13 ? 0 : device.State;
        return device.Selected && state != 0 ? 3 - state : state;
    }

    QImage sourceOf(const CHardware& device, QSize size) const {
        return icons_.source(device.Type, shown(device), size);
    }

    QImage bitmapOf(const CHardware& device, bool& known) const {
        known = device.Type >= 1 && device.Type <= 13 &&
                (device.Type == 13 || (device.State >= 0 && device.State <= 2));
        return known ? icons_.bitmap(device.Type, shown(device)) : QImage();
    }

    void drawDevice(QPainter& painter, const CHardware& device) {
        const QPoint at = toWindow(device.Position.x, device.Position.y);
        bool known = false;
        const QImage bitmap = bitmapOf(device, known);
        const QSize box = known ? byDevicesZoom(icons_.sizes().of(device.Type)) : QSize(0, 0);
        const QSize size = byDevicesZoom(bitmap.size());
        const QImage icon = known ? CIconSet::stretch(sourceOf(device, size), size) : QImage();
        const QPoint below = at + QPoint(0, box.height());
        const std::vector<Line> lines = linesOf(device);
        std::vector<QRect> places;
        for (const Line& line : lines)
            if (const QRect place = placeOf(line, at, below); !place.isEmpty())
                places.push_back(place);
        if (seams)
            drawSeams(painter, places);
        painter.drawImage(at, icon);
        for (const Line& line : lines)
            drawText(painter, line, placeOf(line, at, below));
        if (seams)
            drawn_.insert(drawn_.end(), places.begin(), places.end());
        if (device.Selected)
            drawSelected(painter, device, QRect(at, box), icon);
        drawPhoto(painter, device, at, bitmap.width());
        drawShapes(painter, device, QRect(at, box), byDevicesZoom(bitmap.size()), bitmap.size());
    }

    void drawSelected(QPainter& painter, const CHardware& device, QRect box, const QImage& icon) const {
        painter.fillRect(box, Qt::blue);
        painter.setCompositionMode(QPainter::RasterOp_NotSourceOrDestination);
        painter.drawImage(box.topLeft(), icon);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        if (!state_->find.FindReminderMode)
            return;
        const bool due = device.ReminderOn == 1 && device.ReminderDue;
        const Line line{(due ? QStringLiteral("Due:") : QStringLiteral("Reminder:")) + text(device.ToDo),
                        due ? QColor(255, 0, 0) : QColor(190, 190, 190), true, 0};
        drawText(painter, line, placeOf(line, box.topLeft(), box.topLeft() + QPoint(0, box.height())));
    }

    void drawPhoto(QPainter& painter, const CHardware& device, QPoint at, int iconWidth) const {
        const auto photo = photos.find(device.Username);
        if (!device.ShowAll || !state_->gesture.LabelsShown || photo == photos.end())
            return;
        const double size = iconWidth * display_.PhotoScale * 4 / 100.0;
        const QImage& image = photo->second;
        const int width = static_cast<int>(size * zoom_.ZoomDevicesPercent / 100);
        const int height = static_cast<int>(size * image.height() * zoom_.ZoomPercent / 100 / image.width());
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRect(at.x() - width, at.y(), width, height), image);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    }

    // ---- lines, ring, area

    void drawShapes(QPainter& painter, const CHardware& device, QRect box, QSize drawn, QSize bitmap) const {
        const DisplaySettings& show = display_;
        const auto usePen = [&painter](QColor colour, int width) {
            painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.setBrush(Qt::NoBrush);
            painter.resetTransform();
            if (width % 2)
                painter.translate(0.5, 0.5);
        };
        painter.setRenderHint(QPainter::Antialiasing);
        static constexpr int penWidths[] = {5, 4, 3, 2, 2};
        usePen(Qt::blue, penWidths[show.PropertiesSlashDraw + show.PropertiesBackslashDraw +
                                   show.PropertiesHorzDraw + show.PropertiesVertDraw]);
        const int x = box.left();
        const int y = box.top();
        const int right = x + drawn.width();
        const int bottom = y + drawn.height();
        const int middle = y + bitmap.height() / 2 * zoom_.ZoomDevicesPercent / 100;
        const int centre = x + bitmap.width() / 2 * zoom_.ZoomDevicesPercent / 100;
        if (device.SlashDraw && show.PropertiesSlashDraw)
            painter.drawLine(x, bottom, right, y);
        if (device.BackslashDraw && show.PropertiesBackslashDraw)
            painter.drawLine(x, y, right, bottom);
        if (device.HorzDraw && show.PropertiesHorzDraw)
            painter.drawLine(x, middle, right, middle);
        if (device.VertDraw && show.PropertiesVertDraw)
            painter.drawLine(centre, y, centre, bottom);
        const auto& held = state_->liveStatHolds;
        if (show.LSStatusDeviceShow && std::ranges::find(held, device.RecID) != held.end())
            painter.drawEllipse(box);
        if (showsArea(device)) {
            usePen(QColor(240, 240, 0), 5);
            drawArea(painter, device);
        }
        painter.resetTransform();
        painter.setRenderHint(QPainter::Antialiasing, false);
    }

    void drawArea(QPainter& painter, const CHardware& device) const {
        const QStringList numbers = QString::fromStdString(device.ToJack).split(u',', Qt::SkipEmptyParts);
        QList<QPoint> points;
        for (qsizetype i = 0; i + 1 < numbers.size(); i += 2)
            points << toWindow(numbers[i].toInt(), numbers[i + 1].toInt());
        if (!points.isEmpty() && state_->gesture.MarkingMarker && !state_->SelectedMarker)
            points << state_->gesture.LastPoint - state_->view.origin;
        if (points.size() > 1)
            painter.drawPolyline(points.data(), static_cast<int>(points.size()));
    }

    const CMirovaneDoc& document_;
    const DisplaySettings& display_;
    const CIconSet& icons_;
    QImage map_;
    const FloorViewState* state_ = nullptr;
    FloorZoom zoom_;
    QFont font_;
    int height_ = 12;
    std::vector<QRect> drawn_; ///< labels so far
};

} // namespace mirovane::test
