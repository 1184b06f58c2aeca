#include "ui/floor/map/MapTiles.h"

#include <algorithm>
#include <cmath>

namespace mirovane {

namespace {

/// A halved copy larger than this is left out; the next smaller one is made from the bitmap directly.
constexpr qsizetype largestCopyPixels = 32 << 20;
constexpr int smallestCopySide = 256;

/// Averages squares of `by` x `by` pixels. Reads the bitmap in bands, so that a large one-bit drawing never
/// is in memory with 32 bits a pixel.
QImage reduced(const QImage& bitmap, int by) {
    const QSize size(bitmap.width() / by, bitmap.height() / by);
    QImage result(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
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

/// Bitmaps of few colours stay small as they are; everything else is brought to the format that is copied
/// fastest.
QImage drawable(QImage bitmap) {
    bitmap.setDevicePixelRatio(1);
    if (bitmap.depth() <= 8 && !bitmap.hasAlphaChannel())
        return bitmap;
    if (bitmap.format() == QImage::Format_RGB32)
        return bitmap;
    if (!bitmap.hasAlphaChannel())
        return std::move(bitmap).convertToFormat(QImage::Format_RGB32);
    QImage onPaper(bitmap.size(), QImage::Format_RGB32);
    onPaper.fill(Qt::white);
    QPainter(&onPaper).drawImage(0, 0, bitmap);
    return onPaper;
}

} // namespace

CMapPicture::CMapPicture(QImage bitmap) : bitmap_(drawable(std::move(bitmap))) {
    for (int by = 2; bitmap_.width() / by >= smallestCopySide && bitmap_.height() / by >= smallestCopySide;
         by *= 2) {
        if (qsizetype{bitmap_.width() / by} * (bitmap_.height() / by) > largestCopyPixels)
            continue;
        const bool first = levels_.empty();
        levels_.push_back({by, first ? reduced(bitmap_, by) : reduced(levels_.back().image, 2)});
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

void CMapTiles::setPicture(std::shared_ptr<const CMapPicture> picture) {
    picture_ = std::move(picture);
    tiles_.clear();
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
        tiles_.clear();
    factor_ = place.factor;
    ++use_;
    const int lastColumn = shown.right() / tileSide;
    const int lastRow = shown.bottom() / tileSide;
    for (int row = shown.top() / tileSide; row <= lastRow; ++row) {
        for (int column = shown.left() / tileSide; column <= lastColumn; ++column) {
            const QPoint corner(column * tileSide, row * tileSide);
            const QRect part = shown.intersected(QRect(corner, QSize(tileSide, tileSide)));
            painter.drawImage(part.topLeft() + origin, tile(column, row, place.size),
                              part.translated(-corner));
        }
    }
    makeRoom(static_cast<std::size_t>(lastColumn + 1 - shown.left() / tileSide) *
             static_cast<std::size_t>(lastRow + 1 - shown.top() / tileSide));
}

const QImage& CMapTiles::tile(int column, int row, QSize mapSize) {
    Tile& tile = tiles_[tileKey(column, row)];
    tile.lastUse = use_;
    if (tile.image.isNull()) {
        const QRect whole(column * tileSide, row * tileSide, tileSide, tileSide);
        tile.image = resampled(*picture_, whole.intersected(QRect(QPoint(0, 0), mapSize)), factor_);
    }
    return tile.image;
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
