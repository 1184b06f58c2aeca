#include "ui/floor/paint/LabelSeams.h"

#include <algorithm>
#include <bit>

namespace mirovane {

namespace {

constexpr int wordBits = 64;
constexpr QRgb seamColour = 0xFF808080;

/// Within the canvas.
void fill(const FloorCanvas& canvas, const QRect& area) {
    if (!canvas.image) {
        canvas.painter.fillRect(area, QColor(seamColour));
        return;
    }
    for (int y = area.top(); y <= area.bottom(); ++y) {
        QRgb* row = reinterpret_cast<QRgb*>(canvas.image->scanLine(y));
        std::fill(row + area.left(), row + area.right() + 1, seamColour);
    }
}

/// Calls `visit` with each word that holds some of the columns from `left` to `right` and with the bits of
/// these columns.
template <typename Visit>
void visitWords(int left, int right, const Visit& visit) {
    const int last = right / wordBits;
    for (int word = left / wordBits; word <= last; ++word) {
        std::uint64_t bits = ~std::uint64_t{0};
        if (word == left / wordBits)
            bits &= ~std::uint64_t{0} << left % wordBits;
        if (word == last)
            bits &= ~std::uint64_t{0} >> (wordBits - 1 - right % wordBits);
        visit(word, bits);
    }
}

} // namespace

void CLabelSeams::begin(QRect clip) {
    clip_ = clip;
    rowWords_ = static_cast<std::size_t>(clip.width() / wordBits + 1);
    labelled_.assign(rowWords_ * static_cast<std::size_t>(clip.height()), 0);
}

void CLabelSeams::add(std::span<const QRect> lines) {
    for (const QRect& line : lines) {
        const QRect inside = line.intersected(clip_).translated(-clip_.topLeft());
        if (inside.isEmpty())
            continue;
        visitWords(inside.left(), inside.right(), [&](int word, std::uint64_t bits) {
            std::size_t at =
                static_cast<std::size_t>(inside.top()) * rowWords_ + static_cast<std::size_t>(word);
            for (int rows = inside.height(); rows > 0; --rows, at += rowWords_)
                labelled_[at] |= bits;
        });
    }
}

void CLabelSeams::draw(const FloorCanvas& canvas, std::span<const QRect> lines) const {
    for (const QRect& line : lines) {
        const QRect around = line.adjusted(-1, -1, 1, 1);
        if (!around.intersects(clip_))
            continue;
        drawAcross(canvas, {around.topLeft(), QSize(around.width(), 1)});
        drawAcross(canvas, {around.bottomLeft(), QSize(around.width(), 1)});
        drawDown(canvas, {around.topLeft(), QSize(1, around.height())});
        drawDown(canvas, {around.topRight(), QSize(1, around.height())});
    }
}

void CLabelSeams::drawAcross(const FloorCanvas& canvas, const QRect& edge) const {
    const QRect inside = edge.intersected(clip_).translated(-clip_.topLeft());
    if (inside.isEmpty())
        return;
    const std::size_t row = static_cast<std::size_t>(inside.top()) * rowWords_;
    visitWords(inside.left(), inside.right(), [&](int word, std::uint64_t wanted) {
        std::uint64_t bits = labelled_[row + static_cast<std::size_t>(word)] & wanted;
        while (bits != 0) {
            const int from = std::countr_zero(bits);
            const int count = std::countr_one(bits >> from);
            fill(canvas, {clip_.left() + word * wordBits + from, edge.top(), count, 1});
            bits &= from + count == wordBits ? 0 : ~std::uint64_t{0} << (from + count);
        }
    });
}

void CLabelSeams::drawDown(const FloorCanvas& canvas, const QRect& edge) const {
    const QRect inside = edge & clip_;
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        int end = y;
        while (end <= inside.bottom() && labelAt(inside.left(), end))
            ++end;
        if (end > y)
            fill(canvas, {inside.left(), y, 1, end - y});
        y = std::max(y, end - 1);
    }
}

bool CLabelSeams::labelAt(int x, int y) const {
    const int column = x - clip_.left();
    const std::size_t at =
        static_cast<std::size_t>(y - clip_.top()) * rowWords_ + static_cast<std::size_t>(column / wordBits);
    return (labelled_[at] >> column % wordBits & 1U) != 0;
}

} // namespace mirovane
