#pragma once

#include "model/Document.h"
#include "model/records/SpecialRecords.h"

namespace mirovane {

/// Where the site's floor map and the users' photos are; empty when the datafile names none.
FloorMapValues floorMapOf(const CMirovaneDoc& document);

/// The user chose them. The record that holds them is made when there is none yet; false when the datafile is
/// full.
bool setFloorMap(CMirovaneDoc& document, const FloorMapValues& map);

} // namespace mirovane
