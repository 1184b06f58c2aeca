#include "livestat/schedule/DevicePicker.h"

#include <algorithm>

namespace mirovane {

CDevicePicker::CDevicePicker(CMirovaneDoc& document, const Clock& clock)
    : document_(document), clock_(clock) {
    document_.addObserver(*this);
}

CDevicePicker::~CDevicePicker() {
    document_.removeObserver(*this);
}

void CDevicePicker::setIncludeMisc(bool include) {
    stale_ = stale_ || include != includeMisc_;
    includeMisc_ = include;
}

void CDevicePicker::startLoops() {
    start_ = behindCursor();
    beforeFirstLoop_ = true;
    threshold_ = highestPriority;
    loops_ = 0;
    lastLoop_ = std::chrono::seconds{0};
    loopBegan_ = clock_.monotonic();
}

std::size_t CDevicePicker::behindCursor() const {
    const std::size_t next = cursor_ ? *cursor_ + 1 : 0;
    return next < document_.size() ? next : 0;
}

const CHardware* CDevicePicker::pickByPriority() {
    refresh();
    const std::size_t size = document_.size();
    if (start_ >= size) // records went; the loop then ends at the front of the list
        start_ = 0;
    std::size_t left = size;
    while (left > 0) {
        const std::size_t from = behindCursor();
        const std::size_t toStart = (start_ + size - from) % size;
        const std::size_t stretch = std::min(toStart, left);
        const CPlaceSet& qualified = atLeast_[static_cast<std::size_t>(threshold_)];
        if (const CHardware* device = findFrom(qualified, from, stretch))
            return device;
        left -= stretch;
        if (left == 0)
            break;
        --left;
        if (const CHardware* device = arriveAtStart(start_))
            return device;
    }
    return nullptr;
}

const CHardware* CDevicePicker::arriveAtStart(std::size_t start) {
    if (beforeFirstLoop_)
        beforeFirstLoop_ = false;
    else
        completeLoop();
    return findFrom(atLeast_[static_cast<std::size_t>(threshold_)], start, 1);
}

void CDevicePicker::completeLoop() {
    const auto now = clock_.monotonic();
    ++loops_;
    lastLoop_ = std::chrono::duration_cast<std::chrono::seconds>(now - loopBegan_);
    loopBegan_ = now;
    threshold_ = threshold_ > lowestPriority ? threshold_ - 1 : highestPriority;
}

const CHardware* CDevicePicker::pickMarked() {
    refresh();
    return findFrom(marked_, behindCursor(), document_.size());
}

/// Moves the cursor over `count` places from `from` on, to the first member of the set or, when there is
/// none, to the last of them.
const CHardware* CDevicePicker::findFrom(const CPlaceSet& set, std::size_t from, std::size_t count) {
    if (count == 0)
        return nullptr;
    const std::size_t size = document_.size();
    const std::size_t beforeEnd = std::min(count, size - from);
    auto place = set.find(from, from + beforeEnd);
    if (!place)
        place = set.find(0, count - beforeEnd);
    cursor_ = place.value_or((from + count - 1) % size);
    return place ? &document_.at(*place) : nullptr;
}

void CDevicePicker::hold(std::int32_t recID) {
    held_.insert(recID);
    refile(recID);
}

void CDevicePicker::release(std::int32_t recID) {
    if (held_.erase(recID) > 0)
        refile(recID);
}

void CDevicePicker::refresh() {
    if (!stale_ && revision_ == document_.orderRevision())
        return;
    const std::size_t size = document_.size();
    for (CPlaceSet& set : atLeast_)
        set.clear(size);
    marked_.clear(size);
    for (std::size_t place = 0; place < size; ++place)
        file(place, document_.at(place));
    revision_ = document_.orderRevision();
    stale_ = false;
}

bool CDevicePicker::pollable(const CHardware& record) const {
    return record.isDevice() && (includeMisc_ || record.onFloor()) &&
           floorCode(record.Type) != DeviceType::LocationMarker;
}

/// A damaged file may hold a record ID twice; jobs find their device by it, so only the first one is checked.
void CDevicePicker::file(std::size_t place, const CHardware& record) {
    const bool free =
        pollable(record) && !held_.contains(record.RecID) && document_.indexOfDevice(record.RecID) == place;
    for (int threshold = lowestPriority; threshold <= highestPriority; ++threshold)
        atLeast_[static_cast<std::size_t>(threshold)].set(place, free && record.Priority >= threshold);
    marked_.set(place, free && record.LSNowMark != 0);
}

void CDevicePicker::refile(std::int32_t recID) {
    if (stale_ || revision_ != document_.orderRevision())
        return; // everything is filed anew at the next pick
    if (const auto place = document_.indexOfDevice(recID))
        file(*place, document_.at(*place));
}

void CDevicePicker::recordAdded(const CHardware& record) {
    if (stale_ || revision_ + 1 != document_.orderRevision())
        return;
    revision_ = document_.orderRevision();
    file(document_.size() - 1, record);
}

void CDevicePicker::recordChanged(const CHardware& before, const CHardware& after) {
    if (before.Type == after.Type && before.Priority == after.Priority && before.RecID == after.RecID &&
        before.LSNowMark == after.LSNowMark)
        return;
    if (stale_ || revision_ + 1 != document_.orderRevision() || before.RecID != after.RecID) {
        stale_ = true;
        return;
    }
    revision_ = document_.orderRevision();
    refile(after.RecID);
}

void CDevicePicker::recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
    if (held_.erase(oldRecID) > 0)
        held_.insert(newRecID);
    stale_ = true;
}

void CDevicePicker::flagsChanged(const CHardware& record) {
    refile(record.RecID);
}

} // namespace mirovane
