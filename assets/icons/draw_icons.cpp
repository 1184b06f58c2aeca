// Draws the icons of all device types and states, at their own size and twice and three times as large for
// sharp screens ("PCOn@2x.bmp"). `draw_icons FOLDER` writes the .bmp files there, `draw_icons --check FOLDER`
// compares them with what is there and writes nothing.

#include "Glyphs.h"

#include <QBuffer>
#include <QColor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPainter>

#include <cstdio>
#include <map>
#include <optional>

namespace {

using namespace icons;

constexpr int size = 32;

/// Icons are painted this much larger without smoothing and averaged down with whole numbers: smooth edges
/// whose bytes do not depend on the painter's blending, which differs between processors.
constexpr int oversampling = 16;

constexpr int scales[] = {1, 2, 3};

struct Style {
    QColor dark;
    bool solid = false;
    std::optional<Sign> sign;
};

QPen roundPen(const QColor& color, qreal width) {
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

void paintPart(QPainter& painter, const Part& part, const Style& style) {
    const QColor onBody = style.solid ? QColor(Qt::white) : style.dark;
    const QPen line(onBody, 2, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    const QPen rim(style.dark, 2, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    switch (part.layer) {
    case Layer::Body:
        painter.setPen(rim);
        painter.setBrush(style.solid ? style.dark : QColor(Qt::white));
        break;
    case Layer::Window:
        painter.setPen(rim);
        painter.setBrush(Qt::white);
        break;
    case Layer::Mark:
        painter.setPen(Qt::NoPen);
        painter.setBrush(onBody);
        break;
    case Layer::Stroke:
        painter.setPen(line);
        painter.setBrush(Qt::NoBrush);
        break;
    case Layer::Wire:
        painter.setPen(rim);
        painter.setBrush(Qt::NoBrush);
        break;
    }
    painter.drawPath(part.path);
}

QRgb average(const QImage& large, int left, int top) {
    int red = 0;
    int green = 0;
    int blue = 0;
    for (int y = top; y < top + oversampling; ++y) {
        for (int x = left; x < left + oversampling; ++x) {
            const QRgb pixel = large.pixel(x, y);
            red += qRed(pixel);
            green += qGreen(pixel);
            blue += qBlue(pixel);
        }
    }
    constexpr int count = oversampling * oversampling;
    const auto rounded = [](int sum) {
        return (sum + count / 2) / count;
    };
    return qRgb(rounded(red), rounded(green), rounded(blue));
}

QImage draw(const Glyph& glyph, const Style& style, int scale) {
    const int side = size * scale;
    QImage large(side * oversampling, side * oversampling, QImage::Format_RGB32);
    large.fill(Qt::white);
    QPainter painter(&large);
    painter.scale(scale * oversampling, scale * oversampling);
    for (const Part& part : glyph.parts)
        paintPart(painter, part, style);
    if (style.sign) {
        painter.fillPath(style.sign->cleared, Qt::white);
        painter.strokePath(style.sign->lines, roundPen(Qt::white, 7));
        painter.strokePath(style.sign->lines, roundPen(style.dark, 3));
    }
    painter.end();

    QImage icon(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            icon.setPixel(x, y, average(large, x * oversampling, y * oversampling));
    return icon;
}

/// A byte a pixel, with the colours in the order in which they are met: an icon has few.
QImage withTable(const QImage& icon) {
    QImage result(icon.size(), QImage::Format_Indexed8);
    QList<QRgb> colours;
    for (int y = 0; y < icon.height(); ++y) {
        for (int x = 0; x < icon.width(); ++x) {
            if (!colours.contains(icon.pixel(x, y)))
                colours << icon.pixel(x, y);
            result.scanLine(y)[x] = static_cast<uchar>(colours.indexOf(icon.pixel(x, y)));
        }
    }
    if (colours.size() > 256)
        std::fprintf(stderr, "draw_icons: an icon has %d colours, more than its file can name\n",
                     static_cast<int>(colours.size()));
    result.setColorTable(colours.mid(0, 256));
    return result;
}

QByteArray asBitmapFile(QImage icon) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (icon.width() > size)
        icon = withTable(icon);
    else
        icon = icon.convertToFormat(QImage::Format_RGB888);
    // 96 dots per inch, written down because the default is asked from the screen.
    icon.setDotsPerMeterX(3780);
    icon.setDotsPerMeterY(3780);
    icon.save(&buffer, "BMP");
    return bytes;
}

std::map<QString, QByteArray> allFiles() {
    const Style def{QColor(0x25, 0x2E, 0x3A), false, std::nullopt};
    const Style on{QColor(0x0B, 0x66, 0x38), true, tick()};
    const Style off{QColor(0xA8, 0x1A, 0x1A), false, cross()};

    const Style marker{QColor(0x4A, 0x1F, 0x7A), true, std::nullopt};

    std::map<QString, QByteArray> files;
    for (const int scale : scales) {
        const QString end =
            (scale == 1 ? QString() : QStringLiteral("@%1x").arg(scale)) + QStringLiteral(".bmp");
        for (const Glyph& glyph : deviceGlyphs()) {
            const QString stem = QString::fromStdString(glyph.stem);
            files[stem + QStringLiteral("Def") + end] = asBitmapFile(draw(glyph, def, scale));
            files[stem + QStringLiteral("On") + end] = asBitmapFile(draw(glyph, on, scale));
            files[stem + QStringLiteral("Off") + end] = asBitmapFile(draw(glyph, off, scale));
        }
        files[QStringLiteral("LocationMarker") + end] =
            asBitmapFile(draw(locationMarkerGlyph(), marker, scale));
    }
    return files;
}

bool write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    const bool done = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
    if (!done)
        std::fprintf(stderr, "draw_icons: cannot write %s: %s\n", qPrintable(path),
                     qPrintable(file.errorString()));
    return done;
}

bool same(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    const bool equal = file.open(QIODevice::ReadOnly) && file.readAll() == bytes;
    if (!equal)
        std::fprintf(stderr, "draw_icons: %s is missing or not what this program draws\n", qPrintable(path));
    return equal;
}

} // namespace

int main(int argc, char** argv) {
    const bool check = argc == 3 && qstrcmp(argv[1], "--check") == 0;
    if (!check && (argc != 2 || argv[1][0] == '-')) {
        std::fprintf(stderr, "usage: draw_icons [--check] FOLDER\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[argc - 1]));
    bool good = true;
    for (const auto& [name, bytes] : allFiles())
        good &= check ? same(folder.filePath(name), bytes) : write(folder.filePath(name), bytes);
    return good ? 0 : 1;
}
