#include "model/records/Text.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace mirovane {

namespace {

constexpr char32_t replacement = 0xFFFD;

/// Bytes 0x80 to 0x9F of Windows-1252; the five that it leaves undefined stand for the control codes of that
/// number.
constexpr std::array<char16_t, 32> windows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

std::uint8_t byteAt(std::string_view bytes, std::size_t at) {
    return static_cast<std::uint8_t>(bytes[at]);
}

void appendUtf8(std::string& out, char32_t code) {
    const auto put = [&out](char32_t byte) {
        out.push_back(static_cast<char>(byte));
    };
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

/// Length of the well-formed sequence that starts at `at`; 0 when there is none.
std::size_t sequenceLength(std::string_view bytes, std::size_t at) {
    const std::uint8_t lead = byteAt(bytes, at);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || length > bytes.size() - at)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byteAt(bytes, at + i) & 0xC0) != 0x80)
            return 0;
    const std::uint8_t second = byteAt(bytes, at + 1);
    const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool outside = (lead == 0xED && second >= 0xA0) || (lead == 0xF4 && second >= 0x90);
    return overlong || outside ? 0 : length;
}

char16_t unitAt(std::string_view units, std::size_t at) {
    return static_cast<char16_t>(byteAt(units, at) | byteAt(units, at + 1) << 8);
}

char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

} // namespace

bool isValidUtf8(std::string_view bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t length = sequenceLength(bytes, at);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}

std::string displayText(std::string_view bytes) {
    if (isValidUtf8(bytes))
        return std::string(bytes);
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        const auto byte = static_cast<std::uint8_t>(c);
        const bool mapped = byte >= 0x80 && byte < 0xA0;
        appendUtf8(text, mapped ? windows1252[byte - 0x80U] : static_cast<char32_t>(byte));
    }
    return text;
}

std::string bytesFromUtf16Le(std::string_view units) {
    std::string text;
    text.reserve(units.size());
    for (std::size_t at = 0; at + 1 < units.size(); at += 2) {
        const char32_t unit = unitAt(units, at);
        const bool high = unit >= 0xD800 && unit < 0xDC00;
        const char32_t next = high && at + 3 < units.size() ? unitAt(units, at + 2) : U'\0';
        if (next >= 0xDC00 && next < 0xE000) {
            appendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (next - 0xDC00));
            at += 2;
        } else {
            appendUtf8(text, unit >= 0xD800 && unit < 0xE000 ? replacement : unit);
        }
    }
    return text;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (lowerAscii(a[i]) != lowerAscii(b[i]))
            return false;
    return true;
}

} // namespace mirovane
