#pragma once

#include "probes/registry/LoggedOnUser.h"

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace mirovane {

/// The look-ups in the registries of computers, as Live Stat asks for them. Any thread, any number at once;
/// each blocks its caller until it knows, until its time-out or until `stop` is requested. Never throws,
/// shows nothing: what cannot be read is not found.
class RegistryProbes {
public:
    virtual ~RegistryProbes() = default;

    // `trouble`, where given, receives why a look-up failed, in a few words; empty when the computer answered
    // and what was asked for is not there.

    /// `path` is "\\<Hostname>\<Key>\..\<Valuename>"; without a host it means this computer, whose name is
    /// `localComputerName` (no backslashes).
    virtual std::optional<std::string> ReadRegistryValue(const std::string& path,
                                                         const std::string& localComputerName,
                                                         std::stop_token stop,
                                                         std::string* trouble = nullptr) = 0;

    /// `host` carries its two leading backslashes.
    virtual LoggedOnUser LookUpLoggedOnUser(const std::string& host, std::stop_token stop,
                                            std::string* trouble = nullptr) = 0;

    /// Why no other computer can be asked at all and what to do about it (Samba is missing, the credentials
    /// file is open to others), one line each, for the log. Each is handed out once in the object's life.
    virtual std::vector<std::string> takeTroubles() = 0;
};

} // namespace mirovane
