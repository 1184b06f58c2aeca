#include "ui/floor/paint/LabelSeams.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

constexpr int cellWidth = 128;
constexpr int cellHeight = 32;
constexpr QRgb seamColour = 0xFF808080;

void fill(const FloorCanvas& canvas, const QRect& area) {
    if (area.isEmpty())
        return;
    if (!canvas.image) {
        canvas.painter.fillRect(area, QColor(seamColour));
        return;
    }
    const QRect inside = area & canvas.image->rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        QRgb* row = reinterpret_cast<QRgb*>(canvas.image->scanLine(y));
        std::fill(row + inside.left(), row + inside.right() + 1, seamColour);
    }
}

/// One pixel around a line of text.
std::array<QRect, 4> edges(const QRect& line) {
    const QRect around = line.adjusted(-1, -1, 1, 1);
    return {QRect(around.left(), around.top(), around.width(), 1),
            QRect(around.left(), around.bottom(), around.width(), 1),
            QRect(around.left(), around.top(), 1, around.height()),
            QRect(around.right(), around.top(), 1, around.height())};
}

} // namespace

void CLabelSeams::begin(QRect clip) {
    clip_ = clip;
    columns_ = clip.width() / cellWidth + 1;
    for (auto& cell : cells_)
        cell.clear();
    cells_.resize(static_cast<std::size_t>(columns_) *
                  static_cast<std::size_t>(clip.height() / cellHeight + 1));
}

template <typename Visit>
void CLabelSeams::visitCells(const QRect& area, const Visit& visit) const {
    const QRect inside = area.intersected(clip_).translated(-clip_.topLeft());
    if (inside.isEmpty())
        return;
    for (int row = inside.top() / cellHeight; row <= inside.bottom() / cellHeight; ++row)
        for (int column = inside.left() / cellWidth; column <= inside.right() / cellWidth; ++column)
            visit(static_cast<std::size_t>(row * columns_ + column));
}

void CLabelSeams::add(std::span<const QRect> lines) {
    for (const QRect& line : lines)
        visitCells(
            line, [&](std::size_t cell) { cells_[cell].push_back(line); });
}

void CLabelSeams::draw(const FloorCanvas& canvas, std::span<const QRect> lines) const {
    for (const QRect& line : lines) {
        const QRect around = line.adjusted(-1, -1, 1, 1);
        visitCells(around, [&](std::size_t cell) {
            for (const QRect& lower : cells_[cell])
                if (lower.intersects(around))
                    for (const QRect& edge : edges(line))
                        fill(canvas, edge & lower & clip_);
        });
    }
}

} // namespace mirovane
