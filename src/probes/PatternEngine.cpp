#define PCRE2_CODE_UNIT_WIDTH 8

#include "probes/PatternEngine.h"

#include <algorithm>
#include <new>
#include <pcre2.h>

namespace mirovane {

namespace {

// A step costs some 20 ns: both passes together stay under 6 ms for a line of ordinary length.
constexpr std::uint32_t firstPassSteps = 100'000;
constexpr std::uint32_t leastStepsPerStart = 64;
constexpr std::uint64_t secondPassSteps = 150'000;
constexpr std::uint64_t secondPassStepsPerByte = 64;

// Allowances of the second pass grow by this factor. A starting point is charged every one that it was given.
constexpr std::uint64_t firstAllowance = 16;
constexpr std::uint64_t allowanceGrowth = 4;
constexpr std::uint64_t mostSteps = 100'000'000;

// Texts above this length are searched piece by piece. A step may run over the whole text (a+ does), so that
// a long one costs time that counting steps does not see.
constexpr std::size_t longText = 8192;
constexpr std::chrono::seconds longTextPatience{2};
constexpr std::chrono::milliseconds pieceGoal{5};

constexpr std::uint32_t heapLimitKib = 16 * 1024;

bool decided(int result) {
    return result >= 0 || result == PCRE2_ERROR_NOMATCH;
}

PatternOutcome outcomeOf(int result) {
    if (result == PCRE2_ERROR_NOMEMORY) {
        throw std::bad_alloc();
    }
    if (result == PCRE2_ERROR_NOMATCH) {
        return PatternOutcome::NoMatch;
    }
    return result >= 0 ? PatternOutcome::Match : PatternOutcome::LimitReached;
}

template <typename T>
T* allocated(T* object) {
    if (object == nullptr) {
        throw std::bad_alloc();
    }
    return object;
}

// The engine takes no null pointer, which is what an empty view may hold.
PCRE2_SPTR unitsOf(std::string_view text) {
    return reinterpret_cast<PCRE2_SPTR>(text.data() == nullptr ? "" : text.data());
}

pcre2_code* compile(const std::string& translated) {
    const std::unique_ptr<pcre2_compile_context, void (*)(pcre2_compile_context*)> context(
        allocated(pcre2_compile_context_create(nullptr)), pcre2_compile_context_free);
    // Only $ asks for it: it also matches before a line feed that ends the text. The library's default is a
    // choice of whoever built it.
    pcre2_set_newline(context.get(), PCRE2_NEWLINE_LF);
    constexpr std::uint32_t options =
        PCRE2_DOTALL | PCRE2_USE_OFFSET_LIMIT | PCRE2_NEVER_UTF | PCRE2_NEVER_UCP | PCRE2_NEVER_BACKSLASH_C;
    int error = 0;
    std::size_t offset = 0;
    pcre2_code* code =
        pcre2_compile(unitsOf(translated), translated.size(), options, &error, &offset, context.get());
    if (code == nullptr && error == PCRE2_ERROR_HEAP_FAILED) {
        throw std::bad_alloc();
    }
    if (code == nullptr) {
        throw bad_regexpr(PatternFault::IllFormed, 0);
    }
    return code;
}

} // namespace

void PatternEngine::Free::operator()(pcre2_real_code_8* object) const {
    pcre2_code_free(object);
}
void PatternEngine::Free::operator()(pcre2_real_match_context_8* object) const {
    pcre2_match_context_free(object);
}
void PatternEngine::Free::operator()(pcre2_real_match_data_8* object) const {
    pcre2_match_data_free(object);
}

PatternEngine::PatternEngine(const TranslatedPattern& translated, PatternUse use)
    : code_(compile(translated.text)),
      limits_(allocated(pcre2_match_context_create(nullptr))),
      data_(allocated(pcre2_match_data_create(1, nullptr))) {
    pcre2_set_heap_limit(limits_.get(), heapLimitKib);
    // Where the system forbids making machine code, the pattern is interpreted: slower, otherwise the same.
    machineCode_ = use == PatternUse::ManyTexts && translated.machineCode &&
                   pcre2_jit_compile(code_.get(), PCRE2_JIT_COMPLETE) == 0;
}

PatternOutcome PatternEngine::search(std::string_view text, const std::stop_token& stop) {
    if (text.size() > longText) {
        return searchLong(text, stop);
    }
    const auto starts = static_cast<std::uint32_t>(text.size() + 1);
    const int result = tryFrom(text, 0, PCRE2_UNSET, std::max(firstPassSteps / starts, leastStepsPerStart));
    if (decided(result)) {
        return outcomeOf(result);
    }
    std::uint64_t budget = secondPassSteps + secondPassStepsPerByte * text.size();
    return stepwise(text, 0, text.size() + 1, budget, stop);
}

int PatternEngine::tryFrom(std::string_view text, std::size_t from, std::size_t starts,
                           std::uint32_t stepsPerStart) {
    if (stepsPerStart != allowed_) {
        pcre2_set_match_limit(limits_.get(), stepsPerStart);
        allowed_ = stepsPerStart;
    }
    const std::size_t last = starts == PCRE2_UNSET ? PCRE2_UNSET : from + starts - 1;
    pcre2_set_offset_limit(limits_.get(), last);
    const auto search = machineCode_ ? pcre2_jit_match : pcre2_match;
    return search(code_.get(), unitsOf(text), text.size(), from, 0, data_.get(), limits_.get());
}

int PatternEngine::tryAt(std::string_view text, std::size_t start, std::uint32_t steps) {
    pcre2_set_match_limit(limits_.get(), steps);
    pcre2_set_offset_limit(limits_.get(), PCRE2_UNSET);
    allowed_ = steps;
    // Interpreted, because machine code counts its steps more coarsely and needs a stack for deep patterns.
    return pcre2_match(code_.get(), unitsOf(text), text.size(), start, PCRE2_ANCHORED | PCRE2_NO_JIT,
                       data_.get(), limits_.get());
}

PatternOutcome PatternEngine::stepwise(std::string_view text, std::size_t from, std::size_t starts,
                                       std::uint64_t& budget, const std::stop_token& stop) {
    for (std::size_t start = from; start - from < starts && start <= text.size(); ++start) {
        if (stop.stop_requested()) {
            return PatternOutcome::Stopped;
        }
        int result = PCRE2_ERROR_MATCHLIMIT;
        for (auto allowance = firstAllowance; result == PCRE2_ERROR_MATCHLIMIT && budget > 0;
             allowance *= allowanceGrowth) {
            const std::uint64_t granted = std::min({allowance, budget, mostSteps});
            result = tryAt(text, start, static_cast<std::uint32_t>(granted));
            budget -= granted;
        }
        if (result != PCRE2_ERROR_NOMATCH) {
            return outcomeOf(result);
        }
    }
    return PatternOutcome::NoMatch;
}

// Pieces grow while they are quick, so that an ordinary pattern pays for a few calls, and shrink when they
// are slow, so that a stop is noticed. The size of the pieces never changes the answer.
PatternOutcome PatternEngine::searchLong(std::string_view text, const std::stop_token& stop) {
    using Clock = std::chrono::steady_clock;
    std::uint64_t budget = secondPassSteps + secondPassStepsPerByte * text.size();
    const auto begin = Clock::now();
    std::size_t from = 0;
    std::size_t starts = 64;
    while (from <= text.size()) {
        const auto before = Clock::now();
        if (stop.stop_requested()) {
            return PatternOutcome::Stopped;
        }
        if (before - begin > longTextPatience) {
            return PatternOutcome::LimitReached;
        }
        const int result = tryFrom(text, from, starts, leastStepsPerStart);
        const PatternOutcome outcome =
            decided(result) ? outcomeOf(result) : stepwise(text, from, starts, budget, stop);
        if (outcome != PatternOutcome::NoMatch) {
            return outcome;
        }
        from += starts;
        const auto spent = Clock::now() - before;
        if (spent < pieceGoal / 4) {
            starts *= 4;
        } else if (spent > pieceGoal) {
            starts = std::max<std::size_t>(starts / 4, 1);
        }
    }
    return PatternOutcome::NoMatch;
}

} // namespace mirovane
