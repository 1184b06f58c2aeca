#include "model/floor/MarkedArea.h"

#include "model/floor/Scale.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace mirovane {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Blanks, a sign, digits; the rest of the piece does not matter.
std::int32_t leadingInteger(std::string_view piece) {
    std::size_t i = 0;
    while (i < piece.size() && (piece[i] == ' ' || (piece[i] >= '\t' && piece[i] <= '\r')))
        ++i;
    const bool negative = i < piece.size() && piece[i] == '-';
    if (i < piece.size() && (piece[i] == '-' || piece[i] == '+'))
        ++i;
    std::int64_t value = 0;
    constexpr std::int64_t limit = std::numeric_limits<std::int32_t>::max();
    for (; i < piece.size() && isDigit(piece[i]); ++i)
        value = std::min(value * 10 + (piece[i] - '0'), limit);
    return static_cast<std::int32_t>(negative ? -value : value);
}

} // namespace

std::vector<MapPoint> parseMarkedArea(std::string_view text) {
    std::vector<std::int32_t> numbers;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t comma = std::min(text.find(',', start), text.size());
        numbers.push_back(leadingInteger(text.substr(start, comma - start)));
        start = comma + 1;
    }
    std::vector<MapPoint> points;
    points.reserve(numbers.size() / 2);
    for (std::size_t i = 0; i + 1 < numbers.size(); i += 2)
        points.push_back({numbers[i], numbers[i + 1]});
    return points;
}

std::optional<std::int64_t> markedAreaScore(std::span<const MapPoint> area, MapPoint scaledPoint,
                                            std::int32_t ZoomPercent) {
    unsigned quadrants = 0;
    std::int64_t score = 0;
    for (const MapPoint& corner : area) {
        const MapPoint at = scaled(corner, ZoomPercent);
        const std::int64_t dx = std::int64_t{scaledPoint.x} - at.x;
        const std::int64_t dy = std::int64_t{scaledPoint.y} - at.y;
        quadrants |= 1U << ((dx < 0 ? 1U : 0U) + (dy < 0 ? 2U : 0U));
        score += std::abs(dx);
    }
    return quadrants == 0xF ? std::optional(score) : std::nullopt;
}

} // namespace mirovane
