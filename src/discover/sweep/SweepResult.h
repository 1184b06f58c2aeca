#pragma once

#include "discover/sweep/SweepProgress.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace mirovane {

/// How a sweep ended. A plain value.
struct SweepResult {
    struct Added {
        std::int32_t recID = 0;
        FoundHost host;
    };

    SweepProgress progress;
    std::vector<Added> added;     ///< by address
    bool complete = false;        ///< it was not ended before every address had its answer
    bool kept = false;            ///< what was found was to be added
    bool datafileFull = false;    ///< not all found hosts have room
    bool saveFailed = false;      ///< what was added is in memory; the log says why it is not in the datafile
    bool takenOver = false;       ///< ended because another station took Live Discover over
    std::size_t alreadyKnown = 0; ///< found, but devices have got these addresses meanwhile
};

/// "Asked 254 addresses: 3 hosts answered, 3 were added to the Discovered/Misc window." and what went wrong.
std::string describeResult(const SweepResult& result);

/// "1 address", "1,000 addresses".
std::string counted(std::uint64_t number, const char* one, const char* many);

} // namespace mirovane
