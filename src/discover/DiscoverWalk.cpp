#include "discover/DiscoverWalk.h"

#include "discover/AddressRanges.h"
#include "feature/FeatureOwner.h"

#include <limits>

namespace mirovane {

namespace {

/// Others may come in a datafile that another program wrote. They lead nowhere.
std::vector<const CHardware*> validRanges(const CMirovaneDoc& document) {
    auto ranges = discoverRanges(document);
    std::erase_if(ranges, [](const CHardware* range) { return !rangeOf(*range); });
    return ranges;
}

/// The last address there is has no address behind it: the walk then leaves its range instead of beginning at
/// 0.0.0.0.
std::string nextText(std::uint32_t address) {
    return address == std::numeric_limits<std::uint32_t>::max() ? "256.0.0.0"
                                                                : formatRangeAddress(nextAddress(address));
}

} // namespace

CDiscoverWalk::Place CDiscoverWalk::place() const {
    return FeatureOwner::values(document_, Feature::LiveDiscover).walk;
}

void CDiscoverWalk::goTo(const Place& place) {
    left_ = place;
    if (const CHardware* owner = FeatureOwner::record(document_, Feature::LiveDiscover)) {
        document_.editInBackground(
            *owner,
            [&place](CHardware& held) {
                OwnerValues values = ownerFromRecord(held);
                values.walk = place;
                toRecord(values, held);
            });
    }
}

bool CDiscoverWalk::findAddress() {
    const auto ranges = validRanges(document_);
    if (ranges.empty())
        return false;
    const Place now = place();
    const auto current = indexOf(now, ranges);
    const auto next = parseRangeAddress(now.next);
    if (current && next && *next <= rangeOf(*ranges[*current])->to)
        index_ = *current;
    else
        beginRange(ranges, current && *current + 1 < ranges.size() ? *current + 1 : 0);
    return true;
}

void CDiscoverWalk::beginRange(const std::vector<const CHardware*>& ranges, std::size_t index) {
    const RangeText range = rangeFromRecord(*ranges[index]);
    index_ = index;
    goTo({range.From, range.To, range.From});
}

/// The index of last time counts first: were a range that is listed twice always found at its first place,
/// the ranges behind its second one would never come up.
std::optional<std::size_t> CDiscoverWalk::indexOf(const Place& place,
                                                  const std::vector<const CHardware*>& ranges) const {
    const auto isAt = [&](std::size_t index) {
        return rangeFromRecord(*ranges[index]) == RangeText{place.from, place.to};
    };
    if (index_ < ranges.size() && isAt(index_))
        return index_;
    for (std::size_t index = 0; index < ranges.size(); ++index)
        if (isAt(index))
            return index;
    return std::nullopt;
}

std::optional<std::uint32_t> CDiscoverWalk::address() const {
    return parseRangeAddress(place().next);
}

void CDiscoverWalk::moveOn() {
    if (const auto current = address()) {
        const Place now = place();
        goTo({now.from, now.to, nextText(*current)});
    }
}

void CDiscoverWalk::restore() {
    if (left_)
        goTo(Place(*left_));
}

void CDiscoverWalk::reset() {
    left_.reset();
    index_ = 0;
}

} // namespace mirovane
