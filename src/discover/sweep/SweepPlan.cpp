#include "discover/sweep/SweepPlan.h"

#include <algorithm>

namespace mirovane {

namespace {

std::uint64_t length(const AddressRange& range) {
    return std::uint64_t{range.to} - range.from + 1;
}

std::vector<AddressRange> disjoint(std::vector<AddressRange> ranges) {
    std::sort(ranges.begin(), ranges.end(),
              [](const AddressRange& a, const AddressRange& b) { return a.from < b.from; });
    std::vector<AddressRange> merged;
    for (AddressRange range : ranges) {
        range.from = std::max<std::uint32_t>(range.from, 1);
        if (range.from > range.to)
            continue;
        if (!merged.empty() && range.from <= std::uint64_t{merged.back().to} + 1)
            merged.back().to = std::max(merged.back().to, range.to);
        else
            merged.push_back(range);
    }
    return merged;
}

bool within(const std::vector<AddressRange>& ranges, std::uint32_t address) {
    const auto behind =
        std::upper_bound(ranges.begin(), ranges.end(), address,
                         [](std::uint32_t value, const AddressRange& range) { return value < range.from; });
    return behind != ranges.begin() && address <= std::prev(behind)->to;
}

} // namespace

CSweepPlan::CSweepPlan(std::vector<AddressRange> ranges, std::vector<std::uint32_t> known)
    : ranges_(disjoint(std::move(ranges))), known_(std::move(known)) {
    std::sort(known_.begin(), known_.end());
    known_.erase(std::unique(known_.begin(), known_.end()), known_.end());
    std::erase_if(known_, [this](std::uint32_t address) { return !within(ranges_, address); });
    for (const AddressRange& range : ranges_)
        addresses_ += length(range);
}

std::optional<std::uint32_t> CSweepCursor::next() {
    while (range_ < plan_.ranges().size()) {
        const AddressRange& range = plan_.ranges()[range_];
        if (offset_ == length(range)) {
            ++range_;
            offset_ = 0;
            continue;
        }
        const auto address = static_cast<std::uint32_t>(range.from + offset_++);
        if (!isKnown(address))
            return address;
    }
    return std::nullopt;
}

/// Both lists rise, so neither is ever searched.
bool CSweepCursor::isKnown(std::uint32_t address) {
    const std::vector<std::uint32_t>& known = plan_.known();
    while (known_ < known.size() && known[known_] < address)
        ++known_;
    return known_ < known.size() && known[known_] == address;
}

} // namespace mirovane
