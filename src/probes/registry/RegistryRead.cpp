#include "probes/registry/RegistryRead.h"

#include "probes/registry/RegistryPath.h"

namespace mirovane {

namespace {

/// Shorter names under HKEY_USERS belong to the system's own accounts.
constexpr std::size_t longestSystemHive = 16;

bool isUserHive(const std::string& name) {
    return name != ".DEFAULT" && !name.ends_with("Classes") && name.size() > longestSystemHive;
}

std::optional<std::string> readOfAnyUser(Registry& registry, const RegistryPath& path) {
    CRegistryKey users(registry);
    if (!users.connect(path.host, RegistryRoot::Users))
        return std::nullopt;
    std::string hive;
    std::string text;
    for (std::uint32_t index = 0; users.subKeyName(index, hive); ++index)
        if (isUserHive(hive) &&
            readRegistryText(users, registry, hive + "\\" + path.keyPath, path.valueName, text))
            return text;
    return std::nullopt;
}

} // namespace

std::optional<std::string> ReadRegistryValue(Registry& registry, const std::string& path,
                                             const std::string& localComputerName) {
    const RegistryPath parts = splitRegistryPath(path, localComputerName);
    const auto root = registryRoot(parts.hive);
    if (!root)
        return std::nullopt;
    if (*root == RegistryRoot::CurrentUser && parts.host != "\\\\" + localComputerName)
        return readOfAnyUser(registry, parts);
    CRegistryKey key(registry);
    std::string text;
    if (!key.connect(parts.host, *root) ||
        !readRegistryText(key, registry, parts.keyPath, parts.valueName, text))
        return std::nullopt;
    return text;
}

std::string whyNotFound(const std::string& path, const std::string& trouble) {
    if (!registryRoot(splitRegistryPath(path, {}).hive))
        return "its hive is not HKEY_LOCAL_MACHINE, HKEY_USERS, HKEY_CLASSES_ROOT or HKEY_CURRENT_USER";
    return trouble.empty() ? "there is no such key or value" : trouble;
}

std::string GetDefaultUserName(Registry& registry, const std::string& computerName) {
    CRegistryKey machine(registry);
    std::string name;
    if (machine.connect("\\\\" + computerName, RegistryRoot::LocalMachine))
        readRegistryText(machine, registry, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Winlogon",
                         "DefaultUserName", name);
    return name;
}

} // namespace mirovane
