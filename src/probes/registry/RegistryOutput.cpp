#include "probes/registry/RegistryOutput.h"

#include "probes/registry/Registry.h"

#include <charconv>
#include <cstdint>
#include <limits>

namespace mirovane {

namespace {

/// Walks the text from its beginning; a step that does not fit takes nothing.
class CCursor {
public:
    explicit CCursor(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }
    bool sees(std::string_view text) const { return rest_.starts_with(text); }

    bool take(std::string_view text) {
        if (!sees(text))
            return false;
        rest_.remove_prefix(text.size());
        return true;
    }

    /// What comes before the next `end`; `end` itself is taken too.
    std::optional<std::string_view> takeUntil(std::string_view end) {
        const std::size_t at = rest_.find(end);
        if (at == std::string_view::npos)
            return std::nullopt;
        const std::string_view before = rest_.substr(0, at);
        rest_.remove_prefix(at + end.size());
        return before;
    }

    std::string_view rest() const { return rest_; }

private:
    std::string_view rest_;
};

std::string storedText(std::string_view text) {
    return std::string(text) + '\0';
}

template <typename Number>
std::optional<Number> numberOf(std::string_view digits, int base) {
    Number number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return number;
}

std::string littleEndian(std::uint32_t number) {
    std::string bytes;
    for (int byte = 0; byte < 4; ++byte, number >>= 8)
        bytes += static_cast<char>(number & 0xff);
    return bytes;
}

/// A text may hold quotes and line ends of its own; only the very last ones are the printer's.
std::optional<std::string> printedText(std::string_view rest) {
    CCursor cursor(rest);
    constexpr std::string_view close = "\"\n";
    if (!cursor.take("Value      = \"") || !cursor.rest().ends_with(close))
        return std::nullopt;
    return storedText(cursor.rest().substr(0, cursor.rest().size() - close.size()));
}

std::string numberedLine(std::size_t index) {
    std::string number = std::to_string(index);
    if (number.size() < 3)
        number.insert(0, 3 - number.size(), '0');
    return "Value[" + number + "] = \"";
}

std::optional<std::string> printedTexts(std::string_view rest) {
    std::string data;
    for (std::size_t index = 0; !rest.empty(); ++index) {
        const std::string begin = numberedLine(index);
        if (!rest.starts_with(begin))
            return std::nullopt;
        rest.remove_prefix(begin.size());
        const std::string_view close = "\"\n";
        const std::size_t next = rest.find(std::string(close) + numberedLine(index + 1));
        if (next == std::string_view::npos && !rest.ends_with(close))
            return std::nullopt;
        const std::size_t size = next == std::string_view::npos ? rest.size() - close.size() : next;
        data += storedText(rest.substr(0, size));
        rest.remove_prefix(size + close.size());
    }
    return data + '\0';
}

std::optional<std::string> printedNumber(std::string_view rest) {
    CCursor cursor(rest);
    if (!cursor.take("Value      = "))
        return std::nullopt;
    const auto digits = cursor.takeUntil("\n");
    const auto number = digits ? numberOf<std::uint32_t>(*digits, 10) : std::nullopt;
    return number && cursor.atEnd() ? std::optional(littleEndian(*number)) : std::nullopt;
}

/// "text" with \\ and \" for a backslash and a quote; the opening quote is taken already.
std::optional<std::string> takeQuoted(CCursor& cursor) {
    std::string text;
    for (;;) {
        const std::size_t special = cursor.rest().find_first_of("\\\"");
        if (special == std::string_view::npos)
            return std::nullopt;
        text += cursor.rest().substr(0, special);
        cursor.take(cursor.rest().substr(0, special));
        if (cursor.take("\""))
            return text;
        cursor.take("\\");
        if (!cursor.sees("\\") && !cursor.sees("\""))
            return std::nullopt;
        text += cursor.rest().front();
        cursor.take(cursor.rest().substr(0, 1));
    }
}

/// Two digits a byte, parted by commas; a backslash at a line's end goes on in the next.
std::optional<std::string> takeHexBytes(CCursor& cursor) {
    std::string bytes;
    if (cursor.take("\n"))
        return bytes;
    for (;;) {
        if (cursor.rest().size() < 3)
            return std::nullopt;
        const auto byte = numberOf<std::uint8_t>(cursor.rest().substr(0, 2), 16);
        if (!byte)
            return std::nullopt;
        bytes += static_cast<char>(*byte);
        cursor.take(cursor.rest().substr(0, 2));
        if (cursor.take("\n"))
            return bytes;
        if (!cursor.take(","))
            return std::nullopt;
        if (cursor.take("\\\n") && !cursor.take("  "))
            return std::nullopt;
    }
}

std::optional<std::string> takeExportedData(CCursor& cursor) {
    if (cursor.take("\"")) {
        auto text = takeQuoted(cursor);
        return text && cursor.take("\n") ? std::optional(storedText(*text)) : std::nullopt;
    }
    if (cursor.take("dword:")) {
        const auto digits = cursor.takeUntil("\n");
        const auto number = digits ? numberOf<std::uint32_t>(*digits, 16) : std::nullopt;
        return number ? std::optional(littleEndian(*number)) : std::nullopt;
    }
    if (cursor.take("hex:"))
        return takeHexBytes(cursor);
    if (!cursor.take("hex("))
        return std::nullopt;
    const auto type = cursor.takeUntil("):");
    return type && numberOf<std::uint32_t>(*type, 16) ? takeHexBytes(cursor) : std::nullopt;
}

bool takeHeading(CCursor& cursor) {
    return cursor.take("Windows Registry Editor Version 5.00\n\n[") && cursor.takeUntil("]\n").has_value();
}

} // namespace

std::optional<PrintedRegistryValue> parsePrintedValue(std::string_view output) {
    CCursor cursor(output);
    if (!cursor.take("Type       = REG_"))
        return std::nullopt;
    const auto type = cursor.takeUntil("\n");
    if (!type)
        return std::nullopt;
    PrintedRegistryValue value{"REG_" + std::string(*type), std::nullopt};
    if (value.type == "REG_SZ" || value.type == "REG_EXPAND_SZ")
        value.data = printedText(cursor.rest());
    else if (value.type == "REG_MULTI_SZ")
        value.data = printedTexts(cursor.rest());
    else if (value.type == "REG_DWORD")
        value.data = printedNumber(cursor.rest());
    return value;
}

std::optional<std::vector<std::string>> parseSubKeys(std::string_view output) {
    std::vector<std::string> names;
    CCursor cursor(output);
    while (cursor.take("Keyname   = ")) {
        const auto name = cursor.takeUntil("\nModtime   = ");
        if (!name || name->empty() || name->find_first_of("\\\n") != name->npos || !cursor.takeUntil("\n\n"))
            return std::nullopt;
        names.emplace_back(*name);
    }
    if (!cursor.atEnd() && !cursor.sees("Valuename  = "))
        return std::nullopt;
    return names;
}

std::optional<std::string> parseExportedValue(std::string_view output, const std::string& valueName) {
    CCursor cursor(output);
    if (!takeHeading(cursor))
        return std::nullopt;
    for (;;) {
        std::optional<std::string> name;
        if (cursor.take("@"))
            name = "";
        else if (cursor.take("\""))
            name = takeQuoted(cursor);
        if (!name || !cursor.take("="))
            return std::nullopt;
        auto data = takeExportedData(cursor);
        if (!data || sameRegistryName(*name, valueName))
            return data;
    }
}

} // namespace mirovane
