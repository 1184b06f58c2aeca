#pragma once

#include "platform/Host.h"
#include "platform/Places.h"
#include "probes/RegistryProbes.h"
#include "probes/registry/RegistryRemote.h"

#include <functional>

namespace mirovane {

/// Asks this computer itself or another one over the network, as the host says. Owned by the program.
class CSystemRegistryProbes final : public RegistryProbes {
public:
    CSystemRegistryProbes(RegistryRemoteOptions options, StationIdentity station)
        : options_(std::move(options)), station_(std::move(station)) {}

    ProbeAnswer ReadRegistryValue(const std::string& path, const std::string& localComputerName,
                                  std::string& value, std::stop_token stop) override;
    ProbeAnswer LookUpLoggedOnUser(const std::string& host, LoggedOnUser& user,
                                   std::stop_token stop) override;

    /// Each look-up has a child process of Samba's, some 20 MB and five descriptors.
    static constexpr int mostAtOnce = 32;

private:
    /// What became of a look-up for which the computer answered to the end is a yes.
    ProbeAnswer withRegistryOf(const std::string& host, std::stop_token stop,
                               const std::function<void(Registry&)>& lookUp) const;

    const RegistryRemoteOptions options_;
    const StationIdentity station_;
    mutable CPlaces places_{mostAtOnce};
};

} // namespace mirovane
