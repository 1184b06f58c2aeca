#pragma once

#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QRect>
#include <QSize>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <utility>
#include <vector>

class QSvgRenderer;

namespace mirovane {

/// A floor map ready to be drawn. Of pixels: the bitmap as its file holds it, and halved copies down to a few
/// hundred pixels, from which any zoom below 100 % is averaged without touching every pixel; large ones are
/// not in memory (see LargeImage.h). Or a drawing, which is sharp at every zoom. Immutable; made on a worker
/// thread.
class CMapPicture {
public:
    explicit CMapPicture(QImage bitmap);

    /// The bytes of an SVG drawing that can be read, and its size at 100 %.
    CMapPicture(QByteArray drawing, QSize size) : drawing_(std::move(drawing)), size_(size) {}

    QSize size() const { return size_; }

    /// Empty for a picture of pixels.
    const QByteArray& drawing() const { return drawing_; }

    /// Null for a drawing.
    const QImage& bitmap() const { return bitmap_; }

    /// The smallest copy that still has a pixel for every pixel shown at this factor, and how many map pixels
    /// one of its pixels stands for.
    const QImage& levelFor(double factor, int& reduction) const;

private:
    struct Level {
        int reduction;
        QImage image;
    };

    QImage bitmap_;
    QByteArray drawing_;
    QSize size_;
    std::vector<Level> levels_;
};

/// Where a map lies on a canvas, in the canvas's pixels.
struct MapPlace {
    QPoint corner; ///< the map's top left
    QSize size;    ///< of the whole map: a factor times its own size would lose its last pixel to rounding
    double factor; ///< canvas pixels for each map pixel
};

/// Draws a map at any zoom out of kept square pieces, so that a frame after the first is copying and a huge
/// zoom needs no huge image. Main thread only.
class CMapTiles {
public:
    CMapTiles();
    ~CMapTiles();

    void setPicture(std::shared_ptr<const CMapPicture> picture);
    const CMapPicture* picture() const { return picture_.get(); }

    /// Draws what of the map lies in `target` (pixels of the canvas). What lies beside the map is left alone.
    void draw(QPainter& painter, QRect target, const MapPlace& place);

    /// The same without keeping or resampling anything, for a canvas that scales by itself, such as a page.
    /// What is handed over has no more pixels than can be seen.
    void drawWhole(QPainter& painter, QRect target, const MapPlace& place);

private:
    static constexpr int pixelTileSide = 256;
    static constexpr int drawingTileSide = 1024; ///< each piece runs through the whole drawing
    static constexpr std::size_t keptTiles = 384;
    static constexpr std::size_t spareTiles = 64; ///< what a screen takes

    struct Tile {
        QImage image;
        std::uint64_t lastUse = 0;
    };

    const QImage& tile(int column, int row, QSize mapSize);
    QImage rendered(QRect area, QSize mapSize);
    void dropTiles();
    QImage takeSpare();
    void makeRoom(std::size_t needed);

    std::shared_ptr<const CMapPicture> picture_;
    std::unique_ptr<QSvgRenderer> renderer_; ///< of a drawing
    int tileSide_ = pixelTileSide;
    double factor_ = 0;
    std::uint64_t use_ = 0;
    std::unordered_map<std::uint64_t, Tile> tiles_;
    std::vector<QImage> spare_; ///< of the zoom before
};

/// `area` (canvas pixels) of `picture` shown at `factor`: averaged below 1, interpolated above. Any two areas
/// agree where they overlap. `spare`: an RGB32 image that nobody needs any more; of the same size it is drawn
/// on, since new memory costs a third of the whole.
QImage resampled(const CMapPicture& picture, QRect area, double factor, QImage spare = {});

} // namespace mirovane
