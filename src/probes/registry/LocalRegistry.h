#pragma once

#include "probes/registry/Registry.h"

#include <map>
#include <string>
#include <vector>

namespace mirovane {

/// The registry of this computer, which has none: it answers the default user name, who is logged on (the
/// user who runs the program) and a version that says where the latter is kept. Anything else is not found.
/// One thread.
class CLocalRegistry final : public Registry {
public:
    /// Neither name has backslashes. Without a user nobody is logged on.
    CLocalRegistry(std::string computerName, const std::string& userName);

    RegistryStatus RegConnectRegistryA(const std::string& machineName, RegistryRoot root,
                                       RegistryHandle& key) override;
    RegistryStatus RegOpenKeyExA(RegistryHandle parent, const std::string& subKey, std::uint32_t access,
                                 RegistryHandle& key) override;
    RegistryStatus RegQueryValueExA(RegistryHandle key, const std::string& valueName, std::span<char> buffer,
                                    std::size_t& size) override;
    RegistryStatus RegEnumKeyA(RegistryHandle key, std::uint32_t index, std::string& name) override;
    void RegCloseKey(RegistryHandle key) override;

private:
    struct Value {
        std::string path; ///< root, keys and name, parted by backslashes
        std::string data;
    };

    RegistryHandle hold(std::string path);

    const std::string computerName_;
    std::vector<Value> values_;
    std::map<RegistryHandle, std::string> open_; ///< paths from the root's name on
    RegistryHandle lastHandle_ = 0;
};

} // namespace mirovane
