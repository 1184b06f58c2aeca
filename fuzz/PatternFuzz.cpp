// Any bytes as a pattern and a text: the pattern is refused with one of the messages or searched within
// bounds, and the two ways of searching never contradict each other.

#include "pattern/LineSearch.h"
#include "pattern/Pattern.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace mirovane;

namespace {

void search(std::string_view pattern, std::string_view text) {
    const CompiledPattern interpreted = CompilePattern(pattern, PatternUse::OneText);
    const CompiledPattern machineCode = CompilePattern(pattern, PatternUse::ManyTexts);
    const PatternOutcome one = SearchPattern(interpreted, text);
    const PatternOutcome other = SearchPattern(machineCode, text);
    const bool bothDecided = one != PatternOutcome::LimitReached && other != PatternOutcome::LimitReached;
    if (bothDecided && one != other)
        std::abort();
    CLineSearch lines(machineCode);
    const std::size_t middle = text.size() / 2;
    lines.feed(text.substr(0, middle));
    lines.feed(text.substr(middle));
    lines.finish();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The first byte says how much of the rest is the pattern.
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    if (input.empty())
        return 0;
    const std::size_t length = std::min<std::size_t>(data[0], input.size() - 1);
    const std::string_view pattern = input.substr(1, length);
    const std::string_view text = input.substr(1 + length);
    try {
        search(pattern, text);
    } catch (const bad_regexpr&) {
    }
    try {
        MatchPattern(text, lowerCasedPattern(pattern));
    } catch (const bad_regexpr&) {
    }
    return 0;
}
