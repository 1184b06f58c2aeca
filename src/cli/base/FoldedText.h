#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mirovane {

/// A help text for a terminal of so many columns: long lines break at blanks, and what follows stands under
/// the text it belongs to. Lines that end without a full stop are taken for broken ones and go on.
std::string folded(std::string_view text, std::size_t width);

} // namespace mirovane
