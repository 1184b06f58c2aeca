#pragma once

#include "ui/floor/paint/FloorCanvas.h"

#include <QRect>

#include <span>
#include <vector>

namespace mirovane {

/// Hairlines where the labels of one device lie on those of another: white on white, nobody could tell which
/// word is whose. A seam lies around the upper label and only on lower labels, so that it comes and goes with
/// both. One part of a frame at a time. Main thread.
class CLabelSeams {
public:
    /// Start of a part: canvas pixels.
    void begin(QRect clip);

    /// These lines are drawn from now on.
    void add(std::span<const QRect> lines);

    /// The seams of the next device's lines, to be drawn before the device.
    void draw(const FloorCanvas& canvas, std::span<const QRect> lines) const;

private:
    template <typename Visit>
    void visitCells(const QRect& area, const Visit& visit) const;

    QRect clip_;
    int columns_ = 0;
    std::vector<std::vector<QRect>> cells_;
};

} // namespace mirovane
