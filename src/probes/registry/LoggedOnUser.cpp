#include "probes/registry/LoggedOnUser.h"

#include <charconv>
#include <optional>
#include <string_view>

namespace mirovane {

namespace {

/// A logged-on user's hive is named by a security identifier longer than this.
constexpr std::size_t longestAccountOfSystem = 25;

/// From this version on the name is in the user's volatile environment instead of the Explorer's key.
constexpr int firstWithVolatileEnvironment = 6;

constexpr std::string_view classesSuffix = "_Classes";

int majorVersion(Registry& registry, const std::string& host) {
    CRegistryKey machine(registry);
    std::string version;
    int major = 0;
    if (machine.connect(host, RegistryRoot::LocalMachine) &&
        readRegistryText(machine, registry, "Software\\Microsoft\\Windows NT\\CurrentVersion",
                         "CurrentVersion", version))
        std::from_chars(version.data(), version.data() + version.size(), major);
    return major;
}

/// The name that a hive holds; nothing when it has none.
std::optional<std::string> userOf(const CRegistryKey& users, Registry& registry, const std::string& hive,
                                  int major) {
    std::string name;
    if (major >= firstWithVolatileEnvironment) {
        if (readRegistryText(users, registry, hive + "\\Volatile Environment", "USERNAME", name))
            return name;
        return std::nullopt;
    }
    if (!hive.ends_with("Classes"))
        return std::nullopt;
    const std::string shortened = hive.substr(0, hive.size() - classesSuffix.size());
    if (readRegistryText(users, registry,
                         shortened + "\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer",
                         "Logon User Name", name))
        return name;
    return std::nullopt;
}

} // namespace

LoggedOnUser LookUpLoggedOnUser(Registry& registry, const std::string& host) {
    LoggedOnUser result;
    const int major = majorVersion(registry, host);
    CRegistryKey users(registry);
    if (!users.connect(host, RegistryRoot::Users))
        return result;
    result.reached = true;
    std::string hive;
    for (std::uint32_t index = 0; users.subKeyName(index, hive); ++index) {
        if (hive == ".DEFAULT" || hive.size() <= longestAccountOfSystem)
            continue;
        if (const auto name = userOf(users, registry, hive, major)) {
            ++result.count;
            if (result.name.empty())
                result.name = *name;
        }
    }
    if (result.count > 1)
        result.name += "(" + std::to_string(result.count) + ")";
    return result;
}

} // namespace mirovane
