#pragma once

#include "livestat/Step.h"
#include "livestat/StepProbes.h"

#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// False for "Do Nothing" and for every text that is no action's name to the letter.
bool isAction(std::string_view command);

/// True when a device goes through this row at all: it holds an action, and the field that it
/// writes is not one that the user keeps for himself (text that ends in ">>").
bool rowCounts(const CHardware& device, int row, const CriteriaRow& criteria);

/// Condition of a field rule against the state that the device has now. Row 0 and the actions that decide a
/// state always run.
bool conditionAllows(const CHardware& device, int row, const CriteriaRow& criteria);

/// Runs one criteria row for one device: values in, values out. Blocks for as long as its probe does; a
/// worker calls it. Never throws but for want of memory; every failure of a probe is an ordinary no-match.
/// `answer`, where given, receives what the probes said, as lines for people.
StepOutcome runStep(const StepInput& input, const StepProbes& probes, std::string* answer = nullptr);

} // namespace mirovane
