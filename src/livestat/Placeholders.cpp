#include "livestat/Placeholders.h"

#include <array>
#include <optional>

namespace mirovane {

namespace {

constexpr std::string_view introducer = "$MV";
constexpr std::size_t placeholderLength = 4;

struct FieldPlaceholder {
    char selector;
    std::string CHardware::*field;
};

constexpr std::array<FieldPlaceholder, 11> fieldPlaceholders = {{
    {'N', &CHardware::Name},
    {'I', &CHardware::IPAddress},
    {'U', &CHardware::Username},
    {'J', &CHardware::ToJack},
    {'M', &CHardware::MACAddress},
    {'C', &CHardware::Comment},
    {'/', &CHardware::SlashText},
    {'\\', &CHardware::BackslashText},
    {'-', &CHardware::HorzText},
    {'|', &CHardware::VertText},
    {'T', &CHardware::ToDo},
}};

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

/// The selector of the placeholder that stands at `at`; 0 when none does.
char selectorAt(std::string_view text, std::size_t at) {
    if (text.size() - at < placeholderLength)
        return 0;
    for (std::size_t i = 0; i < introducer.size(); ++i) {
        if (upper(text[at + i]) != introducer[i])
            return 0;
    }
    return upper(text[at + introducer.size()]);
}

/// Who's Logon leaves "[jsmith]" when nobody is logged on; the bare name is what commands and searches want.
std::string_view fieldValue(const CHardware& device, const FieldPlaceholder& placeholder) {
    std::string_view value = device.*placeholder.field;
    if (placeholder.selector == 'U' && value.starts_with('[')) {
        value.remove_prefix(1);
        if (!value.empty())
            value.remove_suffix(1);
    }
    return value;
}

std::string escaped(std::string_view value) {
    constexpr std::string_view special = "^$.*+?|()[]{}\\";
    std::string result;
    result.reserve(value.size());
    for (const char c : value) {
        if (special.find(c) != std::string_view::npos)
            result += '\\';
        result += c;
    }
    return result;
}

std::optional<std::string> replacement(char selector, const CHardware& device, ExpandMode mode,
                                       const std::function<std::string()>& insertedText) {
    if (selector == 0 || (selector == 'M' && mode == ExpandMode::Command))
        return std::nullopt;
    if (selector == 'W' && mode == ExpandMode::Command && insertedText)
        return insertedText();
    for (const FieldPlaceholder& placeholder : fieldPlaceholders) {
        if (placeholder.selector == selector) {
            const std::string_view value = fieldValue(device, placeholder);
            return mode == ExpandMode::Pattern ? escaped(value) : std::string(value);
        }
    }
    return std::nullopt;
}

} // namespace

std::string Expand(std::string_view text, const CHardware& device, ExpandMode mode,
                   const std::function<std::string()>& insertedText) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (const auto value = replacement(selectorAt(text, i), device, mode, insertedText)) {
            result += *value;
            i += placeholderLength;
        }
        // The character behind a placeholder is copied untested: this is what keeps "$mvN$mvI" half expanded.
        if (i < text.size())
            result += text[i];
    }
    return result;
}

} // namespace mirovane
