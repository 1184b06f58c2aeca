#include "ui/floor/paint/LabelFont.h"

#include "model/records/Text.h"

#include <QStringList>

#include <algorithm>

namespace mirovane {

namespace {

/// A character is at least two pixels wide: what lies beyond is right of any window.
constexpr qsizetype longestText = 4096;

QFont fittedFont(int pixels) {
    QFont font(QStringList{QStringLiteral("Arial"), QStringLiteral("Liberation Sans")});
    font.setStyleHint(QFont::SansSerif);
    font.setWeight(QFont::Normal);
    font.setHintingPreference(QFont::PreferFullHinting);
    font.setKerning(false); // a text is as wide as its glyphs, whichever are next to each other
    int size = std::max(1, pixels);
    for (font.setPixelSize(size); size > 1 && QFontMetrics(font).height() > pixels; font.setPixelSize(size))
        --size;
    return font;
}

QFont withUnderline(QFont font) {
    font.setUnderline(true);
    return font;
}

} // namespace

LabelFont::LabelFont(int pixels)
    : plain(fittedFont(pixels)),
      underlined(withUnderline(plain)),
      metrics(plain),
      height(std::max(1, pixels)),
      overhang(height / 4 + 1),
      baseline(metrics.ascent() + std::max(0, height - metrics.height()) / 2) {}

QRgb labelColour(LabelBackground background) {
    switch (background) {
    case LabelBackground::Due:
        return qRgb(255, 0, 0);
    case LabelBackground::ShowAll:
        return qRgb(190, 190, 190);
    case LabelBackground::LoggedOn:
        return qRgb(255, 0, 255);
    case LabelBackground::Canvas:
        break;
    }
    return qRgb(255, 255, 255);
}

QString shownText(const std::string& bytes) {
    QString text = QString::fromStdString(displayText(std::string_view(bytes).substr(0, 4 * longestText)));
    for (QChar& c : text)
        if (c < QChar(u' '))
            c = QChar(u' ');
    text.truncate(longestText);
    return text;
}

void drawLabel(QPainter& painter, QPoint corner, const LaidLine& line, const LabelFont& font, QRect clip) {
    const QRect place(corner, QSize(line.width, font.height));
    const QRect inked = place.adjusted(-font.overhang, 0, font.overhang, 0) & clip;
    if (inked.isEmpty())
        return;
    painter.setClipRect(inked);
    painter.fillRect(place, QColor(labelColour(line.background)));
    painter.setPen(Qt::black);
    painter.setFont(line.underline ? font.underlined : font.plain);
    painter.drawText(corner + QPoint(0, font.baseline), line.text);
    painter.setClipRect(clip);
}

} // namespace mirovane
