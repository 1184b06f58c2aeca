#include "ui/floor/geometry/FontBands.h"

#include <algorithm>
#include <array>
#include <span>

namespace mirovane {

namespace {

struct Band {
    std::int32_t below;
    std::int32_t offset;
};

constexpr std::array<Band, 7> bandsA = {
    {{30, 2}, {70, 5}, {120, 12}, {170, 13}, {300, 14}, {500, 16}, {800, 18}}};
constexpr std::array<Band, 7> bandsB = {
    {{30, 2}, {70, 5}, {120, 12}, {200, 16}, {350, 18}, {500, 24}, {800, 28}}};

std::optional<std::int32_t> offsetIn(std::span<const Band> bands, std::int32_t percent) {
    const auto band = std::ranges::find_if(bands, [percent](const Band& b) { return percent < b.below; });
    return band == bands.end() ? std::nullopt : std::optional(band->offset);
}

} // namespace

std::optional<std::int32_t> fontOffsetA(std::int32_t percent) {
    return offsetIn(bandsA, percent);
}

std::optional<std::int32_t> fontOffsetB(std::int32_t percent) {
    return offsetIn(bandsB, percent);
}

std::int32_t labelFontHeight(std::int32_t ZoomFontScale, std::int32_t offset) {
    const std::int64_t height = std::int64_t{ZoomFontScale} + offset;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(height, smallestLabelFont, largestLabelFont));
}

std::int32_t startLabelFontHeight(const DisplaySettings& display) {
    return labelFontHeight(display.ZoomFontScale,
                           fontOffsetA(display.ZoomPercent).value_or(largestFontOffset));
}

} // namespace mirovane
