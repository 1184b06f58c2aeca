#include "livestat/steps/RowTrial.h"

#include "livestat/steps/Engine.h"
#include "livestat/steps/JackIndex.h"
#include "livestat/steps/Outcome.h"
#include "model/records/FieldNames.h"
#include "model/records/Placeholders.h"

#include <new>

namespace mirovane {

namespace {

/// Live Stat keeps an index for this. For one question that is not worth while.
std::optional<std::int32_t> stateAtJack(const CMirovaneDoc& document, const std::string& jackNumber) {
    for (std::size_t i = 0; i < document.size(); ++i) {
        const CHardware& record = document.at(i);
        if (isPlugged(record) && sameJack(record.ToJack, jackNumber))
            return record.State;
    }
    return std::nullopt;
}

/// Modified follows from the others, and the stamps are Live Stat's memory, not the user's.
bool isShown(const RecordField& field) {
    return field.kind != FieldKind::Stamp && field.kind != FieldKind::RuleStamps;
}

std::vector<RowTrial::Change> changesBetween(const CHardware& before, const CHardware& after) {
    std::vector<RowTrial::Change> changes;
    for (const RecordField& field : recordFields()) {
        const std::string was = fieldValue(before, field);
        const std::string is = fieldValue(after, field);
        if (isShown(field) && was != is)
            changes.push_back({std::string(field.name), was, is});
    }
    return changes;
}

/// Only "On" and "Off" keep a row from running.
std::string whyNotRun(const CHardware& device, const CriteriaRow& criteria) {
    const char* state = device.State == DeviceState::On    ? "On"
                        : device.State == DeviceState::Off ? "Off"
                                                           : "Def";
    return "not run: the row is for devices that are " +
           std::string(criteria.Condition == "On" ? "On" : "Off") + ", and this one is " + state;
}

std::string whyPassedOver(const StepInput& input) {
    const std::string& command = input.criteria.Command;
    if (command.empty() || command == Action::DoNothing)
        return "the row does nothing";
    if (!isAction(command))
        return "\"" + command + "\" is not an action: the row does nothing";
    return "the field ends in >>: it is kept as it is";
}

TimeStamp stampOf(const Clock& clock) {
    return static_cast<TimeStamp>(std::chrono::system_clock::to_time_t(clock.wall()));
}

void carryOut(const StepInput& input, const StepProbes& probes, const Clock& clock, RowTrial& trial) {
    trial.command = input.criteria.Command;
    trial.expandedArgument = Expand(input.criteria.Argument, input.device, ExpandMode::Argument);
    trial.expandedPattern = Expand(input.criteria.SearchFor, input.device, ExpandMode::Pattern);
    trial.conditionAllows = conditionAllows(input.device, input.row, input.criteria);
    trial.passedOver = !rowCounts(input.device, input.row, input.criteria);
    if (trial.passedOver) {
        trial.answer = whyPassedOver(input);
        return;
    }
    if (!trial.conditionAllows) {
        trial.answer = whyNotRun(input.device, input.criteria);
        return;
    }
    StepInput fresh = input;
    fresh.device.RuleStamps.fill(0); // else a text file that has not changed would show nothing
    const StepOutcome outcome = runStep(fresh, probes, &trial.answer);
    trial.couldNotAsk = outcome.notAsked.has_value();
    trial.acted = outcome.acted;
    trial.failed = outcome.failed;
    trial.cancelled = outcome.cancelled;
    CHardware after = input.device;
    applyOutcome(after, input, outcome, stampOf(clock));
    trial.changes = changesBetween(input.device, after);
}

} // namespace

std::string_view outcomeText(const RowTrial& trial) {
    if (trial.cancelled)
        return "stopped";
    if (trial.couldNotAsk)
        return "could not ask";
    if (!trial.acted)
        return "nothing is done";
    return trial.failed ? "no match" : "match";
}

StepInput trialInput(const CMirovaneDoc& document, const CHardware& device, int row, std::stop_token stop) {
    StepInput input;
    input.device = device;
    input.row = row;
    if (const CHardware* record = document.criteria(device.Type, row))
        input.criteria = criteriaFromRecord(*record);
    input.matchedState = stateAtJack(document, device.ToJack);
    input.computerName = document.station().computerName;
    input.stop = std::move(stop);
    return input;
}

RowTrial tryRow(const StepInput& input, const StepProbes& probes, const Clock& clock) {
    RowTrial trial;
    try {
        carryOut(input, probes, clock, trial);
    } catch (const std::bad_alloc&) { // whoever waits for it may have edits that are in no file yet
        trial = {};
        trial.cancelled = true;
        trial.answer = "there is not enough memory for it";
    }
    trial.row = input.row;
    return trial;
}

} // namespace mirovane
