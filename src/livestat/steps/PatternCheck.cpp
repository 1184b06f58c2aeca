#include "livestat/steps/PatternCheck.h"

#include "model/records/Criteria.h"
#include "model/records/Placeholders.h"
#include "pattern/Pattern.h"

namespace mirovane {

namespace {

/// Every field holds something: a quantifier after a placeholder has a text to repeat.
CHardware anyDevice() {
    CHardware device;
    for (int row = 1; row < criteriaRowCount; ++row)
        device.*criteriaTargetField(row) = "x";
    return device;
}

} // namespace

std::string patternProblem(std::string_view pattern) {
    const std::string expanded = lowerCasedPattern(Expand(pattern, anyDevice(), ExpandMode::Pattern));
    try {
        CompilePattern(expanded, PatternUse::OneText);
        return {};
    } catch (const bad_regexpr& refusal) {
        std::string problem = refusal.what();
        const bool sameOffsets = expanded == lowerCasedPattern(pattern);
        if (sameOffsets && refusal.offset() != bad_regexpr::npos)
            problem += " (at character " + std::to_string(refusal.offset() + 1) + ")";
        return problem;
    }
}

} // namespace mirovane
