#pragma once

#include "model/Document.h"
#include "model/edit/EditStep.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace mirovane {

struct ReversalResult {
    std::vector<std::string> lines; ///< for the log: what stays although the step wrote it
    std::vector<std::pair<CDeviceNumbers::Ticket, std::int32_t>> back; ///< devices, and their numbers now
    std::vector<RecordEdit> left; ///< could not come back: the datafile is full
};

/// Makes undone what the step did. Field by field: only the fields that the step changed get their value of
/// before, and each only where the value is still the one that the step wrote. What another station or Live
/// Stat has written since stays, and a line says so. Removed records come back at the end of the list, added
/// ones go. `verb` begins the lines: "Undo" or "Redo".
///
/// Records are found again after reloads: devices by their number and something that they hold, so that
/// another device that got the number of a deleted one is left alone; applications and address ranges by what
/// they hold.
ReversalResult reverseStep(CMirovaneDoc& document, const EditStep& step, std::string_view verb);

} // namespace mirovane
