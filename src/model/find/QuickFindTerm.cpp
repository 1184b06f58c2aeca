#include "model/find/QuickFindTerm.h"

#include "model/find/TextCase.h"
#include "model/records/Hardware.h"

#include <algorithm>
#include <cstddef>

namespace mirovane {

namespace {

constexpr std::size_t macDigitCount = 12;
constexpr std::size_t bytesOfMac = 6;
constexpr std::string_view separators = ":-.";

/// Shorter ones fit too much that is not an address: "A-1" is a jack.
constexpr std::size_t leastDigits = 3;

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

using Groups = std::vector<std::string_view>;

/// The groups of digits between equal separators; none when there is anything else.
Groups digitGroups(std::string_view text) {
    Groups groups;
    const auto first = text.find_first_of(separators);
    const char separator = first == std::string_view::npos ? ':' : text[first];
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        groups.push_back(text.substr(start, end - start));
        if (!std::ranges::all_of(groups.back(), isHexDigit))
            return {};
        start = end + 1;
    }
    return groups;
}

std::string joined(const Groups& groups, std::size_t padTo) {
    std::string digits;
    for (const std::string_view group : groups) {
        if (group.size() < padTo)
            digits.append(padTo - group.size(), '0');
        digits += group;
    }
    return digits;
}

/// Groups of two, four or six digits; the first and the last may be cut short, as a part of an address is.
/// With points there are four, or else 12.34 would be a part of an address.
bool groupsOfAddress(std::string_view text, const Groups& groups) {
    const bool points = text.find('.') != std::string_view::npos;
    std::size_t longest = 0;
    for (const std::string_view group : groups)
        longest = std::max(longest, group.size());
    if (points ? longest != 4 : longest > bytesOfMac)
        return false;
    return std::all_of(groups.begin() + 1, groups.end() - 1,
                       [longest](std::string_view group) { return group.size() == longest; });
}

std::string typedMacDigits(const std::string& text) {
    if (text.find_first_of(separators) == std::string::npos)
        return {}; // as it was typed, it is found among the digits already
    if (std::string whole = macDigitsOf(text); !whole.empty())
        return whole;
    const Groups groups = digitGroups(text);
    if (groups.size() < 2 || !groupsOfAddress(text, groups))
        return {};
    std::string digits = joined(groups, 0);
    return digits.size() >= leastDigits && digits.size() <= macDigitCount ? digits : std::string();
}

} // namespace

std::string macDigitsOf(std::string_view field) {
    if (field.ends_with(keptByUser))
        field.remove_suffix(keptByUser.size());
    while (!field.empty() && field.back() == ' ')
        field.remove_suffix(1);
    const std::string text = upperCaseText(field);
    const Groups groups = digitGroups(text);
    std::string digits = joined(groups, groups.size() == bytesOfMac ? 2 : 0);
    return digits.size() == macDigitCount ? digits : std::string();
}

std::vector<QuickFindTerm> quickFindTerms(std::string_view typed) {
    std::vector<QuickFindTerm> terms;
    const std::string text = upperCaseText(typed);
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of(" \t\r\n", start), text.size());
        if (end > start) {
            std::string word = text.substr(start, end - start);
            std::string digits = typedMacDigits(word);
            terms.push_back({std::move(word), std::move(digits)});
        }
        start = end + 1;
    }
    std::ranges::stable_sort(terms,
                             [](const auto& a, const auto& b) { return a.text.size() > b.text.size(); });
    return terms;
}

} // namespace mirovane
