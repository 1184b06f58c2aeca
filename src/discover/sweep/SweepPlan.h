#pragma once

#include "discover/AddressRanges.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace mirovane {

/// Which addresses a sweep will ask: every address of the ranges once, however they overlap, without those
/// that devices have already. A plain value whose size depends on the number of ranges and devices, not on
/// how many addresses the ranges hold. Addresses are in host byte order.
class CSweepPlan {
public:
    CSweepPlan() = default;

    /// Ranges and known addresses in any order, with any repetitions. 0.0.0.0 is left out: the system takes
    /// it for itself.
    CSweepPlan(std::vector<AddressRange> ranges, std::vector<std::uint32_t> known);

    /// Disjoint and rising.
    const std::vector<AddressRange>& ranges() const { return ranges_; }

    /// Rising; only those that lie in the ranges.
    const std::vector<std::uint32_t>& known() const { return known_; }

    std::uint64_t addresses() const { return addresses_; } ///< all of the ranges
    std::uint64_t toProbe() const { return addresses_ - known_.size(); }

private:
    std::vector<AddressRange> ranges_;
    std::vector<std::uint32_t> known_;
    std::uint64_t addresses_ = 0;
};

/// Walks over the addresses that a plan has to probe, from the lowest to the highest. The plan outlives it.
class CSweepCursor {
public:
    explicit CSweepCursor(const CSweepPlan& plan) : plan_(plan) {}

    /// Nothing behind the last one.
    std::optional<std::uint32_t> next();

private:
    bool isKnown(std::uint32_t address);

    const CSweepPlan& plan_;
    std::size_t range_ = 0;
    std::uint64_t offset_ = 0; ///< within the range
    std::size_t known_ = 0;
};

} // namespace mirovane
