#pragma once

#include <string>
#include <string_view>

namespace mirovane {

/// A field's bytes as text in upper case, for comparisons that take "müller" and "MÜLLER" for the same,
/// whatever code page the field was written in. Letter by letter, so that no letter becomes two.
std::string upperCaseText(std::string_view bytes);

} // namespace mirovane
