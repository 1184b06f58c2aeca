#include "ui/floor/FloorIndex.h"

#include <algorithm>

namespace mirovane {

namespace {

/// Side of a square of the index, map pixels, as a shift. A window at 100 % covers some sixty squares.
constexpr int cellShift = 8;

std::uint64_t cellKey(std::int64_t column, std::int64_t row) {
    return static_cast<std::uint64_t>(column) << 32 | (static_cast<std::uint64_t>(row) & 0xFFFFFFFFU);
}

std::uint64_t cellOf(MapPoint position) {
    return cellKey(position.x >> cellShift, position.y >> cellShift);
}

bool inside(const FloorIndex::Area& area, MapPoint p) {
    return p.x >= area.left && p.x <= area.right && p.y >= area.top && p.y <= area.bottom;
}

FloorIndex::Area limited(FloorIndex::Area area) {
    constexpr std::int64_t low = INT32_MIN;
    constexpr std::int64_t high = INT32_MAX;
    return {std::clamp(area.left, low, high), std::clamp(area.top, low, high),
            std::clamp(area.right, low, high), std::clamp(area.bottom, low, high)};
}

} // namespace

FloorIndex::FloorIndex(CMirovaneDoc& document) : document_(document) {
    document_.addObserver(*this);
    documentReplaced();
}

FloorIndex::~FloorIndex() {
    document_.removeObserver(*this);
}

FloorIndex::Devices FloorIndex::devicesIn(const Area& wanted) const {
    const Area area = limited(wanted);
    Devices found;
    const auto take = [&](const std::vector<Entry>& entries) {
        for (const Entry& entry : entries) {
            if (inside(area, entry.position))
                found.push_back(entry.device);
        }
    };
    const std::int64_t columns = (area.right >> cellShift) - (area.left >> cellShift) + 1;
    const std::int64_t rows = (area.bottom >> cellShift) - (area.top >> cellShift) + 1;
    if (columns <= 0 || rows <= 0)
        return found;
    if (columns * rows > static_cast<std::int64_t>(cells_.size())) {
        for (const auto& [key, entries] : cells_)
            take(entries);
        return found;
    }
    for (std::int64_t column = area.left >> cellShift; column <= area.right >> cellShift; ++column) {
        for (std::int64_t row = area.top >> cellShift; row <= area.bottom >> cellShift; ++row) {
            if (const auto cell = cells_.find(cellKey(column, row)); cell != cells_.end())
                take(cell->second);
        }
    }
    return found;
}

FloorIndex::Rank FloorIndex::rank(const CHardware& device) const {
    const auto serial = serials_.find(&device);
    return {document_.indexOfDevice(device.RecID).value_or(document_.size()),
            serial == serials_.end() ? nextSerial_ : serial->second};
}

void FloorIndex::inListOrder(Devices& devices) const {
    std::vector<std::pair<Rank, const CHardware*>> ranked;
    ranked.reserve(devices.size());
    for (const CHardware* device : devices)
        ranked.emplace_back(rank(*device), device);
    std::sort(ranked.begin(), ranked.end());
    std::ranges::transform(ranked, devices.begin(), [](const auto& entry) { return entry.second; });
}

const CHardware* FloorIndex::lastSelected() const {
    if (!lastSelected_) {
        const auto last =
            std::ranges::max_element(selected_, {}, [this](const CHardware* d) { return rank(*d); });
        lastSelected_ = last == selected_.end() ? nullptr : *last;
    }
    return *lastSelected_;
}

void FloorIndex::setMember(std::unordered_set<const CHardware*>& set, const CHardware& device, bool member) {
    const bool changed = member ? set.insert(&device).second : set.erase(&device) > 0;
    if (changed && &set == &selected_)
        lastSelected_.reset();
}

void FloorIndex::insert(const CHardware& device) {
    if (!device.onFloor())
        return;
    cells_[cellOf(device.Position)].push_back({&device, device.Position});
    serials_.emplace(&device, nextSerial_++);
    setMember(markers_, device, device.Type == DeviceType::LocationMarker);
    flagsChanged(device);
    ++revision_;
}

void FloorIndex::erase(const CHardware& device, MapPoint position) {
    const auto cell = cells_.find(cellOf(position));
    if (cell == cells_.end() ||
        std::erase_if(cell->second, [&](const Entry& e) { return e.device == &device; }) == 0)
        return;
    if (cell->second.empty())
        cells_.erase(cell);
    serials_.erase(&device);
    setMember(selected_, device, false);
    setMember(hovered_, device, false);
    setMember(markers_, device, false);
    ++revision_;
}

void FloorIndex::recordAdded(const CHardware& record) {
    insert(record);
}

void FloorIndex::recordChanged(const CHardware& before, const CHardware& after) {
    lastSelected_.reset();
    if (before.Type == after.Type && before.Position == after.Position) {
        flagsChanged(after);
        return;
    }
    if (before.onFloor())
        erase(after, before.Position);
    insert(after);
}

void FloorIndex::flagsChanged(const CHardware& record) {
    if (!record.onFloor())
        return;
    setMember(selected_, record, record.Selected != 0);
    setMember(hovered_, record, record.ShowAll != 0);
}

void FloorIndex::recordRemoved(const CHardware& record) {
    if (record.onFloor())
        erase(record, record.Position);
    lastSelected_.reset();
}

void FloorIndex::orderChanged() {
    lastSelected_.reset();
}

void FloorIndex::documentReplaced() {
    cells_.clear();
    serials_.clear();
    selected_.clear();
    hovered_.clear();
    markers_.clear();
    lastSelected_.reset();
    serials_.reserve(document_.deviceCount());
    for (std::size_t i = 0; i < document_.size(); ++i)
        insert(document_.at(i));
    ++revision_;
}

} // namespace mirovane
