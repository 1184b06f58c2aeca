#include "ui/floor/geometry/FloorIndex.h"

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

bool inside(const CFloorIndex::Area& area, MapPoint p) {
    return p.x >= area.left && p.x <= area.right && p.y >= area.top && p.y <= area.bottom;
}

CFloorIndex::Area limited(CFloorIndex::Area area) {
    constexpr std::int64_t low = INT32_MIN;
    constexpr std::int64_t high = INT32_MAX;
    return {std::clamp(area.left, low, high), std::clamp(area.top, low, high),
            std::clamp(area.right, low, high), std::clamp(area.bottom, low, high)};
}

} // namespace

CFloorIndex::CFloorIndex(const CMirovaneDoc& document) : document_(document) {
    document_.addObserver(*this);
    documentReplaced();
}

CFloorIndex::~CFloorIndex() {
    document_.removeObserver(*this);
}

CFloorIndex::Devices CFloorIndex::devicesIn(const Area& wanted) const {
    const Area area = limited(wanted);
    Devices found;
    const auto take = [&](const std::vector<Entry>& entries) {
        for (const Entry& entry : entries)
            if (inside(area, entry.position))
                found.push_back(entry.device);
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
        for (std::int64_t row = area.top >> cellShift; row <= area.bottom >> cellShift; ++row)
            if (const auto cell = cells_.find(cellKey(column, row)); cell != cells_.end())
                take(cell->second);
    }
    return found;
}

CFloorIndex::Rank CFloorIndex::rank(const CHardware& device) const {
    const auto serial = serials_.find(&device);
    return {document_.indexOfDevice(device.RecID).value_or(document_.size()),
            serial == serials_.end() ? nextSerial_ : serial->second};
}

void CFloorIndex::inListOrder(Devices& devices) const {
    std::vector<std::pair<Rank, const CHardware*>> ranked;
    ranked.reserve(devices.size());
    for (const CHardware* device : devices)
        ranked.emplace_back(rank(*device), device);
    std::sort(ranked.begin(), ranked.end());
    std::ranges::transform(ranked, devices.begin(), [](const auto& entry) { return entry.second; });
}

void CFloorIndex::setMember(std::unordered_set<const CHardware*>& set, const CHardware& device, bool member) {
    if (member)
        set.insert(&device);
    else
        set.erase(&device);
}

void CFloorIndex::insert(const CHardware& device) {
    if (!device.onFloor())
        return;
    cells_[cellOf(device.Position)].push_back({&device, device.Position});
    serials_.emplace(&device, nextSerial_++);
    setMember(markers_, device, device.Type == DeviceType::LocationMarker);
    flagsChanged(device);
    ++revision_;
}

void CFloorIndex::erase(const CHardware& device, MapPoint position) {
    const auto cell = cells_.find(cellOf(position));
    if (cell == cells_.end() ||
        std::erase_if(cell->second, [&](const Entry& e) { return e.device == &device; }) == 0)
        return;
    if (cell->second.empty())
        cells_.erase(cell);
    serials_.erase(&device);
    setMember(hovered_, device, false);
    setMember(markers_, device, false);
    ++revision_;
}

void CFloorIndex::recordAdded(const CHardware& record) {
    insert(record);
}

void CFloorIndex::recordChanged(const CHardware& before, const CHardware& after) {
    if (before.Type == after.Type && before.Position == after.Position) {
        flagsChanged(after);
        return;
    }
    if (before.onFloor())
        erase(after, before.Position);
    insert(after);
}

void CFloorIndex::flagsChanged(const CHardware& record) {
    if (record.onFloor())
        setMember(hovered_, record, record.ShowAll != 0);
}

void CFloorIndex::recordRemoved(const CHardware& record) {
    if (record.onFloor())
        erase(record, record.Position);
}

void CFloorIndex::documentReplaced() {
    cells_.clear();
    serials_.clear();
    hovered_.clear();
    markers_.clear();
    serials_.reserve(document_.deviceCount());
    for (std::size_t i = 0; i < document_.size(); ++i)
        insert(document_.at(i));
    ++revision_;
}

} // namespace mirovane
