#pragma once

#include <cstdint>
#include <string>

namespace mirovane {

/// Where the users' photos are, as the datafile has it, and how large this user sees them.
struct PhotoSettings {
    std::string folder;
    std::int32_t PhotoScale = 100; ///< percent

    bool operator==(const PhotoSettings&) const = default;
};

} // namespace mirovane
