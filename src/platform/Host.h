#pragma once

#include <string>

namespace mirovane {

/// Who this station is, as it signs the owner records of a datafile.
struct StationIdentity {
    std::string computerName; ///< host name, at most 30 bytes
    std::string userName;     ///< login name; empty when the system has none for this process

    bool operator==(const StationIdentity&) const = default;
};

StationIdentity thisStation();

} // namespace mirovane
