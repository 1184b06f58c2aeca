#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <string_view>

namespace mirovane {

/// Why a pattern was refused. Every fault has its own fixed message, see patternMessage().
enum class PatternFault {
    Parenthesis,
    SetEnd,
    Range,
    Quantifier,
    CountOrder,
    Unrepeatable,
    LookAhead,
    Recursion,
    Group,
    Extension,
    CommentEnd,
    Alternates,
    Control,
    QuoteEnd,
    IllFormed,
};

const char* patternMessage(PatternFault fault);

/// Thrown by CompilePattern. what() is the fixed message alone; `offset` is the byte of the pattern, counted
/// from 0, where the refused construct begins.
class bad_regexpr : public std::runtime_error {
public:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);

    bad_regexpr(PatternFault fault, std::size_t offset)
        : std::runtime_error(patternMessage(fault)), fault_(fault), offset_(offset) {}

    PatternFault fault() const { return fault_; }
    std::size_t offset() const { return offset_; }

private:
    PatternFault fault_;
    std::size_t offset_;
};

/// What the pattern is compiled for. Translating it to machine code takes four times as long as one search of
/// a short text, and pays from some dozens of lines on.
enum class PatternUse { OneText, ManyTexts };

enum class PatternOutcome {
    NoMatch,
    Match,
    LimitReached, ///< undecided: the pattern needs more steps for this text than a worker may spend
    Stopped,      ///< undecided: the stop token asked to end
};

class CPatternEngine;

/// A compiled pattern, for any number of searches. It holds the working memory of its searches: one thread at
/// a time. Different patterns share nothing.
class CompiledPattern {
public:
    explicit CompiledPattern(std::unique_ptr<CPatternEngine> engine);
    CompiledPattern(CompiledPattern&&) noexcept;
    CompiledPattern& operator=(CompiledPattern&&) noexcept;
    ~CompiledPattern();

private:
    friend PatternOutcome SearchPattern(const CompiledPattern& pattern, std::string_view text,
                                        const std::stop_token& stop);

    std::unique_ptr<CPatternEngine> engine_;
};

/// Throws bad_regexpr when the pattern is not one of the language described in docs/manual/patterns.md,
/// std::bad_alloc when memory runs out.
CompiledPattern CompilePattern(std::string_view pattern, PatternUse use = PatternUse::ManyTexts);

/// Whether the pattern matches somewhere in the text, byte by byte as it is. A search takes at most a fixed
/// number of steps for each byte of the text (some 5 ms for a line of ordinary length), whatever the pattern.
/// `stop` is looked at every few milliseconds.
PatternOutcome SearchPattern(const CompiledPattern& pattern, std::string_view text,
                             const std::stop_token& stop = {});

/// Compiles the pattern and searches the text, lower-cased, once: for a single value. The caller lower-cases
/// the pattern with lowerCasedPattern(). Throws what CompilePattern throws.
PatternOutcome MatchPattern(std::string_view text, std::string_view pattern,
                            const std::stop_token& stop = {});

/// ASCII letters only. The 8-bit text of this platform is UTF-8, in which those are the single-byte letters;
/// touching any other byte would tear a character apart.
std::string lowerCased(std::string_view text);

/// Writes the lower-cased `size` bytes at `from` to `to`; the ranges are the same or do not overlap.
void lowerCaseInto(const char* from, std::size_t size, char* to);

/// The pattern lower-cased except for the byte right after each backslash, so that \D, \S, \W keep their
/// meaning. Together with a lower-cased text it makes a search that ignores the case of letters.
std::string lowerCasedPattern(std::string_view pattern);

} // namespace mirovane
