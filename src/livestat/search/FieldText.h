#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace mirovane {

/// Field number `position`, counted from 1, of a line of fields between delimiters. The two
/// characters \t in the delimiter mean a tab. A pair of double quotes protects the delimiters between
/// them and stays in the field's text; one that is never closed protects nothing. Empty when the line has
/// fewer fields. Pure.
std::string delimitedField(std::string_view line, std::string_view delimiter, std::int32_t position);

} // namespace mirovane
