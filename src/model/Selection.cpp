#include "model/Selection.h"

#include <algorithm>
#include <utility>

namespace mirovane {

namespace {

bool inScope(const CHardware& record, CSelection::Scope scope) {
    switch (scope) {
    case CSelection::Scope::Floor:
        return record.onFloor();
    case CSelection::Scope::DiscoveredMisc:
        return record.isDevice() && !record.onFloor();
    case CSelection::Scope::Everywhere:
        return record.isDevice();
    }
    return false;
}

} // namespace

CSelection::CSelection(CMirovaneDoc& document) : document_(document) {
    document_.addObserver(*this);
    documentReplaced();
}

CSelection::~CSelection() {
    document_.removeObserver(*this);
}

// ---- questions

std::size_t CSelection::count(Scope scope) const {
    const std::size_t floor = scope == Scope::DiscoveredMisc ? 0 : floor_.size();
    const std::size_t misc = scope == Scope::Floor ? 0 : misc_.size();
    return floor + misc;
}

CSelection::Devices CSelection::unordered(Scope scope) const {
    Devices devices;
    devices.reserve(count(scope));
    if (scope != Scope::DiscoveredMisc)
        devices.insert(devices.end(), floor_.begin(), floor_.end());
    if (scope != Scope::Floor)
        devices.insert(devices.end(), misc_.begin(), misc_.end());
    return devices;
}

CSelection::Devices CSelection::members(Scope scope) const {
    std::vector<std::pair<std::size_t, const CHardware*>> placed;
    placed.reserve(count(scope));
    for (const CHardware* device : unordered(scope)) {
        const auto place = document_.indexOfDevice(device->RecID);
        if (!place || &document_.at(*place) != device)
            return walked(scope);
        placed.emplace_back(*place, device);
    }
    std::sort(placed.begin(), placed.end());
    Devices devices(placed.size());
    std::ranges::transform(placed, devices.begin(), [](const auto& entry) { return entry.second; });
    return devices;
}

/// Where a damaged file holds a record ID twice, only the list itself knows the place of the second device.
CSelection::Devices CSelection::walked(Scope scope) const {
    Devices devices;
    for (std::size_t i = 0; i < document_.size(); ++i)
        if (document_.at(i).Selected != 0 && inScope(document_.at(i), scope))
            devices.push_back(&document_.at(i));
    return devices;
}

const CHardware* CSelection::lastOnFloor() const {
    if (!lastOnFloor_) {
        const Devices devices = members(Scope::Floor);
        lastOnFloor_ = devices.empty() ? nullptr : devices.back();
    }
    return *lastOnFloor_;
}

// ---- changes

void CSelection::only(const CHardware& device) {
    for (const CHardware* other : unordered(device.onFloor() ? Scope::Floor : Scope::DiscoveredMisc))
        if (other != &device)
            remove(*other);
    add(device);
}

void CSelection::none(Scope scope) {
    for (const CHardware* device : unordered(scope))
        remove(*device);
}

std::size_t CSelection::addMatching(Scope scope, const Rule& rule) {
    std::size_t matches = 0;
    for (std::size_t i = 0; i < document_.size(); ++i) {
        const CHardware& record = document_.at(i);
        if (!inScope(record, scope) || !rule(record))
            continue;
        add(record);
        ++matches;
    }
    return matches;
}

std::size_t CSelection::addAll(const DisplaySettings& display) {
    return addMatching(
        Scope::Floor, [&display](const CHardware& device) { return display.typeVisible(device.Type); });
}

std::size_t CSelection::addInBox(const MapBox& box, const DisplaySettings& display) {
    return addMatching(
        Scope::Floor,
        [&display, area = box.normalised()](const CHardware& device) {
            return area.holds(device.Position) && display.typeVisible(device.Type);
        });
}

std::size_t CSelection::addOfType(std::int32_t type, std::initializer_list<std::int32_t> states,
                                  const DisplaySettings& display) {
    if (!display.typeVisible(type))
        return 0;
    return addMatching(Scope::Floor, [type, states](const CHardware& device) {
        return device.Type == type &&
               (states.size() == 0 || std::ranges::find(states, device.State) != states.end());
    });
}

// ---- what the document tells

void CSelection::note(const CHardware& record) {
    const bool selected = record.Selected != 0;
    setMember(floor_, record, selected && inScope(record, Scope::Floor));
    setMember(misc_, record, selected && inScope(record, Scope::DiscoveredMisc));
}

void CSelection::setMember(Members& members, const CHardware& record, bool member) {
    const bool changed = member ? members.insert(&record).second : members.erase(&record) > 0;
    if (changed)
        lastOnFloor_.reset();
}

void CSelection::recordRemoved(const CHardware& record) {
    setMember(floor_, record, false);
    setMember(misc_, record, false);
}

void CSelection::documentReplaced() {
    floor_.clear();
    misc_.clear();
    lastOnFloor_.reset();
    for (std::size_t i = 0; i < document_.size(); ++i)
        note(document_.at(i));
}

} // namespace mirovane
