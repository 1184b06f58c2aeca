#include "probes/SystemRegistryProbes.h"

#include "probes/RegistryPath.h"
#include "probes/RegistryRead.h"

#include <algorithm>

namespace mirovane {

namespace {

/// Stands for the security identifier of the user who runs the program, as long as a real one.
constexpr const char* ownHive = "S-1-5-21-0000000000-0000000000-0000000000-1000";

} // namespace

void fillRegistryOfThisComputer(RegistryInMemory& registry, const StationIdentity& station) {
    const std::string& computer = station.computerName;
    const std::string version = "Software\\Microsoft\\Windows NT\\CurrentVersion";
    registry.setValue(computer, RegistryRoot::LocalMachine, version, "CurrentVersion", "6.3");
    registry.setKey(computer, RegistryRoot::Users, ownHive);
    if (station.userName.empty())
        return;
    const std::string environment = "Volatile Environment";
    registry.setValue(computer, RegistryRoot::LocalMachine, version + "\\Winlogon", "DefaultUserName",
                      station.userName);
    registry.setValue(computer, RegistryRoot::CurrentUser, environment, "USERNAME", station.userName);
    registry.setValue(computer, RegistryRoot::Users, ownHive + ("\\" + environment), "USERNAME",
                      station.userName);
}

std::optional<std::string> SystemRegistryProbes::ReadRegistryValue(const std::string& path,
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

LoggedOnUser SystemRegistryProbes::LookUpLoggedOnUser(const std::string& host, std::stop_token stop,
                                                      std::string* trouble) {
    LoggedOnUser user;
    const auto lookUp = [&](Registry& registry) {
        user = mirovane::LookUpLoggedOnUser(registry, host);
    };
    const bool answered = withRegistryOf(host, std::move(stop), lookUp, trouble);
    // A look-up that broke off before it found somebody does not tell that nobody is logged on.
    return answered || !user.name.empty() ? user : LoggedOnUser();
}

std::string SystemRegistryProbes::GetDefaultUserName(const std::string& computerName, std::stop_token stop) {
    std::string name;
    withRegistryOf("\\\\" + computerName, std::move(stop),
                   [&](Registry& registry) { name = mirovane::GetDefaultUserName(registry, computerName); });
    return name;
}

bool SystemRegistryProbes::withRegistryOf(const std::string& host, std::stop_token stop,
                                          const std::function<void(Registry&)>& lookUp,
                                          std::string* trouble) {
    if (trouble)
        trouble->clear();
    if (sameRegistryName(host, "\\\\" + station_.computerName)) {
        RegistryInMemory registry;
        fillRegistryOfThisComputer(registry, station_);
        lookUp(registry);
        note({});
        return true;
    }
    RegistryRemote registry(options_, std::move(stop));
    lookUp(registry);
    note(registry.trouble());
    if (trouble)
        *trouble = registry.trouble().last;
    return !registry.unreachable();
}

void SystemRegistryProbes::note(const RegistryTrouble& trouble) {
    const std::lock_guard lock(mutex_);
    last_ = trouble.last;
    if (trouble.setUp.empty() || std::find(told_.begin(), told_.end(), trouble.setUp) != told_.end())
        return;
    told_.push_back(trouble.setUp);
    untold_.push_back(trouble.setUp);
}

std::vector<std::string> SystemRegistryProbes::takeTroubles() {
    const std::lock_guard lock(mutex_);
    return std::exchange(untold_, {});
}

std::string SystemRegistryProbes::lastTrouble() const {
    const std::lock_guard lock(mutex_);
    return last_;
}

} // namespace mirovane
