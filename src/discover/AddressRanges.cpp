#include "discover/AddressRanges.h"

#include "model/records/SpecialRecords.h"

namespace mirovane {

namespace {

constexpr int partCount = 4;
constexpr std::uint32_t maxPart = 255;

/// One of the four numbers.
std::optional<std::uint32_t> parsePart(std::string_view digits) {
    if (digits.empty())
        return std::nullopt;
    std::uint32_t value = 0;
    for (const char digit : digits) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
        value = value * 10 + static_cast<std::uint32_t>(digit - '0');
        if (value > maxPart)
            return std::nullopt;
    }
    return value;
}

} // namespace

std::optional<std::uint32_t> parseRangeAddress(std::string_view text) {
    std::uint32_t address = 0;
    for (int i = 0; i < partCount; ++i) {
        const bool last = i == partCount - 1;
        const std::size_t end = last ? text.size() : text.find('.');
        if (end == std::string_view::npos)
            return std::nullopt;
        const auto part = parsePart(text.substr(0, end));
        if (!part)
            return std::nullopt;
        address = address << 8 | *part;
        text.remove_prefix(last ? end : end + 1);
    }
    return address;
}

std::string formatRangeAddress(std::uint32_t address) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        text += std::to_string(address >> shift & maxPart);
        if (shift > 0)
            text += '.';
    }
    return text;
}

std::uint32_t nextAddress(std::uint32_t address) {
    return address + 1;
}

std::optional<AddressRange> makeRange(std::string_view from, std::string_view to) {
    const auto first = parseRangeAddress(from);
    const auto last = parseRangeAddress(to);
    if (!first || !last || *first > *last)
        return std::nullopt;
    return AddressRange{*first, *last};
}

std::optional<AddressRange> rangeOf(const CHardware& record) {
    const RangeText range = rangeFromRecord(record);
    return makeRange(range.From, range.To);
}

std::vector<const CHardware*> discoverRanges(const CMirovaneDoc& document) {
    std::vector<const CHardware*> ranges;
    for (std::size_t i = 0; i < document.size(); ++i)
        if (document.at(i).Type == SpecialType::DiscoverRangeRecord)
            ranges.push_back(&document.at(i));
    return ranges;
}

const CHardware* firstInvalidRange(const CMirovaneDoc& document) {
    for (const CHardware* range : discoverRanges(document))
        if (!rangeOf(*range))
            return range;
    return nullptr;
}

} // namespace mirovane
