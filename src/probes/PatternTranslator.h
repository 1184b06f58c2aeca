#pragma once

#include <string>
#include <string_view>

namespace mirovane {

/// Reads a pattern of the criteria language and says the same in the language of the search engine. That
/// engine knows far more (options inside the pattern, names, verbs, callouts, ...) and gives some texts
/// another meaning; therefore nothing of the pattern is handed on as it stands: literal bytes and sets go
/// over as codes, and only the constructs that the criteria language has are spelled out. Throws bad_regexpr.
std::string translatePattern(std::string_view pattern);

} // namespace mirovane
