#include "model/find/TextCase.h"

#include "model/records/Text.h"

#include <algorithm>
#include <clocale>
#include <cstddef>
#include <cwctype>

namespace mirovane {

namespace {

bool isAscii(std::string_view text) {
    return std::ranges::all_of(
        text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char upperAscii(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

/// Not the user's locale: what is found must not depend on the language of the desktop. Without it, only
/// ASCII letters have two cases.
wint_t upperLetter(wint_t letter) {
    static const locale_t locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    return locale == nullptr ? letter : towupper_l(letter, locale);
}

std::size_t sequenceLength(unsigned char first) {
    if (first < 0x80)
        return 1;
    return first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
}

wint_t decoded(std::string_view sequence) {
    static constexpr unsigned char firstBits[] = {0x7F, 0x1F, 0x0F, 0x07};
    wint_t letter = static_cast<unsigned char>(sequence[0]) & firstBits[sequence.size() - 1];
    for (const char next : sequence.substr(1))
        letter = (letter << 6) | (static_cast<unsigned char>(next) & 0x3FU);
    return letter;
}

void appendEncoded(std::string& text, wint_t letter) {
    const auto tail = [&](unsigned shift) {
        text += static_cast<char>(0x80U | ((letter >> shift) & 0x3FU));
    };
    if (letter < 0x80) {
        text += static_cast<char>(letter);
    } else if (letter < 0x800) {
        text += static_cast<char>(0xC0U | (letter >> 6));
        tail(0);
    } else if (letter < 0x10000) {
        text += static_cast<char>(0xE0U | (letter >> 12));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0U | (letter >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace

std::string upperCaseText(std::string_view bytes) {
    if (isAscii(bytes)) {
        std::string text(bytes);
        std::ranges::transform(text, text.begin(), upperAscii);
        return text;
    }
    const std::string shown = displayText(bytes); // always valid UTF-8
    std::string text;
    text.reserve(shown.size());
    for (std::size_t at = 0; at < shown.size();) {
        const std::size_t length = sequenceLength(static_cast<unsigned char>(shown[at]));
        appendEncoded(text, upperLetter(decoded(std::string_view(shown).substr(at, length))));
        at += length;
    }
    return text;
}

} // namespace mirovane
