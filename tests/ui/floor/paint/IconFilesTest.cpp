#include "tests/support/Paths.h"

#include <QImage>
#include <QString>

#include <bitset>
#include <gtest/gtest.h>
#include <vector>

namespace mirovane {
namespace {

constexpr int size = 32;

/// What somebody who sees no colours sees of an icon: where it is dark.
using Mask = std::bitset<size * size>;

const std::vector<const char*> stems = {"RJ45",  "PC",     "Printer", "Laptop", "Switch", "Router",
                                        "Phone", "Camera", "Unknown", "UPS",    "Card",   "Wireless"};

QImage icon(const QString& name) {
    return QImage(QString::fromStdString(test::sourceFile("assets/icons/")) + name + QStringLiteral(".bmp"));
}

Mask darkPixels(const QString& name) {
    const QImage image = icon(name);
    Mask dark;
    if (image.size() != QSize(size, size)) {
        ADD_FAILURE() << name.toStdString() << " is missing or not 32 x 32";
        return dark;
    }
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            dark[static_cast<std::size_t>(y * size + x)] = qGray(image.pixel(x, y)) < 128;
    return dark;
}

TEST(IconFilesTest, StatesDifferWithoutColour) {
    for (const char* stem : stems) {
        const QString name = QString::fromLatin1(stem);
        const Mask def = darkPixels(name + QStringLiteral("Def"));
        const Mask on = darkPixels(name + QStringLiteral("On"));
        const Mask off = darkPixels(name + QStringLiteral("Off"));
        EXPECT_GE((def ^ on).count(), 80u) << stem;
        EXPECT_GE((def ^ off).count(), 25u) << stem;
        EXPECT_GE((on ^ off).count(), 80u) << stem;
        EXPECT_GT(on.count(), def.count()) << stem << ": a device that is On has a solid body";
    }
}

TEST(IconFilesTest, TypesDiffer) {
    for (std::size_t a = 0; a < stems.size(); ++a) {
        for (std::size_t b = a + 1; b < stems.size(); ++b) {
            const auto def = [](const char* stem) {
                return darkPixels(QString::fromLatin1(stem) + QStringLiteral("Def"));
            };
            EXPECT_GE((def(stems[a]) ^ def(stems[b])).count(), 120u) << stems[a] << " and " << stems[b];
        }
    }
}

/// A selected icon is drawn as blue OR NOT icon: red and green of a dark shape turn bright, the white ground
/// blue.
TEST(IconFilesTest, StaysReadableWhenSelected) {
    std::vector<QString> names = {QStringLiteral("LocationMarker")};
    for (const char* stem : stems)
        for (const char* state : {"Def", "On", "Off"})
            names.push_back(QString::fromLatin1(stem) + QString::fromLatin1(state));
    for (const QString& name : names) {
        const QImage image = icon(name);
        int ground = 0;
        int shape = 0;
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const QRgb pixel = image.pixel(x, y);
                const int brightness = qGray(255 - qRed(pixel), 255 - qGreen(pixel), 255);
                ground += brightness < 70;
                shape += brightness > 160;
            }
        }
        EXPECT_GE(ground, 300) << name.toStdString();
        EXPECT_GE(shape, 120) << name.toStdString();
    }
}

} // namespace
} // namespace mirovane
