#pragma once

#include <string>
#include <string_view>

namespace mirovane {

/// Why a criteria row's search text cannot be searched for; empty when it can. `pattern` is the text as the
/// row stores it: its placeholders count as text that a device's field puts there. Any thread.
std::string patternProblem(std::string_view pattern);

} // namespace mirovane
