#pragma once

#include "model/find/QuickFindTerm.h"
#include "model/records/Hardware.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// How well a device fits, the best first.
enum class QuickFindRank : std::uint8_t {
    Exact,      ///< its name, address, user or MAC address is the text
    NameStart,  ///< its name begins with it
    FieldStart, ///< its address, user or MAC address does
    OtherExact, ///< another field is the text: record ID, jack, type
    FieldPart,  ///< the text is in its name, address, user or MAC address
    OtherStart, ///< another field begins with it
    OtherPart,  ///< the text is in another field
    WordsApart, ///< several words, not next to each other
    None,
};

/// A device as the quick find reads it: every field in upper case between line feeds, those first by which
/// people know a device.
struct QuickFindText {
    std::string text;
    std::uint32_t nameEnd = 0;  ///< behind the name and its line feed
    std::uint32_t knownEnd = 0; ///< behind the fields by which people know a device
};

QuickFindText quickFindText(const CHardware& device);

/// How a word fits into such a text, given its first place in it.
QuickFindRank quickFindRank(std::string_view text, std::size_t at, std::string_view word,
                            std::uint32_t nameEnd, std::uint32_t knownEnd);

/// memmem: the fastest search of the C library.
std::size_t findBytes(std::string_view text, std::string_view word, std::size_t from = 0);

} // namespace mirovane
