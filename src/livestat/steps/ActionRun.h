#pragma once

#include "livestat/steps/Step.h"
#include "pattern/Pattern.h"
#include "probes/StepProbes.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// One step while its action runs: what the action reads, what it asks, where its outcome goes. Lives on the
/// worker's stack. An action finds `acted` true and clears it only where it decides to change nothing. It
/// throws only when memory runs out.
class CActionRun {
public:
    CActionRun(const StepInput& step, const StepProbes& asked, std::string expanded, StepOutcome& into,
               std::string* answer)
        : input(step), probes(asked), argument(std::move(expanded)), outcome(into), answer_(answer) {}

    const StepInput& input;
    const StepProbes& probes;
    const std::string argument; ///< expanded
    StepOutcome& outcome;

    bool stopRequested() const { return input.stop.stop_requested(); }

    /// Adds a line to what the user of a dry run reads. Nobody reads what Live Stat does, so `line` is then
    /// not even made.
    template <typename Line>
    void say(Line&& line) {
        if (!answer_)
            return;
        if (!answer_->empty())
            *answer_ += '\n';
        *answer_ += line();
    }

    /// No match: the field is emptied.
    void failWithNothing();

    /// The device, its stamps included, stays as it is.
    void couldNotAsk(AskedThrough through, const std::string& about, const std::string& why);

    /// The same, or the end of a stopped step; false for an answer that counts. `about` is what was asked.
    bool endedBy(const ProbeAnswer& answer, const std::string& about);

    /// The row's "Search for", expanded and lower-cased for the search of a lower-cased text. An empty one
    /// matches every text. Nothing when its placeholders gave nothing, because then it must not match.
    std::optional<std::string> searchText();

    /// Notes in the outcome that the row's "Search for" cannot be compiled.
    void refuse(const bad_regexpr& refused);

private:
    std::string* answer_;
};

/// Splits an expanded argument at blanks; double quotes group and are not part of a token; empty tokens are
/// skipped.
std::vector<std::string> argumentTokens(std::string_view argument);

} // namespace mirovane
