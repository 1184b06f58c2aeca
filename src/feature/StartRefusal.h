#pragma once

#include <string>
#include <string_view>

namespace mirovane {

constexpr std::string_view outOfTimersText = "System is out of timer resource!";

/// Why a feature does not start.
struct StartRefusal {
    enum class Kind {
        NoDevices,      ///< nothing to check
        NoRanges,       ///< nothing to walk through
        InvalidRange,   ///< a range that cannot be read could mean anybody's network
        NothingToAsk,   ///< every address of the ranges belongs to a device
        OwnerElsewhere, ///< another station runs it, and the user left it there
        NotWritable,    ///< the datafile cannot be saved, so nobody would learn that it runs here
        NoTimer,
        NoEcho, ///< the system does not let this program send echoes
        RunsAlready,
    };

    Kind kind;
    std::string text; ///< for people; empty where there is nothing to tell
};

} // namespace mirovane
