#include "model/floor/Arrange.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace mirovane {

namespace {

/// One axis of a rectangle; all rules are the same along both.
struct Span {
    std::int64_t from;
    std::int64_t length;

    std::int64_t end() const { return from + length; }
    std::int64_t centre() const { return from + length / 2; }
};

enum class Axis { X, Y };

Span along(Axis axis, const PlacedDevice& device) {
    if (axis == Axis::X)
        return {device.at.x, device.size.width};
    return {device.at.y, device.size.height};
}

MapPoint placed(Axis axis, MapPoint at, std::int64_t from) {
    (axis == Axis::X ? at.x : at.y) = withinLimit(from);
    return at;
}

Axis axisOf(Arrangement arrangement) {
    switch (arrangement) {
    case Arrangement::AlignLeft:
    case Arrangement::AlignCentre:
    case Arrangement::AlignRight:
    case Arrangement::DistributeHorizontally:
        return Axis::X;
    case Arrangement::AlignTop:
    case Arrangement::AlignMiddle:
    case Arrangement::AlignBottom:
    case Arrangement::DistributeVertically:
        break;
    }
    return Axis::Y;
}

std::int64_t aligned(Arrangement arrangement, Span all, std::int64_t length) {
    switch (arrangement) {
    case Arrangement::AlignLeft:
    case Arrangement::AlignTop:
        return all.from;
    case Arrangement::AlignRight:
    case Arrangement::AlignBottom:
        return all.end() - length;
    default:
        return all.centre() - length / 2;
    }
}

std::vector<DeviceMove> distribute(Axis axis, std::span<const PlacedDevice> devices) {
    std::vector<PlacedDevice> sorted(devices.begin(), devices.end());
    std::ranges::stable_sort(sorted, {}, [axis](const PlacedDevice& d) { return along(axis, d).centre(); });
    const std::int64_t first = along(axis, sorted.front()).centre();
    const std::int64_t distance = along(axis, sorted.back()).centre() - first;
    const auto gaps = static_cast<std::int64_t>(sorted.size()) - 1;
    std::vector<DeviceMove> moves;
    for (std::int64_t i = 1; i < gaps; ++i) {
        const PlacedDevice& device = sorted[static_cast<std::size_t>(i)];
        const std::int64_t centre = first + (distance * i + gaps / 2) / gaps;
        const MapPoint to = placed(axis, device.at, centre - along(axis, device).length / 2);
        if (to != device.at)
            moves.push_back({device.device, to});
    }
    return moves;
}

} // namespace

std::size_t fewestFor(Arrangement arrangement) {
    return distributes(arrangement) ? 3 : 2;
}

std::vector<DeviceMove> arrange(Arrangement arrangement, std::span<const PlacedDevice> devices) {
    if (devices.size() < fewestFor(arrangement))
        return {};
    const Axis axis = axisOf(arrangement);
    if (distributes(arrangement))
        return distribute(axis, devices);
    const Span all = along(axis, around(devices));
    std::vector<DeviceMove> moves;
    for (const PlacedDevice& device : devices) {
        const std::int64_t from = aligned(arrangement, all, along(axis, device).length);
        const MapPoint to = placed(axis, device.at, from);
        if (to != device.at)
            moves.push_back({device.device, to});
    }
    return moves;
}

PlacedDevice around(std::span<const PlacedDevice> devices) {
    PlacedDevice all = devices.front();
    for (const Axis axis : {Axis::X, Axis::Y}) {
        std::int64_t from = along(axis, all).from;
        std::int64_t end = along(axis, all).end();
        for (const PlacedDevice& device : devices) {
            from = std::min(from, along(axis, device).from);
            end = std::max(end, along(axis, device).end());
        }
        all.at = placed(axis, all.at, from);
        (axis == Axis::X ? all.size.width : all.size.height) = withinLimit(end - from);
    }
    return all;
}

// ---- snapping

namespace {

/// The best meeting on one axis so far.
struct Meeting {
    std::int64_t by;
    std::int64_t line; ///< where the edges or centres meet
    const PlacedDevice* neighbour;
};

std::array<std::int64_t, 3> marks(Span span) {
    return {span.from, span.centre(), span.end()};
}

std::optional<Meeting> nearest(Axis axis, const PlacedDevice& dragged,
                               std::span<const PlacedDevice> neighbours, std::int32_t reach) {
    std::optional<Meeting> best;
    const auto own = marks(along(axis, dragged));
    for (const PlacedDevice& neighbour : neighbours) {
        for (const std::int64_t theirs : marks(along(axis, neighbour))) {
            for (const std::int64_t mine : own) {
                const std::int64_t by = theirs - mine;
                if (std::abs(by) <= reach && (!best || std::abs(by) < std::abs(best->by)))
                    best = Meeting{by, theirs, &neighbour};
            }
        }
    }
    return best;
}

/// From the one device to the other, across the axis on which they meet.
AlignmentLine line(Axis axis, const Meeting& meeting, const PlacedDevice& dragged) {
    const Axis across = axis == Axis::X ? Axis::Y : Axis::X;
    const Span mine = along(across, dragged);
    const Span theirs = along(across, *meeting.neighbour);
    const std::int64_t from = std::min(mine.from, theirs.from);
    const std::int64_t end = std::max(mine.end(), theirs.end());
    const MapPoint on = placed(axis, {}, meeting.line);
    return {placed(across, on, from), placed(across, on, end)};
}

} // namespace

Snap snap(const PlacedDevice& dragged, std::span<const PlacedDevice> neighbours, std::int32_t reach) {
    Snap result;
    const auto x = nearest(Axis::X, dragged, neighbours, reach);
    const auto y = nearest(Axis::Y, dragged, neighbours, reach);
    result.by = {x ? withinLimit(x->by) : 0, y ? withinLimit(y->by) : 0};
    PlacedDevice snapped = dragged;
    snapped.at = {withinLimit(std::int64_t{dragged.at.x} + result.by.x),
                  withinLimit(std::int64_t{dragged.at.y} + result.by.y)};
    if (x)
        result.vertical = line(Axis::X, *x, snapped);
    if (y)
        result.horizontal = line(Axis::Y, *y, snapped);
    return result;
}

// ---- reading order

std::vector<PlacedDevice> inReadingOrder(std::vector<PlacedDevice> devices) {
    std::ranges::stable_sort(
        devices, {}, [](const PlacedDevice& device) { return device.at.y; });
    const auto sortRow = [](auto begin, auto end) {
        std::stable_sort(begin, end,
                         [](const PlacedDevice& a, const PlacedDevice& b) { return a.at.x < b.at.x; });
    };
    auto row = devices.begin();
    for (auto device = row; device != devices.end(); ++device) {
        if (std::int64_t{device->at.y} - row->at.y >= std::max(1, row->size.height / 2)) {
            sortRow(row, device);
            row = device;
        }
    }
    sortRow(row, devices.end());
    return devices;
}

} // namespace mirovane
