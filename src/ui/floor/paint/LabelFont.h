#pragma once

#include "ui/floor/paint/LabelLines.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPoint>
#include <QRect>
#include <QString>

#include <string>

namespace mirovane {

/// "Arial", or the face of the same widths that replaces it, fitted into lines `height` pixels tall:
/// lines stacked at that distance touch and do not overlap.
struct LabelFont {
    explicit LabelFont(int pixels);

    QFont plain;
    QFont underlined;
    QFontMetrics metrics;
    int height;   ///< of a line
    int overhang; ///< beside a text: room for the ink of a "j" that lies left of where it begins
    int baseline; ///< from the top of a line
};

QRgb labelColour(LabelBackground background);

/// A label's text as it is drawn: a blank for each control character, so that words stay apart, and cut where
/// no window reaches.
QString shownText(const std::string& bytes);

/// One line of text, laid out.
struct LaidLine {
    QString text;
    int width = 0; ///< advance of the text, pixels
    LabelBackground background = LabelBackground::Canvas;
    bool underline = false;
    int row = 0;
    bool glyphs = false; ///< can be put together from single glyphs
};

/// One line of text on its background. Ink that hangs over the ends is drawn beside the background. Changes
/// the painter's font and pen; its clip is `clip` before and after.
void drawLabel(QPainter& painter, QPoint corner, const LaidLine& line, const LabelFont& font, QRect clip);

} // namespace mirovane
