#include "probes/names/HostAddress.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstring>

namespace mirovane {

namespace {

constexpr std::size_t longestName = 253;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// Takes one part of a dotted address off the front of `text`.
std::optional<std::uint8_t> takePart(std::string_view& text) {
    unsigned value = 0;
    std::size_t digits = 0;
    while (digits < text.size() && digits < 3 && isDigit(text[digits])) {
        value = value * 10 + static_cast<unsigned>(text[digits] - '0');
        ++digits;
    }
    if (digits == 0 || value > 255)
        return std::nullopt;
    text.remove_prefix(digits);
    return static_cast<std::uint8_t>(value);
}

} // namespace

std::string_view trimmedHostText(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::optional<std::uint32_t> parseDottedAddress(std::string_view text) {
    text = trimmedHostText(text);
    std::array<std::uint8_t, 4> parts{};
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            if (text.empty() || text.front() != '.')
                return std::nullopt;
            text.remove_prefix(1);
        }
        const auto part = takePart(text);
        if (!part)
            return std::nullopt;
        parts[i] = *part;
    }
    if (!text.empty())
        return std::nullopt;
    std::uint32_t address = 0;
    std::memcpy(&address, parts.data(), sizeof address);
    return address;
}

std::string formatAddress(std::uint32_t address) {
    std::array<char, INET_ADDRSTRLEN> text{};
    const in_addr in{address};
    inet_ntop(AF_INET, &in, text.data(), text.size());
    return text.data();
}

HostTextKind classifyHostText(std::string_view text) {
    if (parseDottedAddress(text))
        return HostTextKind::DottedAddress;
    text = trimmedHostText(text);
    // The name system allows one closing dot beyond its limit.
    if (text.empty() || text.size() > longestName + (text.back() == '.' ? 1 : 0))
        return HostTextKind::Invalid;
    const auto unusable = [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte <= 0x20 || byte == 0x7f;
    };
    if (std::any_of(text.begin(), text.end(), unusable))
        return HostTextKind::Invalid;
    in_addr numeric{};
    const bool olderNumericForm = inet_aton(std::string(text).c_str(), &numeric) != 0;
    const bool brokenAddress = text.find_first_not_of("0123456789.") == std::string_view::npos;
    return olderNumericForm || brokenAddress ? HostTextKind::Invalid : HostTextKind::Name;
}

} // namespace mirovane
