#pragma once

#include "model/edit/DeviceNumbers.h"
#include "model/edit/EditName.h"
#include "model/records/Hardware.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace mirovane {

/// One record before and after an edit; added and removed ones have one side only.
struct RecordEdit {
    std::optional<CHardware> before;
    std::optional<CHardware> after;
    CDeviceNumbers::Ticket ticket = 0; ///< of a device; the RecID of the two sides may have changed since
};

/// What one command of the user changed, under the name that an undo of it is called by.
struct EditStep {
    EditName name;
    std::vector<RecordEdit> records;
    std::size_t bytes = 0; ///< of memory, nearly
};

} // namespace mirovane
