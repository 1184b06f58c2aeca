#pragma once

#include "livestat/steps/Step.h"
#include "probes/StepProbes.h"

#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// False for "Do Nothing" and for every text that is not exactly an action's name.
bool isAction(std::string_view command);

/// True when the row runs for this device at all: it holds an action, and the field that it writes is not one
/// that the user keeps for himself (its text ends in ">>").
bool rowCounts(const CHardware& device, int row, const CriteriaRow& criteria);

/// Condition of a field rule against the state that the device has now. Row 0 and the actions that decide a
/// state always run.
bool conditionAllows(const CHardware& device, int row, const CriteriaRow& criteria);

/// Runs one criteria row for one device: values in, values out. Blocks for as long as its probe does; a
/// worker calls it. Throws only when memory runs out; every failure of a probe is an ordinary no-match.
/// `answer`, where given, receives what the probes said, as lines for people.
StepOutcome runStep(const StepInput& input, const StepProbes& probes, std::string* answer = nullptr);

} // namespace mirovane
