#pragma once

#include "model/Document.h"

#include <cstddef>
#include <span>
#include <vector>

namespace mirovane {

/// What deciding the order needs of a record.
struct ProximityRecord {
    std::int32_t Type = 0;
    MapPoint Position;
};

/// The order of Group by proximity: floor devices come before those of Discovered/Misc, and each is followed
/// by the nearest of those after it. Entry n is the place where the record of place n was before; records
/// that are not devices keep their places.
///
/// "Nearest" is found by exchanges, and the order that they leave among the rest is part of the result: a
/// device that comes nearer than all before it takes the place after its predecessor, and the one that was
/// there goes where that device came from. With equal distances the earlier one stays. The last two places of
/// the list have no turn.
///
/// 10,000 devices take some tens of milliseconds: the time grows with the square of their number, but a
/// block of distances without a nearer one costs a few instructions, and a distance of 0 ends the search.
std::vector<std::size_t> proximityOrder(std::span<const ProximityRecord> records);

/// Brings the document's list into that order. Returns how many devices changed places. The order is saved
/// with the next save.
std::size_t groupByProximity(CMirovaneDoc& document);

} // namespace mirovane
