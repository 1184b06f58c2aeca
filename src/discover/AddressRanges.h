#pragma once

#include "model/Document.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

// The address ranges of a site, one DiscoverRangeRecord each, both ends included. Addresses are numbers in
// host byte order, so that they compare as addresses do.

/// Shown by whatever lets a user edit ranges.
constexpr std::string_view invalidRangeText = "Invalid IP Address/Range or entry cannot be blank";

/// "10.0.0.5": exactly four decimal numbers of 0 to 255 with dots between them; no blanks, no signs. Stricter
/// than what a ping accepts as its target, because a range that is misread sweeps somebody else's network.
std::optional<std::uint32_t> parseRangeAddress(std::string_view text);

std::string formatRangeAddress(std::uint32_t address);

/// The address after this one. After 255.255.255.255 comes 0.0.0.0: a walk ends at the range's To.
std::uint32_t nextAddress(std::uint32_t address);

struct AddressRange {
    std::uint32_t from = 0;
    std::uint32_t to = 0;

    bool operator==(const AddressRange&) const = default;
};

/// Nothing when an end is not an address or From is above To.
std::optional<AddressRange> makeRange(std::string_view from, std::string_view to);
std::optional<AddressRange> rangeOf(const CHardware& record);

/// The DiscoverRangeRecords in list order, valid or not. Walks the list once.
std::vector<const CHardware*> discoverRanges(const CMirovaneDoc& document);

/// Null: all are valid.
const CHardware* firstInvalidRange(const CMirovaneDoc& document);

} // namespace mirovane
