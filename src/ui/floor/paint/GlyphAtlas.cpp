#include "ui/floor/paint/GlyphAtlas.h"

#include <QPainter>

#include <algorithm>
#include <cstring>

namespace mirovane {

namespace {

/// Greek and Cyrillic end here; marks that go on top of other letters lie between Latin and Greek.
constexpr char16_t lastSimple = 0x0530;
constexpr char16_t firstMark = 0x0300;
constexpr char16_t lastMark = 0x036F;
constexpr char16_t softHyphen = 0x00AD;
constexpr char16_t firstControl = 0x007F;
constexpr char16_t lastControl = 0x009F;
constexpr char16_t firstCyrillicMark = 0x0483;
constexpr char16_t lastCyrillicMark = 0x0489;

bool simple(char16_t c) {
    return c >= u' ' && c < lastSimple && c != softHyphen && (c < firstControl || c > lastControl) &&
           (c < firstMark || c > lastMark) && (c < firstCyrillicMark || c > lastCyrillicMark);
}

/// Black of this coverage over a colour, rounded as the raster painter rounds it.
QRgb covered(QRgb under, std::uint8_t coverage) {
    const unsigned rest = 255U - coverage;
    const auto part = [rest](int value) {
        const unsigned product = static_cast<unsigned>(value) * rest;
        return static_cast<int>((product + (product >> 8) + 0x80U) >> 8);
    };
    return qRgb(part(qRed(under)), part(qGreen(under)), part(qBlue(under)));
}

/// Asking the image for each row of each glyph would take as long as the copying.
class CPixelRows {
public:
    explicit CPixelRows(QImage& canvas)
        : first_(reinterpret_cast<QRgb*>(canvas.bits())),
          stride_(canvas.bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb))) {}

    QRgb* operator[](int y) const { return first_ + y * stride_; }

private:
    QRgb* first_;
    qsizetype stride_;
};

} // namespace

bool CGlyphAtlas::covers(const QString& text) {
    return std::ranges::all_of(
        text, [](QChar c) { return simple(c.unicode()); });
}

int CGlyphAtlas::width(const QString& text) {
    int width = 0;
    for (const QChar c : text)
        width += glyph(c.unicode()).advance;
    return width;
}

const CGlyphAtlas::Glyph& CGlyphAtlas::glyph(char16_t c) {
    if (c >= latin_.size()) {
        const auto [entry, added] = others_.try_emplace(c);
        if (added)
            entry->second = made(c);
        return entry->second;
    }
    if (!latin_[c])
        latin_[c] = std::make_unique<Glyph>(made(c));
    return *latin_[c];
}

/// On white, what is missing from white is the coverage.
CGlyphAtlas::Glyph CGlyphAtlas::made(char16_t c) const {
    const int room = font_.height + 2;
    Glyph glyph;
    glyph.advance = font_.metrics.horizontalAdvance(QChar(c));
    QImage drawn(glyph.advance + 2 * room, font_.height, QImage::Format_RGB32);
    drawn.fill(Qt::white);
    QPainter painter(&drawn);
    painter.setFont(font_.plain);
    painter.setPen(Qt::black);
    painter.drawText(QPoint(room, font_.baseline), QString(QChar(c)));
    painter.end();
    const auto inked = [&drawn](int x) {
        for (int y = 0; y < drawn.height(); ++y)
            if (qGreen(drawn.pixel(x, y)) != 255)
                return true;
        return false;
    };
    for (int x = 0; x < room && glyph.left == 0; ++x)
        glyph.left = inked(x) ? room - x : 0;
    for (int x = drawn.width() - 1; x >= room + glyph.advance && glyph.right == 0; --x)
        glyph.right = inked(x) ? x - room - glyph.advance + 1 : 0;
    for (int y = 0; y < drawn.height(); ++y)
        for (int x = room - glyph.left; x < room + glyph.advance + glyph.right; ++x)
            glyph.coverage.push_back(static_cast<std::uint8_t>(255 - qGreen(drawn.pixel(x, y))));
    const int columns = glyph.left + glyph.advance + glyph.right;
    for (std::size_t b = 0; b < backgrounds; ++b)
        for (int y = 0; y < drawn.height(); ++y)
            for (int x = 0; x < glyph.advance; ++x)
                glyph.cells[b].push_back(
                    covered(labelColour(static_cast<LabelBackground>(b)),
                            glyph.coverage[static_cast<std::size_t>(y * columns + glyph.left + x)]));
    return glyph;
}

void CGlyphAtlas::draw(QImage& canvas, QRect clip, QPoint corner, const QString& text,
                       LabelBackground background) {
    const QRect line(corner, QSize(width(text), font_.height));
    const QRect within = clip & canvas.rect();
    const QRect place = line & within;
    const QRect inked = line.adjusted(-font_.overhang, 0, font_.overhang, 0) & within;
    if (inked.isEmpty())
        return;
    const CPixelRows rows(canvas);
    bool hangsOver = false;
    QPoint pen = corner;
    for (const QChar c : text) {
        const Glyph& shape = glyph(c.unicode());
        hangsOver = hangsOver || shape.left > 0 || shape.right > 0;
        const int from = std::max(place.left(), pen.x());
        const int count = std::min(place.right() + 1, pen.x() + shape.advance) - from;
        if (count > 0) {
            const std::vector<QRgb>& cell = shape.cells[static_cast<std::size_t>(background)];
            for (int y = place.top(); y <= place.bottom(); ++y)
                std::memcpy(rows[y] + from, cell.data() + (y - corner.y()) * shape.advance + (from - pen.x()),
                            static_cast<std::size_t>(count) * sizeof(QRgb));
        }
        pen.rx() += shape.advance;
    }
    if (!hangsOver)
        return;
    pen = corner;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const Glyph& shape = glyph(text[i].unicode());
        const Glyph* next = i + 1 < text.size() ? &glyph(text[i + 1].unicode()) : nullptr;
        overhang(canvas, inked, pen, shape, next, labelColour(background));
        pen.rx() += shape.advance;
    }
}

/// The columns of a glyph that lie in its neighbours' cells, which are there already. In a text the later
/// glyph lies on the earlier one, and the rounding shows the order.
void CGlyphAtlas::overhang(QImage& canvas, QRect place, QPoint pen, const Glyph& glyph, const Glyph* next,
                           QRgb background) const {
    const CPixelRows rows(canvas);
    const int columns = glyph.left + glyph.advance + glyph.right;
    for (int y = place.top(); y <= place.bottom(); ++y) {
        QRgb* row = rows[y];
        const std::uint8_t* ink = glyph.coverage.data() + (y - pen.y()) * columns;
        for (int x = std::max(place.left(), pen.x() - glyph.left); x < pen.x() && x <= place.right(); ++x)
            row[x] = covered(row[x], ink[x - pen.x() + glyph.left]);
        const int end = pen.x() + glyph.advance;
        for (int x = std::max(place.left(), end); x < end + glyph.right && x <= place.right(); ++x) {
            const std::uint8_t own = ink[x - pen.x() + glyph.left];
            if (own == 0)
                continue;
            const int nextColumns = next ? next->left + next->advance + next->right : 0;
            const bool inNext = next && x - end < next->advance;
            const std::uint8_t over = inNext ? next->coverage[static_cast<std::size_t>(
                                                   (y - pen.y()) * nextColumns + next->left + x - end)]
                                             : std::uint8_t{0};
            row[x] = inNext ? covered(covered(background, own), over) : covered(row[x], own);
        }
    }
}

} // namespace mirovane
