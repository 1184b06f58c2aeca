#include "model/records/Placeholders.h"

#include "model/records/KeptText.h"

#include <algorithm>
#include <array>

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

/// The selector of the placeholder at `at`; 0 when there is none.
char selectorAt(std::string_view text, std::size_t at) {
    if (text.size() - at < placeholderLength)
        return 0;
    for (std::size_t i = 0; i < introducer.size(); ++i)
        if (upper(text[at + i]) != introducer[i])
            return 0;
    return upper(text[at + introducer.size()]);
}

/// Who's Logon leaves "[jsmith]" when nobody is logged on; the bare name is what commands and searches want.
std::string_view fieldValue(const CHardware& device, const FieldPlaceholder& placeholder) {
    std::string_view value = withoutKeptMark(device.*placeholder.field);
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

const FieldPlaceholder* fieldPlaceholder(char selector) {
    const auto* found = std::ranges::find(fieldPlaceholders, selector, &FieldPlaceholder::selector);
    return found == fieldPlaceholders.end() ? nullptr : found;
}

bool known(char selector, ExpandMode mode) {
    if (selector == 0)
        return false;
    if (mode == ExpandMode::Command && selector == 'M')
        return false;
    if (mode == ExpandMode::Command && selector == insertedTextSelector)
        return true;
    return fieldPlaceholder(selector) != nullptr;
}

/// Text that follows text becomes one piece with it.
void addText(std::vector<TemplatePiece>& pieces, std::string_view text, std::size_t at) {
    if (pieces.empty() || pieces.back().selector != 0) {
        pieces.push_back({0, text.substr(at, 1)});
        return;
    }
    const std::size_t size = pieces.back().text.size();
    pieces.back().text = text.substr(at - size, size + 1);
}

} // namespace

std::vector<TemplatePiece> templatePieces(std::string_view text, ExpandMode mode) {
    std::vector<TemplatePiece> pieces;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (const char selector = selectorAt(text, i); known(selector, mode)) {
            pieces.push_back({selector, text.substr(i, placeholderLength)});
            i += placeholderLength;
        }
        // The character behind a placeholder is copied untested: this is what keeps "$mvN$mvI" half expanded.
        if (i < text.size())
            addText(pieces, text, i);
    }
    return pieces;
}

std::string placeholderValue(char selector, const CHardware& device, ExpandMode mode) {
    const FieldPlaceholder* placeholder = fieldPlaceholder(selector);
    if (!placeholder)
        return {};
    const std::string_view value = fieldValue(device, *placeholder);
    return mode == ExpandMode::Pattern ? escaped(value) : std::string(value);
}

std::string Expand(std::string_view text, const CHardware& device, ExpandMode mode,
                   const std::function<std::string()>& insertedText) {
    std::string result;
    result.reserve(text.size());
    for (const TemplatePiece& piece : templatePieces(text, mode))
        if (piece.selector == insertedTextSelector)
            result += insertedText ? insertedText() : std::string(piece.text);
        else if (piece.selector != 0)
            result += placeholderValue(piece.selector, device, mode);
        else
            result += piece.text;
    return result;
}

} // namespace mirovane
