#pragma once

#include <string>

namespace mirovane {

/// Who this station is, as it signs the owner records of a datafile.
struct StationIdentity {
    std::string computerName; ///< host name, at most 30 bytes
    std::string userName;     ///< default logon user; empty when it is not known

    bool operator==(const StationIdentity&) const = default;
};

/// At most 30 bytes; empty when the system does not tell.
std::string computerName();

/// Of the user who runs the program; empty when the system has none for this process.
std::string loginName();

} // namespace mirovane
