#define PCRE2_CODE_UNIT_WIDTH 8

#include "pattern/PatternEngine.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <pcre2.h>
#include <utility>

namespace mirovane {

namespace {

using Clock = std::chrono::steady_clock;

// A step costs some 10 ns, a watched one some 20: together about 6 ms for a line of ordinary length.
constexpr std::uint32_t quickSteps = 100'000;
constexpr std::uint32_t leastStepsPerStart = 64;
constexpr std::uint64_t watchedSteps = 250'000;
constexpr std::uint64_t watchedStepsPerByte = 64;

// A single step may run over the whole text (a+ does). In a text longer than this that takes long enough to
// be watched from the beginning, and counting steps does not bound the time any more.
constexpr std::size_t longText = 4096;
constexpr std::chrono::seconds patience{2};
constexpr std::uint64_t stepsBetweenGlances = 64;

constexpr std::uint32_t heapLimitKib = 16 * 1024;
constexpr std::uint32_t unlimitedSteps = 0xffffffff;

template <typename T>
T* allocated(T* object) {
    if (object == nullptr)
        throw std::bad_alloc();
    return object;
}

// The engine takes no null pointer, which is what an empty view may hold.
PCRE2_SPTR unitsOf(std::string_view text) {
    return reinterpret_cast<PCRE2_SPTR>(text.data() == nullptr ? "" : text.data());
}

bool decided(int result) {
    return result >= 0 || result == PCRE2_ERROR_NOMATCH;
}

PatternOutcome outcomeOf(int result) {
    if (result == PCRE2_ERROR_NOMEMORY)
        throw std::bad_alloc();
    if (result == PCRE2_ERROR_NOMATCH)
        return PatternOutcome::NoMatch;
    return result >= 0 ? PatternOutcome::Match : PatternOutcome::LimitReached;
}

/// What one watched search may spend, and who may end it.
struct Watch {
    std::uint64_t stepsLeft = 0;
    const std::stop_token& stop;
    Clock::time_point deadline;

    bool mayGoOn() {
        --stepsLeft;
        const bool late = stepsLeft % stepsBetweenGlances == 0 && Clock::now() > deadline;
        return stepsLeft > 0 && !late && !stop.stop_requested();
    }
};

int onStep(pcre2_callout_block*, void* watch) {
    return static_cast<Watch*>(watch)->mayGoOn() ? 0 : PCRE2_ERROR_CALLOUT;
}

} // namespace

void CPatternEngine::Release::operator()(pcre2_real_code_8* object) const {
    pcre2_code_free(object);
}
void CPatternEngine::Release::operator()(pcre2_real_match_context_8* object) const {
    pcre2_match_context_free(object);
}
void CPatternEngine::Release::operator()(pcre2_real_match_data_8* object) const {
    pcre2_match_data_free(object);
}

CPatternEngine::CPatternEngine(TranslatedPattern translated, PatternUse use)
    : translated_(std::move(translated)),
      use_(use),
      quick_(compile(0)),
      limits_(allocated(pcre2_match_context_create(nullptr))),
      data_(allocated(pcre2_match_data_create(1, nullptr))) {
    pcre2_set_heap_limit(limits_.get(), heapLimitKib);
}

CPatternEngine::Program CPatternEngine::compile(std::uint32_t options) const {
    constexpr std::uint32_t always =
        PCRE2_DOTALL | PCRE2_NEVER_UTF | PCRE2_NEVER_UCP | PCRE2_NEVER_BACKSLASH_C;
    const std::unique_ptr<pcre2_compile_context, void (*)(pcre2_compile_context*)> context(
        allocated(pcre2_compile_context_create(nullptr)), pcre2_compile_context_free);
    // Only $ asks for it, which also matches before a line feed that ends the text. The library's own notion
    // of a line end is a choice of whoever built it.
    pcre2_set_newline(context.get(), PCRE2_NEWLINE_LF);
    int error = 0;
    std::size_t offset = 0;
    Program program;
    program.code.reset(pcre2_compile(unitsOf(translated_.text), translated_.text.size(), always | options,
                                     &error, &offset, context.get()));
    if (!program.code && error == PCRE2_ERROR_HEAP_FAILED)
        throw std::bad_alloc();
    if (!program.code)
        throw bad_regexpr(PatternFault::IllFormed, bad_regexpr::npos);
    // Where the system forbids making machine code, the pattern is interpreted: slower, otherwise the same.
    program.machineCode = use_ == PatternUse::ManyTexts && translated_.machineCode &&
                          pcre2_jit_compile(program.code.get(), PCRE2_JIT_COMPLETE) == 0;
    return program;
}

PatternOutcome CPatternEngine::search(std::string_view text, const std::stop_token& stop) {
    if (text.size() <= longText) {
        const auto starts = static_cast<std::uint32_t>(text.size() + 1);
        const int result = run(quick_, text, std::max(quickSteps / starts, leastStepsPerStart));
        if (decided(result))
            return outcomeOf(result);
    }
    return searchWatched(text, stop);
}

int CPatternEngine::run(const Program& program, std::string_view text, std::uint32_t stepsPerStart) {
    pcre2_set_match_limit(limits_.get(), stepsPerStart);
    const auto search = program.machineCode ? pcre2_jit_match : pcre2_match;
    return search(program.code.get(), unitsOf(text), text.size(), 0, 0, data_.get(), limits_.get());
}

PatternOutcome CPatternEngine::searchWatched(std::string_view text, const std::stop_token& stop) {
    if (stop.stop_requested())
        return PatternOutcome::Stopped;
    if (!watched_.code)
        watched_ = compile(PCRE2_AUTO_CALLOUT);
    Watch watch{watchedSteps + watchedStepsPerByte * text.size(), stop, Clock::now() + patience};
    pcre2_set_callout(limits_.get(), onStep, &watch);
    int result = run(watched_, text, unlimitedSteps);
    if (result == PCRE2_ERROR_JIT_STACKLIMIT) {
        // The interpreter keeps its places on the heap, of which there is more.
        result = pcre2_match(watched_.code.get(), unitsOf(text), text.size(), 0, PCRE2_NO_JIT, data_.get(),
                             limits_.get());
    }
    pcre2_set_callout(limits_.get(), nullptr, nullptr);
    if (result == PCRE2_ERROR_CALLOUT && stop.stop_requested())
        return PatternOutcome::Stopped;
    return outcomeOf(result);
}

} // namespace mirovane
