#pragma once

#include "livestat/Step.h"
#include "livestat/StepProbes.h"
#include "probes/Pattern.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// One step while its action runs: what it reads, what it asks, where its outcome goes. Lives on the worker's
/// stack.
class ActionRun {
public:
    ActionRun(const StepInput& step, const StepProbes& asked, std::string expanded, StepOutcome& into,
              std::string* answer)
        : input(step), probes(asked), argument(std::move(expanded)), outcome(into), answer_(answer) {}

    const StepInput& input;
    const StepProbes& probes;
    const std::string argument; ///< expanded
    StepOutcome& outcome;

    bool stopRequested() const { return input.stop.stop_requested(); }

    /// Adds a line to what the user of a dry run reads. Live Stat has nobody who reads; `line` is then not
    /// even made.
    template <typename Line>
    void say(Line&& line) {
        if (!answer_)
            return;
        if (!answer_->empty())
            *answer_ += '\n';
        *answer_ += line();
    }

private:
    std::string* answer_;
};

/// Splits an expanded argument at blanks; double quotes group and are not part of a token; empty tokens are
/// skipped.
std::vector<std::string> argumentTokens(std::string_view argument);

/// No match: the field is emptied.
void failWithNothing(ActionRun& run);

/// The row's "Search for" expanded, ready for searches of lower-cased texts; one that is empty matches every
/// text. Nothing when it can match nothing: its placeholders gave nothing, or it is no pattern, which is then
/// noted in the outcome.
std::optional<CompiledPattern> rowPattern(ActionRun& run, PatternUse use);

// Each leaves `acted` as it finds it (true) but where it decides to change nothing. None throws but for want
// of memory.
void pingHosts(ActionRun& run);
void lookUpAddresses(ActionRun& run);
void lookUpNames(ActionRun& run);
void matchToJack(ActionRun& run);
void setValue(ActionRun& run);
void readRegistry(ActionRun& run);
void getFromAgent(ActionRun& run);
void lookUpUser(ActionRun& run);
void searchInTextFile(ActionRun& run);
void searchForFile(ActionRun& run);

} // namespace mirovane
