#include "livestat/steps/Outcome.h"

#include "livestat/steps/Engine.h"
#include "model/records/Dates.h"
#include "model/records/Placeholders.h"

namespace mirovane {

namespace {

bool applyState(CHardware& device, std::int32_t state, TimeStamp now) {
    if (device.State == state)
        return false;
    device.State = state;
    // A change of state alone must not make the text files be searched again.
    if (device.StampsModified == device.Modified)
        device.StampsModified = now;
    device.Modified = now;
    return true;
}

bool applyField(CHardware& device, int row, const std::string& result, TimeStamp now) {
    std::string& field = device.*criteriaTargetField(row);
    if (field == result)
        return false;
    field = result;
    device.Modified = now;
    return true;
}

bool applyDrawFlag(CHardware& device, int row, std::int32_t ifMatch, bool failed, TimeStamp now) {
    std::int32_t CHardware::*flag = criteriaDrawFlag(row);
    if (!flag || (device.*flag == ifMatch) != failed)
        return false;
    device.*flag = failed ? (ifMatch == 0 ? 1 : 0) : ifMatch;
    device.Modified = now;
    if (flag == &CHardware::ReminderOn && device.ReminderOn == 1)
        device.ReminderDate = localDateTime(now);
    return true;
}

bool applyStamps(CHardware& device, int row, const StepOutcome& outcome) {
    const auto before = device.RuleStamps;
    bool moved = false;
    if (outcome.stampsModified && *outcome.stampsModified != device.StampsModified) {
        device.StampsModified = *outcome.stampsModified;
        device.RuleStamps.fill(0);
        moved = true;
    }
    if (outcome.fileStamp)
        device.RuleStamps[static_cast<std::size_t>(row)] = *outcome.fileStamp;
    return moved || device.RuleStamps != before;
}

bool applyResult(CHardware& device, const StepInput& input, const StepOutcome& outcome, TimeStamp now) {
    if (!outcome.acted)
        return false;
    if (input.row == 0)
        return applyState(device, outcome.failed ? outcome.stateIfNoMatch : outcome.stateIfMatch, now);
    const bool fieldChanged = applyField(device, input.row, outcome.result, now);
    const bool flagChanged = applyDrawFlag(device, input.row, input.criteria.IfMatch, outcome.failed, now);
    return fieldChanged || flagChanged;
}

} // namespace

Applied applyOutcome(CHardware& device, const StepInput& input, const StepOutcome& outcome, TimeStamp now) {
    if (outcome.cancelled)
        return Applied::Nothing;
    const bool stamped = applyStamps(device, input.row, outcome);
    if (applyResult(device, input, outcome, now))
        return Applied::Change;
    return stamped ? Applied::Stamps : Applied::Nothing;
}

bool stillHolds(const StepInput& input, const CHardware& device, const CriteriaRow& criteria) {
    const CHardware& then = input.device;
    if (floorCode(device.Type) != floorCode(then.Type) || !(criteria == input.criteria))
        return false;
    if (input.row == 0 && device.State != then.State)
        return false;
    if (input.row > 0) {
        const auto field = criteriaTargetField(input.row);
        const auto flag = criteriaDrawFlag(input.row);
        if (device.*field != then.*field || (flag && device.*flag != then.*flag))
            return false;
        if (conditionAllows(device, input.row, criteria) != conditionAllows(then, input.row, criteria))
            return false;
    }
    if (criteria.Command == Action::MatchToJack)
        return device.ToJack == then.ToJack;
    if (criteria.Command == Action::WhosLogon)
        return device.Name == then.Name && device.IPAddress == then.IPAddress;
    return Expand(criteria.Argument, device, ExpandMode::Argument) ==
               Expand(criteria.Argument, then, ExpandMode::Argument) &&
           Expand(criteria.SearchFor, device, ExpandMode::Pattern) ==
               Expand(criteria.SearchFor, then, ExpandMode::Pattern);
}

} // namespace mirovane
