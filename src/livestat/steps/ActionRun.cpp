#include "livestat/steps/ActionRun.h"

#include "model/records/Placeholders.h"

namespace mirovane {

void CActionRun::failWithNothing() {
    outcome.result.clear();
    outcome.failed = true;
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
