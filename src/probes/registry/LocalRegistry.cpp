#include "probes/registry/LocalRegistry.h"

#include "probes/registry/RegistryPath.h"

#include <algorithm>

namespace mirovane {

namespace {

/// Stands for the security identifier of the user who runs the program, and is as long as a real one.
constexpr const char* ownHive = "S-1-5-21-0000000000-0000000000-0000000000-1000";

} // namespace

CLocalRegistry::CLocalRegistry(std::string computerName, const std::string& userName)
    : computerName_(std::move(computerName)) {
    const std::string version = "HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows NT\\CurrentVersion\\";
    values_.push_back({version + "CurrentVersion", "6.3"});
    if (userName.empty())
        return;
    const std::string environment = "Volatile Environment\\USERNAME";
    values_.push_back({version + "Winlogon\\DefaultUserName", userName});
    values_.push_back({"HKEY_CURRENT_USER\\" + environment, userName});
    values_.push_back({"HKEY_USERS\\" + (ownHive + ("\\" + environment)), userName});
}

RegistryHandle CLocalRegistry::hold(std::string path) {
    open_.emplace(++lastHandle_, std::move(path));
    return lastHandle_;
}

RegistryStatus CLocalRegistry::RegConnectRegistryA(const std::string& machineName, RegistryRoot root,
                                                   RegistryHandle& key) {
    if (!sameRegistryName(machineName, "\\\\" + computerName_))
        return RegistryStatus::NetPathNotFound;
    key = hold(std::string(registryRootName(root)));
    return RegistryStatus::Success;
}

RegistryStatus CLocalRegistry::RegOpenKeyExA(RegistryHandle parent, const std::string& subKey,
                                             std::uint32_t /*access*/, RegistryHandle& key) {
    const auto found = open_.find(parent);
    if (found == open_.end())
        return RegistryStatus::InvalidHandle;
    std::string path = found->second;
    appendRegistryKeys(path, subKey);
    key = hold(std::move(path));
    return RegistryStatus::Success;
}

RegistryStatus CLocalRegistry::RegQueryValueExA(RegistryHandle key, const std::string& valueName,
                                                std::span<char> buffer, std::size_t& size) {
    const auto opened = open_.find(key);
    if (opened == open_.end())
        return RegistryStatus::InvalidHandle;
    const auto found = std::ranges::find_if(values_, [&](const Value& value) {
        return sameRegistryName(value.path, opened->second + "\\" + valueName);
    });
    if (found == values_.end())
        return RegistryStatus::FileNotFound;
    if (found->data.size() > buffer.size())
        return RegistryStatus::MoreData;
    std::ranges::copy(found->data, buffer.begin());
    size = found->data.size();
    return RegistryStatus::Success;
}

/// Nobody lists other keys than the users' hives.
RegistryStatus CLocalRegistry::RegEnumKeyA(RegistryHandle key, std::uint32_t index, std::string& name) {
    const auto opened = open_.find(key);
    if (opened == open_.end())
        return RegistryStatus::InvalidHandle;
    if (index > 0 || opened->second != registryRootName(RegistryRoot::Users))
        return RegistryStatus::NoMoreItems;
    name = ownHive;
    return RegistryStatus::Success;
}

void CLocalRegistry::RegCloseKey(RegistryHandle key) {
    open_.erase(key);
}

} // namespace mirovane
