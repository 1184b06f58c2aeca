#include "ui/floor/map/MapTiles.h"

#include "ui/floor/map/LargeImage.h"

#include <QSvgRenderer>

#include <algorithm>
#include <cmath>

namespace mirovane {

namespace {

constexpr int smallestCopySide = 256;

/// Averages squares of `by` x `by` pixels. Reads the bitmap in bands, so that a large one-bit drawing never
/// is in memory with 32 bits a pixel.
QImage reduced(const QImage& bitmap, int by) {
    const QSize size(bitmap.width() / by, bitmap.height() / by);
    QImage result = makeLargeImage(size, QImage::Format_RGB32);
    for (int y = 0; y < result.height(); ++y) {
        const QImage band =
            bitmap.copy(0, y * by, size.width() * by, by).convertToFormat(QImage::Format_RGB32);
        auto* out = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            unsigned red = 0;
            unsigned green = 0;
            unsigned blue = 0;
            for (int row = 0; row < by; ++row) {
                const QRgb* in = reinterpret_cast<const QRgb*>(band.constScanLine(row)) + x * by;
                for (int column = 0; column < by; ++column) {
                    red += (in[column] >> 16) & 0xFFU;
                    green += (in[column] >> 8) & 0xFFU;
                    blue += in[column] & 0xFFU;
                }
            }
            const unsigned area = static_cast<unsigned>(by * by);
            const auto mean = [area](unsigned total) {
                return static_cast<int>((total + area / 2) / area);
            };
            out[x] = qRgb(mean(red), mean(green), mean(blue));
        }
    }
    return result;
}

std::uint64_t tileKey(int column, int row) {
    return static_cast<std::uint64_t>(static_cast<std::uint32_t>(column)) << 32 |
           static_cast<std::uint32_t>(row);
}

/// Lays `from` on white, line by line; without it `to` itself, in place, so that a large picture does not
/// exist twice.
void onPaper(const QImage& from, QImage& to) {
    for (int y = 0; y < to.height(); ++y) {
        const QImage& source = from.isNull() ? to : from;
        const QImage line =
            source.copy(0, y, source.width(), 1).convertToFormat(QImage::Format_ARGB32_Premultiplied);
        const auto* in = reinterpret_cast<const QRgb*>(line.constBits());
        auto* out = reinterpret_cast<QRgb*>(to.scanLine(y));
        for (int x = 0; x < to.width(); ++x) {
            const int paper = 255 - qAlpha(in[x]);
            out[x] = qRgb(qRed(in[x]) + paper, qGreen(in[x]) + paper, qBlue(in[x]) + paper);
        }
    }
    to.reinterpretAsFormat(QImage::Format_RGB32);
}

/// Bitmaps of few colours stay small as they are; everything else is brought to the format that is copied
/// fastest.
QImage drawable(QImage bitmap) {
    bitmap.setDevicePixelRatio(1);
    if (bitmap.depth() <= 8 && !bitmap.hasAlphaChannel())
        return bitmap;
    if (bitmap.format() == QImage::Format_RGB32)
        return bitmap;
    QImage opaque = bitmap.depth() == 32 ? bitmap : makeLargeImage(bitmap.size(), QImage::Format_RGB32);
    bitmap = bitmap.depth() == 32 ? QImage() : bitmap;
    onPaper(bitmap, opaque);
    return opaque;
}

} // namespace

CMapPicture::CMapPicture(QImage bitmap) : bitmap_(drawable(std::move(bitmap))), size_(bitmap_.size()) {
    for (int by = 2; bitmap_.width() / by >= smallestCopySide && bitmap_.height() / by >= smallestCopySide;
         by *= 2) {
        QImage copy = levels_.empty() ? reduced(bitmap_, by) : reduced(levels_.back().image, 2);
        if (copy.isNull())
            return; // no room: small zooms are averaged from the bitmap, and take their time
        levels_.push_back({by, std::move(copy)});
    }
}

const QImage& CMapPicture::levelFor(double factor, int& reduction) const {
    reduction = 1;
    const QImage* best = &bitmap_;
    for (const Level& level : levels_) {
        if (level.reduction * factor > 1)
            break;
        reduction = level.reduction;
        best = &level.image;
    }
    return *best;
}

CMapTiles::CMapTiles() = default;
CMapTiles::~CMapTiles() = default;

void CMapTiles::setPicture(std::shared_ptr<const CMapPicture> picture) {
    dropTiles();
    picture_ = std::move(picture);
    renderer_.reset();
    tileSide_ = pixelTileSide;
    if (!picture_ || picture_->drawing().isEmpty())
        return;
    tileSide_ = drawingTileSide;
    renderer_ = std::make_unique<QSvgRenderer>();
    renderer_->load(picture_->drawing());
}

QImage CMapTiles::rendered(QRect area, QSize mapSize) {
    QImage image(area.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.translate(-area.topLeft());
    renderer_->render(&painter, QRectF(QPointF(0, 0), QSizeF(mapSize)));
    return image;
}

void CMapTiles::draw(QPainter& painter, QRect target, const MapPlace& place) {
    if (!picture_ || picture_->size().isEmpty())
        return;
    const QPoint origin = place.corner;
    const QRect shown = target.translated(-origin).intersected(QRect(QPoint(0, 0), place.size));
    if (shown.isEmpty())
        return;
    if (place.factor == 1.0 && picture_->bitmap().format() == QImage::Format_RGB32) {
        painter.drawImage(shown.topLeft() + origin, picture_->bitmap(), shown);
        return;
    }
    if (place.factor != factor_)
        dropTiles();
    factor_ = place.factor;
    ++use_;
    const int lastColumn = shown.right() / tileSide_;
    const int lastRow = shown.bottom() / tileSide_;
    for (int row = shown.top() / tileSide_; row <= lastRow; ++row) {
        for (int column = shown.left() / tileSide_; column <= lastColumn; ++column) {
            const QPoint corner(column * tileSide_, row * tileSide_);
            const QRect part = shown.intersected(QRect(corner, QSize(tileSide_, tileSide_)));
            painter.drawImage(part.topLeft() + origin, tile(column, row, place.size),
                              part.translated(-corner));
        }
    }
    makeRoom(static_cast<std::size_t>(lastColumn + 1 - shown.left() / tileSide_) *
             static_cast<std::size_t>(lastRow + 1 - shown.top() / tileSide_));
}

void CMapTiles::drawWhole(QPainter& painter, QRect target, const MapPlace& place) {
    if (renderer_) {
        renderer_->render(&painter, QRectF(QPointF(place.corner), QSizeF(place.size)));
        return;
    }
    if (!picture_)
        return;
    const QRect shown = target.translated(-place.corner).intersected(QRect(QPoint(0, 0), place.size));
    if (shown.isEmpty())
        return;
    int reduction = 1;
    const QImage& level = picture_->levelFor(place.factor, reduction);
    const double step = 1 / (place.factor * reduction);
    const QRectF used(shown.x() * step, shown.y() * step, shown.width() * step, shown.height() * step);
    const QRect whole = used.toAlignedRect() & level.rect();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(whole.x() / step + place.corner.x(), whole.y() / step + place.corner.y(),
                             whole.width() / step, whole.height() / step),
                      level.copy(whole));
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
}

const QImage& CMapTiles::tile(int column, int row, QSize mapSize) {
    Tile& tile = tiles_[tileKey(column, row)];
    tile.lastUse = use_;
    if (tile.image.isNull()) {
        const QRect whole(column * tileSide_, row * tileSide_, tileSide_, tileSide_);
        const QRect area = whole.intersected(QRect(QPoint(0, 0), mapSize));
        tile.image = renderer_ ? rendered(area, mapSize) : resampled(*picture_, area, factor_, takeSpare());
    }
    return tile.image;
}

void CMapTiles::dropTiles() {
    for (auto& [key, tile] : tiles_)
        if (!renderer_ && spare_.size() < spareTiles && tile.image.width() == tileSide_)
            spare_.push_back(std::move(tile.image));
    tiles_.clear();
}

QImage CMapTiles::takeSpare() {
    if (spare_.empty())
        return {};
    QImage image = std::move(spare_.back());
    spare_.pop_back();
    return image;
}

/// The pieces of a large screen are kept twice over, whatever their number: scrolling back and forth stays
/// copying.
void CMapTiles::makeRoom(std::size_t needed) {
    const std::size_t limit = std::max(keptTiles, 2 * needed);
    if (tiles_.size() <= limit)
        return;
    std::vector<std::uint64_t> uses;
    for (const auto& [key, tile] : tiles_)
        uses.push_back(tile.lastUse);
    const auto middle = uses.begin() + static_cast<std::ptrdiff_t>(uses.size() / 2);
    std::nth_element(uses.begin(), middle, uses.end());
    const std::uint64_t oldest = std::min(*middle, use_ - 1);
    std::erase_if(tiles_, [oldest](const auto& entry) { return entry.second.lastUse <= oldest; });
}

} // namespace mirovane
