#include "pattern/Pattern.h"

#include "pattern/PatternEngine.h"
#include "pattern/PatternTranslator.h"

#include <array>

namespace mirovane {

const char* patternMessage(PatternFault fault) {
    static constexpr std::array messages{
        "mismatched parenthesis",
        "expecting end of character set",
        "invalid range specified in character set",
        "quantifier not expected",
        "Can't do {n, m} with n > m",
        "sub-expression cannot be quantified",
        "look-ahead assertion cannot be quantified",
        "recursion sub-expression cannot be quantified",
        "reference to nonexistent group",
        "bad extension sequence",
        "Expecting end of comment",
        "Too many alternates in conditional subexpression",
        "incomplete escape sequence \\c",
        "quotemeta turned off, but was never turned on",
        "ill-formed regular expression",
    };
    static_assert(messages.size() == static_cast<std::size_t>(PatternFault::IllFormed) + 1);
    return messages[static_cast<std::size_t>(fault)];
}

CompiledPattern::CompiledPattern(std::unique_ptr<CPatternEngine> engine) : engine_(std::move(engine)) {}
CompiledPattern::CompiledPattern(CompiledPattern&&) noexcept = default;
CompiledPattern& CompiledPattern::operator=(CompiledPattern&&) noexcept = default;
CompiledPattern::~CompiledPattern() = default;

CompiledPattern CompilePattern(std::string_view pattern, PatternUse use) {
    return CompiledPattern(std::make_unique<CPatternEngine>(translatePattern(pattern), use));
}

PatternOutcome SearchPattern(const CompiledPattern& pattern, std::string_view text,
                             const std::stop_token& stop) {
    return pattern.engine_->search(text, stop);
}

PatternOutcome MatchPattern(std::string_view text, std::string_view pattern, const std::stop_token& stop) {
    return SearchPattern(CompilePattern(pattern, PatternUse::OneText), lowerCased(text), stop);
}

namespace {

// Without branches, so that the compiler turns the loop below into vector instructions.
char lowerCasedByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    const bool upper = static_cast<unsigned char>(byte - 'A') < 26;
    return static_cast<char>(byte | (upper ? 0x20 : 0));
}

} // namespace

void lowerCaseInto(const char* from, std::size_t size, char* to) {
    for (std::size_t i = 0; i < size; ++i)
        to[i] = lowerCasedByte(from[i]);
}

std::string lowerCased(std::string_view text) {
    std::string lowered(text);
    lowerCaseInto(lowered.data(), lowered.size(), lowered.data());
    return lowered;
}

namespace {

/// Its capital is part of the language: "(?r)" would be refused.
constexpr std::string_view recursion = "(?R)";

} // namespace

std::string lowerCasedPattern(std::string_view pattern) {
    std::string lowered(pattern);
    for (std::size_t i = 0; i < lowered.size(); ++i)
        if (lowered[i] == '\\')
            ++i;
        else if (std::string_view(lowered).substr(i).starts_with(recursion))
            i += recursion.size() - 1;
        else
            lowered[i] = lowerCasedByte(lowered[i]);
    return lowered;
}

} // namespace mirovane
