#pragma once

#include "ui/floor/paint/LabelFont.h"
#include "ui/floor/paint/LabelLines.h"

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QString>

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace mirovane {

/// The glyphs of one label font, drawn once each and copied from then on: laying a text out and drawing it is
/// by far the dearest part of a frame. Black on the four backgrounds, and pixel for pixel what drawText makes
/// of the same text. Main thread.
class CGlyphAtlas {
public:
    explicit CGlyphAtlas(const LabelFont& font) : font_(font) {}

    /// Whether a text is one glyph after the other, with nothing to join, to reorder or to put on top of each
    /// other. Others are drawn as text.
    static bool covers(const QString& text);

    /// Of a text that is covered: pixels.
    int width(const QString& text);

    /// One line of covered text on its background, all of it within `clip`. Ink that hangs over the ends of
    /// the line is drawn beside the background. `canvas` is RGB32.
    void draw(QImage& canvas, QRect clip, QPoint corner, const QString& text, LabelBackground background);

private:
    static constexpr std::size_t backgrounds = 4;

    struct Glyph {
        int advance = 0;
        int left = 0;                       ///< columns of ink before the pen position
        int right = 0;                      ///< columns of ink after the advance
        std::vector<std::uint8_t> coverage; ///< line height rows of left + advance + right columns
        std::array<std::vector<QRgb>, backgrounds> cells; ///< the advance's columns on each background
    };

    const Glyph& glyph(char16_t c);
    Glyph made(char16_t c) const;
    void overhang(QImage& canvas, QRect place, QPoint pen, const Glyph& glyph, const Glyph* next,
                  QRgb background) const;

    const LabelFont& font_;
    std::array<std::unique_ptr<Glyph>, 256> latin_;
    std::unordered_map<char16_t, Glyph> others_;
};

} // namespace mirovane
