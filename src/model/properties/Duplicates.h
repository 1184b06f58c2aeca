#pragma once

#include "model/Document.h"
#include "model/properties/PropertiesEdit.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

/// Another device that has a value which should be one device's own.
struct Duplicate {
    DeviceKey other;
    bool jack = false;                    ///< both are jacks
    std::vector<std::string_view> labels; ///< of the values that are the same: "Name", "IP Address"

    /// The question to the user, as one sentence.
    std::string question() const;
};

/// The first device, on the floor or in the Discovered/Misc window, that has one of the edited device's new
/// values, in upper or lower case: name, address, MAC address or jack for devices, the number for jacks. The
/// `selected` ones do not count, and neither does an empty value. Walks the list once.
std::optional<Duplicate> findDuplicate(const CMirovaneDoc& document, const CHardware& edited,
                                       std::span<const DeviceKey> selected);

} // namespace mirovane
