#pragma once

#include <cstdint>
#include <optional>

namespace mirovane {

/// Pixels of the window of Discovered/Misc.
struct GridPoint {
    int x = 0;
    int y = 0;

    bool operator==(const GridPoint&) const = default;
};

/// The cells of the Discovered/Misc window: where the n-th device is, how far the window scrolls, and which
/// cells a rectangle touches. Plain arithmetic on whole pixels; a value that is made anew when something
/// changes.
struct DiscoveredGrid {
    static constexpr int CellWidth = 80;
    static constexpr int CellHeight = 120;

    int ClientWidth = 0;
    int ClientHeight = 0;
    int devices = 0;

    /// However narrow the window is, there is one column.
    int columns() const;
    int rows() const;
    int ScrollMax() const;

    /// Where the cell of the n-th device (from 0) starts, in the scrolled contents.
    GridPoint cell(int device) const;

    /// First and last cell of the rows that show between `top` and `bottom`; nothing when no device does.
    struct Range {
        int first = 0;
        int last = 0;
    };
    std::optional<Range> inRows(int top, int bottom) const;

    /// The scroll position at which the device is visible, as near to `ScrollY` as may be.
    int scrolledTo(int device, int ScrollY) const;

    /// Where a step of the keyboard leads to. A step out of the grid stays where it is.
    enum class Step { Left, Right, Up, Down, PageUp, PageDown, Home, End };
    int stepped(int device, Step step) const;
};

} // namespace mirovane
