#include "ui/widgets/ReadableColours.h"

#include <algorithm>
#include <cmath>

namespace mirovane {

namespace {

constexpr double leastWhenDisabled = 2.5;
constexpr double disabledShare = 0.5; ///< of the text's own colour; the rest is the ground's

struct TextOnGround {
    QPalette::ColorRole text;
    QPalette::ColorRole ground;
};
constexpr TextOnGround texts[] = {{QPalette::WindowText, QPalette::Window},
                                  {QPalette::Text, QPalette::Base},
                                  {QPalette::ButtonText, QPalette::Button}};

QColor mixed(const QColor& text, const QColor& ground, double share) {
    const auto part = [share](double over, double under) {
        return static_cast<float>(over * share + under * (1 - share));
    };
    return QColor::fromRgbF(part(text.redF(), ground.redF()), part(text.greenF(), ground.greenF()),
                            part(text.blueF(), ground.blueF()));
}

/// As the eye weighs the colours.
double luminance(const QColor& colour) {
    const auto part = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

} // namespace

double contrast(const QColor& text, const QColor& ground) {
    const double one = luminance(mixed(text, ground, text.alphaF()));
    const double other = luminance(ground);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

QPalette readableColours(const QPalette& desktop) {
    QPalette readable = desktop;
    for (const auto& [text, ground] : texts) {
        const QColor under = desktop.color(QPalette::Disabled, ground);
        if (contrast(desktop.color(QPalette::Disabled, text), under) < leastWhenDisabled)
            readable.setColor(QPalette::Disabled, text,
                              mixed(desktop.color(QPalette::Active, text), under, disabledShare));
    }
    return readable;
}

} // namespace mirovane
