#pragma once

#include "model/Settings.h"
#include "model/records/Hardware.h"
#include "ui/floor/paint/FloorCanvas.h"
#include "ui/floor/paint/GlyphAtlas.h"
#include "ui/floor/paint/LabelFont.h"
#include "ui/floor/paint/LabelLines.h"

#include <QPoint>
#include <QRect>

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace mirovane {

/// The laid-out labels of the devices that are seen, and where each device was drawn. A block stays until its
/// device is touched or something that all labels depend on changes. Main thread only.
class CLabelCache {
public:
    struct Block {
        std::vector<LaidLine> lines;
        std::uint64_t state = 0; ///< of the view, as far as these lines depend on it
        bool fresh = false;
        bool placed = false; ///< `painted` is where the device would be drawn again
        QRect painted;       ///< what the device covered when it was drawn last; empty when it was not
        bool onTop = false;  ///< and was drawn among the selected and hovered ones
        std::uint64_t lastFrame = 0;
    };
    using Blocks = std::unordered_map<const CHardware*, Block>;

    /// Start of a frame. Everything kept is dropped when the font or the choice of labels has changed.
    void begin(const DisplaySettings& display, const LabelState& state, int linePixels);

    /// End of a frame that visited every device in sight: the others are dropped.
    void evictUnseen();

    const LabelFont& font() const { return *font_; }

    /// The labels of a device as they are now; laid out if they are not kept.
    Block& block(const CHardware& device);

    /// The kept block; null when there is none.
    Block* find(const CHardware& device);

    Blocks& blocks() { return blocks_; }

    /// It is in sight in this frame, though nobody asks for its lines.
    void keep(Block& block) const { block.lastFrame = frame_; }
    bool seen(const Block& block) const { return block.lastFrame == frame_; }

    /// Something of the device has changed.
    void touch(const CHardware& device);

    /// All devices are to be placed anew, though their labels are the same.
    void forgetPlaces();

    /// The device's record is about to go.
    void forget(const CHardware& device) { blocks_.erase(&device); }
    void clear() { blocks_.clear(); }

    /// A line outside of any block.
    LaidLine laidOut(const LabelLine& line);
    void drawLine(const FloorCanvas& canvas, QPoint corner, const LaidLine& line, QRect clip);

    /// Draws the lines: rows from 0 on below `bottomCorner`, row -1 above `topCorner`, within `clip` only.
    void draw(const FloorCanvas& canvas, const Block& block, QPoint topCorner, QPoint bottomCorner,
              QRect clip);

    /// Where a line goes.
    QRect placeOf(const LaidLine& line, QPoint topCorner, QPoint bottomCorner) const;

    /// What the lines cover; empty when there are none.
    QRect covered(const Block& block, QPoint topCorner, QPoint bottomCorner) const;

private:
    void layOut(Block& block, const CHardware& device);

    DisplaySettings display_;
    LabelState state_;
    std::unique_ptr<LabelFont> font_;
    std::unique_ptr<CGlyphAtlas> atlas_;
    std::uint64_t frame_ = 0;
    Blocks blocks_;
};

} // namespace mirovane
