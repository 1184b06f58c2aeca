#include "livestat/steps/ActionRun.h"

#include "model/records/Placeholders.h"

namespace mirovane {

void CActionRun::failWithNothing() {
    outcome.result.clear();
    outcome.failed = true;
}

void CActionRun::couldNotAsk(AskedThrough through, const std::string& about, const std::string& why) {
    outcome.acted = false;
    outcome.notAsked = NotAsked{through, about, why};
    outcome.fileStamp.reset();
    outcome.stampsModified.reset();
}

bool CActionRun::endedBy(const ProbeAnswer& answer, const std::string& about) {
    if (stopRequested() || answer.kind == ProbeAnswer::Kind::Stopped)
        outcome.cancelled = true;
    else if (answer.couldNotBeAsked())
        couldNotAsk(answer.through, about, answer.why);
    else
        return false;
    return true;
}

std::optional<std::string> CActionRun::searchText() {
    const std::string& searchFor = input.criteria.SearchFor;
    const std::string pattern = Expand(searchFor, input.device, ExpandMode::Pattern);
    if (!searchFor.empty() && (pattern.empty() || pattern == "^")) {
        say([] { return "the pattern's placeholders gave nothing: it matches nothing"; });
        return std::nullopt;
    }
    return lowerCasedPattern(pattern);
}

void CActionRun::refuse(const bad_regexpr& refused) {
    outcome.brokenPattern = refused.what();
    say([&] { return std::string("the pattern cannot be used: ") + refused.what(); });
}

std::vector<std::string> argumentTokens(std::string_view argument) {
    std::vector<std::string> tokens;
    std::string token;
    bool quoted = false;
    const auto finish = [&] {
        if (!token.empty())
            tokens.push_back(std::move(token));
        token.clear();
    };
    for (const char c : argument)
        if (c == '"')
            quoted = !quoted;
        else if (c == ' ' && !quoted)
            finish();
        else
            token += c;
    finish();
    return tokens;
}

} // namespace mirovane
