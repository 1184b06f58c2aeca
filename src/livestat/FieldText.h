#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace mirovane {

/// Field number `position`, counted from 1, of a line whose fields stand between delimiters. The two
/// characters \t in the delimiter stand for a tab. Double quotes protect the delimiters between them and stay
/// in the field's text; one that is never closed protects the rest of the line. Empty when the line has fewer
/// fields. Pure.
std::string delimitedField(std::string_view line, std::string_view delimiter, std::int32_t position);

} // namespace mirovane
