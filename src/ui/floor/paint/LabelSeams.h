#pragma once

#include "ui/floor/paint/FloorCanvas.h"

#include <QRect>

#include <cstdint>
#include <span>
#include <vector>

namespace mirovane {

/// Hairlines where the labels of one device lie on those of another: white on white, nobody could tell which
/// word is whose. A seam lies around the upper label and only on lower labels, so that it comes and goes with
/// both. A bit for each pixel tells where labels are: looking for the labels under each label would take most
/// of the time of a crowded frame. One part of a frame at a time. Main thread.
class CLabelSeams {
public:
    /// Start of a part: canvas pixels.
    void begin(QRect clip);

    /// These lines are drawn from now on.
    void add(std::span<const QRect> lines);

    /// The seams of the next device's lines, to be drawn before the device.
    void draw(const FloorCanvas& canvas, std::span<const QRect> lines) const;

private:
    void drawAcross(const FloorCanvas& canvas, const QRect& edge) const;
    void drawDown(const FloorCanvas& canvas, const QRect& edge) const;
    bool labelAt(int x, int y) const;

    QRect clip_;
    std::size_t rowWords_ = 0;
    std::vector<std::uint64_t> labelled_; ///< rows of the clip, each beginning with a word of its own
};

} // namespace mirovane
