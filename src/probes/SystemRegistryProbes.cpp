#include "probes/SystemRegistryProbes.h"

#include "probes/registry/LocalRegistry.h"
#include "probes/registry/RegistryPath.h"
#include "probes/registry/RegistryRead.h"

#include <algorithm>

namespace mirovane {

std::optional<std::string> CSystemRegistryProbes::ReadRegistryValue(const std::string& path,
                                                                    const std::string& localComputerName,
                                                                    std::stop_token stop,
                                                                    std::string* trouble) {
    std::optional<std::string> value;
    const auto read = [&](Registry& registry) {
        value = mirovane::ReadRegistryValue(registry, path, localComputerName);
    };
    withRegistryOf(splitRegistryPath(path, localComputerName).host, std::move(stop), read, trouble);
    return value;
}

LoggedOnUser CSystemRegistryProbes::LookUpLoggedOnUser(const std::string& host, std::stop_token stop,
                                                       std::string* trouble) {
    LoggedOnUser user;
    const auto lookUp = [&](Registry& registry) {
        user = mirovane::LookUpLoggedOnUser(registry, host);
    };
    const bool answered = withRegistryOf(host, std::move(stop), lookUp, trouble);
    // A look-up that broke off before it found somebody does not tell that nobody is logged on.
    return answered || !user.name.empty() ? user : LoggedOnUser();
}

bool CSystemRegistryProbes::withRegistryOf(const std::string& host, std::stop_token stop,
                                           const std::function<void(Registry&)>& lookUp,
                                           std::string* trouble) {
    if (trouble)
        trouble->clear();
    if (sameRegistryName(host, "\\\\" + station_.computerName)) {
        CLocalRegistry registry(station_.computerName, station_.userName);
        lookUp(registry);
        note({});
        return true;
    }
    CRegistryRemote registry(options_, std::move(stop));
    lookUp(registry);
    note(registry.trouble());
    if (trouble)
        *trouble = registry.trouble().last;
    return !registry.unreachable();
}

void CSystemRegistryProbes::note(const RegistryTrouble& trouble) {
    const std::lock_guard lock(mutex_);
    last_ = trouble.last;
    if (trouble.setUp.empty() || std::find(told_.begin(), told_.end(), trouble.setUp) != told_.end())
        return;
    told_.push_back(trouble.setUp);
    untold_.push_back(trouble.setUp);
}

std::vector<std::string> CSystemRegistryProbes::takeTroubles() {
    const std::lock_guard lock(mutex_);
    return std::exchange(untold_, {});
}

std::string CSystemRegistryProbes::lastTrouble() const {
    const std::lock_guard lock(mutex_);
    return last_;
}

} // namespace mirovane
