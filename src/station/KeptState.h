#pragma once

#include "model/LogFile.h"
#include "model/datafile/UnsavedEdits.h"

#include <string>

namespace mirovane {

/// What a station keeps in the state folder of its user; with an empty folder nothing. Main thread; document
/// and log outlive it.
struct KeptState {
    KeptState(CMirovaneDoc& document, CMessageLog& log, const std::string& folder)
        : logFile(log, calls, folder), unsaved(document, log, calls, folder) {}

    CFileCalls calls;
    CLogFile logFile;
    CUnsavedEdits unsaved;
};

} // namespace mirovane
