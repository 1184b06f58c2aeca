#pragma once

#include "discover/sweep/SweepProgress.h"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

namespace mirovane {

/// The hosts that a sweep has found, in the order in which they answered. A host is told of once when it is
/// found and again when its name is known.
class CFoundHosts {
public:
    /// Where in the list they are now.
    std::vector<std::size_t> take(std::vector<FoundHost> news) {
        std::vector<std::size_t> changed;
        for (FoundHost& host : news) {
            const auto [place, fresh] = places_.try_emplace(host.address, hosts_.size());
            changed.push_back(place->second);
            if (fresh)
                hosts_.push_back(std::move(host));
            else
                hosts_[place->second].name = std::move(host.name);
        }
        return changed;
    }

    const std::vector<FoundHost>& hosts() const { return hosts_; }

private:
    std::vector<FoundHost> hosts_;
    std::unordered_map<std::uint32_t, std::size_t> places_; ///< in hosts_, by address
};

} // namespace mirovane
