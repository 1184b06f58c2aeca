#pragma once

#include "livestat/steps/Step.h"

namespace mirovane {

enum class Applied {
    Nothing,
    Stamps, ///< which text files were searched: worth keeping, not worth a save of its own
    Change,
};

/// What a finished step does to its device: state, target field, draw flag, reminder, stamps. `now` stamps
/// what changed. A cancelled step does nothing, not even to the stamps. Pure.
Applied applyOutcome(CHardware& device, const StepInput& input, const StepOutcome& outcome, TimeStamp now);

/// True while the answer of a step is still an answer about this device and this row: neither the criteria
/// row nor anything of the device that the step read or is about to write has changed since the step began. A
/// result that no longer holds is dropped and the row is run again, so that nothing the user typed meanwhile
/// is overwritten.
bool stillHolds(const StepInput& input, const CHardware& device, const CriteriaRow& criteria);

} // namespace mirovane
