#pragma once

#include "cli/base/Output.h"
#include "model/format/TwinRepair.h"

#include <string>
#include <vector>

namespace mirovane {

/// What a repair did to a datafile.
struct DatafileRepair {
    ExitStatus status = ExitStatus::Done; ///< FileFailed: it has been said why, and nothing was changed
    std::vector<TwinRenumbering> renumbered;
    std::size_t strayBytes = 0; ///< that were left out
    std::string copy;           ///< the file as it was; empty where there was nothing to repair

    bool nothingDone() const { return renumbered.empty() && strayBytes == 0; }
};

/// Mends what can be mended without loss: of devices that have the same RecID the first in list order keeps
/// it, each other one gets the smallest that no device has; bytes after the last record are left out. All in
/// one save under the datafile's lock, after a copy of the file has been put beside it. Where nothing can be
/// mended nothing is written.
DatafileRepair repairDatafile(COutput& out, const std::string& path);

} // namespace mirovane
