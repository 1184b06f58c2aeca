#pragma once

#include "model/Settings.h"

#include <cstdint>
#include <optional>

namespace mirovane {

/// What is added to ZoomFontScale at this zoom. Nothing from 800 % up: there the font keeps the height it
/// had. Table A serves the zoom steps, fit to width and start-up; table B fit to height.
std::optional<std::int32_t> fontOffsetA(std::int32_t percent);
std::optional<std::int32_t> fontOffsetB(std::int32_t percent);

/// From 800 % up, where no earlier height exists to keep.
constexpr std::int32_t largestFontOffset = 32;

/// Label heights that can be drawn; a font scale that leads outside is held at the bound.
constexpr std::int32_t smallestLabelFont = 1;
constexpr std::int32_t largestLabelFont = 400;

/// Base and offset together, held within what can be drawn.
std::int32_t labelFontHeight(std::int32_t ZoomFontScale, std::int32_t offset);

/// LabelFontHeight for the zoom and font scale that the settings hold.
std::int32_t startLabelFontHeight(const DisplaySettings& display);

} // namespace mirovane
