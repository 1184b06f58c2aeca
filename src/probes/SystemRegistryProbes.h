#pragma once

#include "platform/Host.h"
#include "probes/RegistryProbes.h"
#include "probes/registry/RegistryRemote.h"

#include <functional>
#include <mutex>

namespace mirovane {

/// Asks this computer itself or another one over the network, as the host says. Owned by the program.
class CSystemRegistryProbes final : public RegistryProbes {
public:
    CSystemRegistryProbes(RegistryRemoteOptions options, StationIdentity station)
        : options_(std::move(options)), station_(std::move(station)) {}

    std::optional<std::string> ReadRegistryValue(const std::string& path,
                                                 const std::string& localComputerName, std::stop_token stop,
                                                 std::string* trouble = nullptr) override;
    LoggedOnUser LookUpLoggedOnUser(const std::string& host, std::stop_token stop,
                                    std::string* trouble = nullptr) override;
    std::vector<std::string> takeTroubles() override;

    /// Why the look-up that ended last failed, in a few words; means nothing after a good one. For a program
    /// that makes one look-up.
    std::string lastTrouble() const;

private:
    /// False when the computer did not answer to the end.
    bool withRegistryOf(const std::string& host, std::stop_token stop,
                        const std::function<void(Registry&)>& lookUp, std::string* trouble);
    void note(const RegistryTrouble& trouble);

    RegistryRemoteOptions options_;
    StationIdentity station_;
    mutable std::mutex mutex_; ///< guards what follows
    std::vector<std::string> untold_;
    std::vector<std::string> told_;
    std::string last_;
};

} // namespace mirovane
