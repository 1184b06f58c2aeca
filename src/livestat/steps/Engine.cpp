#include "livestat/steps/Engine.h"

#include "livestat/steps/FileActions.h"
#include "livestat/steps/HostActions.h"
#include "livestat/steps/ValueActions.h"
#include "model/records/Placeholders.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

/// Every station reads the datafile whole, and a field is a line for people. Without a limit the value
/// "$mvC $mvC" in the comment's row doubles the comment each time, until no memory is left.
constexpr std::size_t longestResult = 60'000;

/// Half a character would have the whole field shown as if it were not UTF-8.
void cutToLongest(std::string& result) {
    std::size_t end = longestResult;
    while (end > longestResult - 3 && (static_cast<unsigned char>(result[end]) & 0xC0) == 0x80)
        --end;
    result.resize(end);
}

bool decidesState(std::string_view command) {
    return command == Action::Ping || command == Action::DoNothing || command == Action::MatchToJack;
}

std::int32_t stateIfMatch(const CriteriaRow& criteria) {
    return criteria.Condition == "On" ? DeviceState::On : DeviceState::Off;
}

struct NamedAction {
    std::string_view command;
    void (*perform)(CActionRun& run);
};

constexpr std::array actions{
    NamedAction{Action::Ping, pingHosts},
    NamedAction{Action::NsLookup, lookUpAddresses},
    NamedAction{Action::NsLookupReverse, lookUpNames},
    NamedAction{Action::MatchToJack, matchToJack},
    NamedAction{Action::SetValue, setValue},
    NamedAction{Action::Registry, readRegistry},
    NamedAction{Action::SnmpGet, getFromAgent},
    NamedAction{Action::WhosLogon, lookUpUser},
    NamedAction{Action::SearchInTextFile, searchInTextFile},
    NamedAction{Action::SearchForFile, searchForFile},
};

/// Null for "Do Nothing", and for what somebody wrote into the datafile by hand.
const NamedAction* findAction(std::string_view command) {
    const auto found = std::find_if(actions.begin(), actions.end(), [command](const NamedAction& action) {
        return action.command == command;
    });
    return found == actions.end() ? nullptr : &*found;
}

} // namespace

bool isAction(std::string_view command) {
    return findAction(command) != nullptr;
}

bool rowCounts(const CHardware& device, int row, const CriteriaRow& criteria) {
    if (!findAction(criteria.Command))
        return false;
    return row == 0 || !(device.*criteriaTargetField(row)).ends_with(keptByUser);
}

bool conditionAllows(const CHardware& device, int row, const CriteriaRow& criteria) {
    if (row == 0 || decidesState(criteria.Command) || criteria.Condition == "On/Off")
        return true;
    return device.State == stateIfMatch(criteria);
}

namespace {

StepOutcome begunOutcome(const StepInput& input) {
    StepOutcome outcome;
    outcome.stateIfMatch = stateIfMatch(input.criteria);
    outcome.stateIfNoMatch = outcome.stateIfMatch == DeviceState::On ? DeviceState::Off : DeviceState::On;
    // An action that has no text of its own (a ping in a field rule) leaves the field as it is.
    if (input.row > 0)
        outcome.result = input.device.*criteriaTargetField(input.row);
    return outcome;
}

StepOutcome perform(const NamedAction& action, const StepInput& input, const StepProbes& probes,
                    std::string* answer) {
    StepOutcome outcome = begunOutcome(input);
    outcome.acted = true;
    CActionRun run(input, probes, Expand(input.criteria.Argument, input.device, ExpandMode::Argument),
                   outcome, answer);
    action.perform(run);
    return outcome;
}

/// The jack's state was looked up before the step; asking again would bring the same answer.
bool turnsOff(const StepInput& input, const StepOutcome& outcome) {
    return input.row == 0 && input.device.State == DeviceState::On && outcome.acted && !outcome.cancelled &&
           input.criteria.Command != Action::MatchToJack &&
           (outcome.failed ? outcome.stateIfNoMatch : outcome.stateIfMatch) == DeviceState::Off;
}

} // namespace

StepOutcome runStep(const StepInput& input, const StepProbes& probes, std::string* answer) {
    StepOutcome outcome = begunOutcome(input);
    const NamedAction* action = findAction(input.criteria.Command);
    if (input.stop.stop_requested()) {
        outcome.cancelled = true;
    } else if (action && conditionAllows(input.device, input.row, input.criteria)) {
        outcome = perform(*action, input, probes, answer);
        for (int again = 0; again < input.confirmOff && turnsOff(input, outcome); ++again)
            outcome = perform(*action, input, probes, answer);
        // A field that keeps its text keeps it whole.
        if (outcome.result.size() > longestResult &&
            (input.row == 0 || outcome.result != input.device.*criteriaTargetField(input.row)))
            cutToLongest(outcome.result);
    }
    return outcome;
}

} // namespace mirovane
