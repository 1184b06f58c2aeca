#pragma once

#include "model/MapBox.h"
#include "model/Selection.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace mirovane {

/// One entry of the Select menu.
struct SelectionCommand {
    enum class What : std::uint8_t {
        All,        ///< only ever adds
        Boxed,      ///< strictly inside the rubber-band box
        MarkedArea, ///< on the areas of the Location Markers that are selected or under the pointer
        OfType,     ///< in whatever state
        Active,     ///< of the type, and found to be on
        Inactive,   ///< of the type, and off or not checked yet
    };

    What what = What::All;
    std::int32_t type = 0; ///< for the last three
};

/// What the floor shows at the moment of the command.
struct SelectionScene {
    const CMirovaneDoc& document;
    const DisplaySettings& display;
    std::optional<MapBox> box;
    std::int32_t SelectedMarker = 0;
    bool PointerInMarkedArea = false;
};

struct SelectionOutcome {
    std::size_t count = 0;       ///< devices that match, selected before or not
    std::string message;         ///< for the message log
    bool forLiveStatNow = false; ///< the command is one after which devices may be checked at once
};

/// Selects the floor devices of a visible type that match. `additive`: to those selected already, otherwise
/// instead of them.
SelectionOutcome select(SelectionCommand command, bool additive, CSelection& selection,
                        const SelectionScene& scene);

/// "3 devices: pc-1, pc-2, pc-3"; of many only the first names. A device without a name is called by its
/// address, else by its type. Empty when nothing is selected.
std::string targetsText(const CSelection::Devices& devices);

} // namespace mirovane
