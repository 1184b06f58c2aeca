#pragma once

#include "pattern/Pattern.h"
#include "pattern/PatternTranslator.h"

#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>

struct pcre2_real_code_8;
struct pcre2_real_match_context_8;
struct pcre2_real_match_data_8;

namespace mirovane {

/// The search engine under a CompiledPattern: PCRE2 on bytes, held to a budget of steps for each text.
///
/// The engine's own limit counts the steps of one starting point and forgets them at the next, so that alone
/// it bounds little. Here a first, quick search grants each starting point a share that is small but plenty
/// for ordinary patterns. Where that was not enough, and for long texts, the search is repeated by a copy of
/// the pattern that calls back at each of its items: the calls are counted over the whole text and notice a
/// stop.
class CPatternEngine {
public:
    /// Throws bad_regexpr for what only the engine can refuse (a look-behind of no fixed length, a pattern
    /// that grows too large).
    CPatternEngine(TranslatedPattern translated, PatternUse use);

    PatternOutcome search(std::string_view text, const std::stop_token& stop);

private:
    struct Release {
        void operator()(pcre2_real_code_8* object) const;
        void operator()(pcre2_real_match_context_8* object) const;
        void operator()(pcre2_real_match_data_8* object) const;
    };
    using Code = std::unique_ptr<pcre2_real_code_8, Release>;

    struct Program {
        Code code;
        bool machineCode = false;
    };

    Program compile(std::uint32_t options) const;
    int run(const Program& program, std::string_view text, std::uint32_t stepsPerStart);
    PatternOutcome searchWatched(std::string_view text, const std::stop_token& stop);

    TranslatedPattern translated_;
    PatternUse use_;
    Program quick_;
    Program watched_; ///< made when first needed
    std::unique_ptr<pcre2_real_match_context_8, Release> limits_;
    std::unique_ptr<pcre2_real_match_data_8, Release> data_;
};

} // namespace mirovane
