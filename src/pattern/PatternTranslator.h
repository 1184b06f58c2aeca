#pragma once

#include <string>
#include <string_view>

namespace mirovane {

/// A pattern in the language of the search engine.
struct TranslatedPattern {
    std::string text;

    /// False for patterns that the engine's machine code (10.42) gets wrong and its interpreter right: it
    /// finds no match of "(?>\w+?)b" in "xab".
    bool machineCode = true;
};

/// Reads a pattern of the criteria language and says the same in the language of the search engine. That
/// engine knows far more (options inside the pattern, names, verbs, callouts, ...) and gives some texts
/// another meaning; therefore no part of the pattern is handed on as it is: literal bytes and sets go
/// over as codes, and only the constructs that the criteria language has are spelled out. Throws bad_regexpr.
TranslatedPattern translatePattern(std::string_view pattern);

} // namespace mirovane
