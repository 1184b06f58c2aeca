#pragma once

#include "platform/ProbeAnswer.h"
#include "probes/registry/LoggedOnUser.h"

#include <stop_token>
#include <string>

namespace mirovane {

/// The look-ups in the registries of computers, as Live Stat asks for them. Any thread, any number at once;
/// each blocks its caller until it knows, until its time-out or until `stop` is requested. Never throws,
/// shows nothing. A computer that is silent is a no; one that refuses this station, or a station without the
/// means to ask, could not be asked.
class RegistryProbes {
public:
    virtual ~RegistryProbes() = default;

    /// `path` is "\\<Hostname>\<Key>\..\<Valuename>"; without a host it means this computer, whose name is
    /// `localComputerName` (no backslashes). `value` is written when it was read.
    virtual ProbeAnswer ReadRegistryValue(const std::string& path, const std::string& localComputerName,
                                          std::string& value, std::stop_token stop) = 0;

    /// `host` carries its two leading backslashes. Yes when the computer and its users' hives were reached,
    /// also when nobody is logged on.
    virtual ProbeAnswer LookUpLoggedOnUser(const std::string& host, LoggedOnUser& user,
                                           std::stop_token stop) = 0;
};

} // namespace mirovane
