#pragma once

#include "model/Document.h"
#include "model/records/SpecialRecords.h"

#include <array>
#include <cstddef>

namespace mirovane {

/// What a datafile holds, as numbers.
struct FloorSummary {
    struct Count {
        std::size_t floor = 0;
        std::size_t discovered = 0;

        std::size_t total() const { return floor + discovered; }
    };

    std::array<Count, DeviceType::last + 1> types; ///< by floor code
    std::size_t applications = 0;
    std::size_t applicationsOnMenu = 0;
    OwnerValues liveStat;
    OwnerValues liveDiscover;
};

/// Walks the list once.
FloorSummary floorSummary(const CMirovaneDoc& document);

} // namespace mirovane
