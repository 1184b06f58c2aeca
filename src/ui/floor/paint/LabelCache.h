#pragma once

#include "model/Settings.h"
#include "model/records/Hardware.h"
#include "ui/floor/paint/LabelFont.h"
#include "ui/floor/paint/LabelLines.h"

#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QRect>

#include <chrono>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace mirovane {

/// The laid-out labels of the devices that are seen. Laying text out and drawing its glyphs is by far the
/// most expensive part of a frame; copying an image of it costs a tenth. The images cost one and a half
/// frames to make, so the first frame after a load or a zoom draws text plainly, and `prepare` makes the
/// images afterwards, in slices between events. Main thread only.
class CLabelCache {
public:
    struct Block {
        std::uint64_t signature = 0;
        std::vector<LaidLine> lines; ///< without their texts once the image replaces them
        QImage image;                ///< the lines one under the other; null until prepared
        QRect
            painted; ///< canvas pixels that the device covered when it was drawn last; empty when it was not
        std::uint64_t lastFrame = 0;
        bool waiting = false;
    };

    /// Start of a frame. Everything kept is dropped when the font or the choice of labels has changed.
    void begin(const DisplaySettings& display, const LabelState& state, int linePixels);

    /// End of a frame that visited every device in sight: the others are dropped.
    void evictUnseen();

    const LabelFont& font() const { return *font_; }

    /// The labels of a device as they are now; laid out if they are not kept.
    Block& block(const CHardware& device);

    /// The kept block; null when there is none.
    Block* find(const CHardware& device);

    /// The device's record is about to go.
    void forget(const CHardware& device) { blocks_.erase(&device); }
    void clear() { blocks_.clear(); }

    /// Draws the lines: rows from 0 on below `bottomCorner`, row -1 above `topCorner`, within `clip` only.
    void draw(QPainter& painter, Block& block, QPoint topCorner, QPoint bottomCorner, QRect clip) const;

    /// What the lines cover; empty when there are none.
    QRect covered(const Block& block, QPoint topCorner, QPoint bottomCorner) const;

    /// Makes images of labels that were drawn plainly, for at most about `budget`. False when none is left to
    /// make.
    bool prepare(std::chrono::microseconds budget);

private:
    void layOut(Block& block, const CHardware& device) const;
    void makeImage(Block& block) const;
    static bool fitsImage(const Block& block);
    QPoint cornerOf(const LaidLine& line, QPoint topCorner, QPoint bottomCorner) const;

    DisplaySettings display_;
    LabelState state_;
    std::unique_ptr<LabelFont> font_;
    std::uint64_t frame_ = 0;
    std::unordered_map<const CHardware*, Block> blocks_;
    std::vector<const CHardware*> waiting_;
};

} // namespace mirovane
