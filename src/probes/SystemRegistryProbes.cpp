#include "probes/SystemRegistryProbes.h"

#include "probes/registry/LocalRegistry.h"
#include "probes/registry/RegistryPath.h"
#include "probes/registry/RegistryRead.h"

#include <optional>
#include <utility>

namespace mirovane {

ProbeAnswer CSystemRegistryProbes::ReadRegistryValue(const std::string& path,
                                                     const std::string& localComputerName, std::string& value,
                                                     std::stop_token stop) {
    std::optional<std::string> found;
    const auto read = [&](Registry& registry) {
        found = mirovane::ReadRegistryValue(registry, path, localComputerName);
    };
    const RegistryPath parts = splitRegistryPath(path, localComputerName);
    if (!registryRoot(parts.hive)) // a slip of the pen needs no other computer
        return ProbeAnswer::no(whyNotFound(path, {}));
    const std::string& host = parts.host;
    ProbeAnswer answer = withRegistryOf(host, std::move(stop), read);
    if (found) {
        value = std::move(*found);
        return ProbeAnswer::yes();
    }
    return answer.isYes() ? ProbeAnswer::no(whyNotFound(path, answer.why)) : answer;
}

ProbeAnswer CSystemRegistryProbes::LookUpLoggedOnUser(const std::string& host, LoggedOnUser& user,
                                                      std::stop_token stop) {
    LoggedOnUser found;
    const auto lookUp = [&](Registry& registry) {
        found = mirovane::LookUpLoggedOnUser(registry, host);
    };
    ProbeAnswer answer = withRegistryOf(host, std::move(stop), lookUp);
    // A look-up that broke off before it found somebody does not tell that nobody is logged on.
    if (!answer.isYes() && found.name.empty())
        return answer;
    user = std::move(found);
    return user.reached ? ProbeAnswer::yes() : ProbeAnswer::no(answer.why);
}

ProbeAnswer CSystemRegistryProbes::withRegistryOf(const std::string& host, std::stop_token stop,
                                                  const std::function<void(Registry&)>& lookUp) const {
    if (sameRegistryName(host, "\\\\" + station_.computerName)) {
        CLocalRegistry registry(station_.computerName, station_.userName);
        lookUp(registry);
        return ProbeAnswer::yes();
    }
    // Its deadline begins when its turn comes.
    const CPlaces::CHold place = places_.take(stop);
    if (!place)
        return ProbeAnswer::stopped();
    CRegistryRemote registry(options_, std::move(stop));
    lookUp(registry);
    const RegistryTrouble& trouble = registry.trouble();
    switch (trouble.kind) {
    case RegistryTrouble::Kind::Silent:
        return ProbeAnswer::no(trouble.last);
    case RegistryTrouble::Kind::Refused:
        return ProbeAnswer::couldNotAsk(AskedThrough::Registry, trouble.last);
    case RegistryTrouble::Kind::Stopped:
        return ProbeAnswer::stopped();
    case RegistryTrouble::Kind::Nothing:
        break;
    }
    return {ProbeAnswer::Kind::Yes, trouble.last};
}

} // namespace mirovane
