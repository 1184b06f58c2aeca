#pragma once

#include "model/records/Hardware.h"
#include "model/rows/TextExport.h"

#include <cstddef>
#include <string>
#include <vector>

namespace mirovane {

/// What the Export dialog starts with. Copies: it may stay open while the records are read again.
struct ExportRequest {
    ExportSettings settings;
    std::string datafile; ///< empty: it has no file yet
    std::size_t rowCount = 0;
    std::vector<CHardware> firstRows; ///< for the preview
    std::string lastFailure;          ///< why the latest export failed; empty when it did not
};

} // namespace mirovane
