#pragma once

#include <QPainterPath>

#include <string>
#include <vector>

namespace icons {

/// How a stroke or a face of a glyph is painted in the two styles. `Outline` is the style of devices whose
/// state is unknown or Off, `Solid` that of devices that are On.
enum class Layer {
    Body,   ///< outline: white with a dark rim; solid: dark
    Window, ///< outline: white with a dark rim; solid: white
    Mark,   ///< a filled shape on a body: dark on the outline, white on the solid
    Stroke, ///< a line on a body: dark on the outline, white on the solid
    Wire,   ///< a line beside the body, dark in both
};

struct Part {
    Layer layer;
    QPainterPath path;
};

/// One device type: `stem` is its file name up to Def.bmp, On.bmp and Off.bmp. Parts are painted in order.
/// Coordinates are pixels of the 32 x 32 icon; rims and lines are 2 wide and lie on the path, so whole
/// numbers give edges that fill whole pixels.
struct Glyph {
    std::string stem;
    std::vector<Part> parts;
};

/// The twelve types that have a state, in the order of their codes.
std::vector<Glyph> deviceGlyphs();

/// The one icon without a state.
Glyph locationMarkerGlyph();

/// A sign over the lower right corner: by the signs On and Off are told apart without any colour.
struct Sign {
    QPainterPath lines;
    QPainterPath cleared; ///< where scraps of the body beyond the sign would only look like dirt
};

Sign tick();
Sign cross();

} // namespace icons
