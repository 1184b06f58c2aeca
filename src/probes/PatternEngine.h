#pragma once

#include "probes/Pattern.h"
#include "probes/PatternTranslator.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

struct pcre2_real_code_8;
struct pcre2_real_match_context_8;
struct pcre2_real_match_data_8;

namespace mirovane {

/// The search engine under a CompiledPattern: PCRE2 on bytes, held to a budget of steps.
///
/// Backtracking engines count steps per starting point of a match and forget them at the next one, so that
/// their own limit bounds nothing for a long line. Here a first pass over the text allows each starting point
/// a share of the budget that is small but plenty for ordinary patterns. Only where that was not enough, the
/// starting points are tried one at a time with growing allowances, each charged to the text's budget.
class PatternEngine {
public:
    /// Throws bad_regexpr for what only the engine can
    /// refuse (a look-behind of no fixed length, a pattern that grows too large).
    PatternEngine(const TranslatedPattern& translated, PatternUse use);

    PatternOutcome search(std::string_view text, const std::stop_token& stop);

private:
    /// One engine call that tries the starting points from `from` on, at most `starts` of them.
    int tryFrom(std::string_view text, std::size_t from, std::size_t starts, std::uint32_t stepsPerStart);
    int tryAt(std::string_view text, std::size_t start, std::uint32_t steps);
    PatternOutcome searchLong(std::string_view text, const std::stop_token& stop);
    /// `budget` is what the second pass may still spend on this text, in steps.
    PatternOutcome stepwise(std::string_view text, std::size_t from, std::size_t starts,
                            std::uint64_t& budget, const std::stop_token& stop);

    struct Free {
        void operator()(pcre2_real_code_8* object) const;
        void operator()(pcre2_real_match_context_8* object) const;
        void operator()(pcre2_real_match_data_8* object) const;
    };

    std::unique_ptr<pcre2_real_code_8, Free> code_;
    std::unique_ptr<pcre2_real_match_context_8, Free> limits_;
    std::unique_ptr<pcre2_real_match_data_8, Free> data_;
    bool machineCode_ = false;
    std::uint32_t allowed_ = 0; ///< match limit that limits_ holds now
};

} // namespace mirovane
