#pragma once

#include "probes/registry/Registry.h"

#include <cstdint>
#include <string>

namespace mirovane {

/// Who is logged on to a computer.
struct LoggedOnUser {
    std::string name;        ///< empty when nobody was found; of several the first, followed by their number
    std::uint32_t count = 0; ///< how many were found
    bool reached = false;    ///< false when the computer or its users' hives could not be reached

    bool operator==(const LoggedOnUser&) const = default;
};

/// `host` carries its two leading backslashes. Blocks as long as the registry does; keeps nothing between
/// calls.
LoggedOnUser LookUpLoggedOnUser(Registry& registry, const std::string& host);

} // namespace mirovane
