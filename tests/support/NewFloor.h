#pragma once

#include "model/Document.h"
#include "model/datafile/NewRecords.h"

namespace mirovane::test {

/// What a new datafile holds, without a datafile.
inline void newFloor(CMirovaneDoc& document) {
    document.replaceAll(newRecords(document.station(), document.now()), false);
}

} // namespace mirovane::test
