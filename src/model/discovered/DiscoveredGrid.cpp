#include "model/discovered/DiscoveredGrid.h"

#include <algorithm>

namespace mirovane {

int DiscoveredGrid::columns() const {
    return std::max(1, ClientWidth / CellWidth);
}

int DiscoveredGrid::rows() const {
    return (devices + columns() - 1) / columns();
}

int DiscoveredGrid::ScrollMax() const {
    return std::max(0, rows() * CellHeight - ClientHeight);
}

GridPoint DiscoveredGrid::cell(int device) const {
    return {device % columns() * CellWidth, device / columns() * CellHeight};
}

std::optional<DiscoveredGrid::Range> DiscoveredGrid::inRows(int top, int bottom) const {
    const int first = std::max(0, top) / CellHeight * columns();
    const int last = std::min(devices, (bottom / CellHeight + 1) * columns()) - 1;
    if (bottom < 0 || first > last)
        return std::nullopt;
    return Range{first, last};
}

int DiscoveredGrid::scrolledTo(int device, int ScrollY) const {
    const int top = cell(device).y;
    const int lowest = top + CellHeight - ClientHeight;
    return std::clamp(std::min(std::max(ScrollY, lowest), top), 0, ScrollMax());
}

int DiscoveredGrid::stepped(int device, Step step) const {
    const int page = std::max(1, ClientHeight / CellHeight) * columns();
    int to = device;
    switch (step) {
    case Step::Left:
        to = device - 1;
        break;
    case Step::Right:
        to = device + 1;
        break;
    case Step::Up:
        to = device - columns();
        break;
    case Step::Down:
        to = device + columns();
        break;
    case Step::PageUp:
        to = std::max(device - page, device % columns());
        break;
    case Step::PageDown:
        to = std::min(device + page, devices - 1);
        break;
    case Step::Home:
        to = 0;
        break;
    case Step::End:
        to = devices - 1;
        break;
    }
    return to >= 0 && to < devices ? to : device;
}

} // namespace mirovane
