#pragma once

#include "probes/Registry.h"

#include <map>
#include <memory>
#include <set>
#include <utility>
#include <vector>

namespace mirovane {

/// Registries of computers, held in memory: the few values that this computer answers itself, and whole
/// computers for tests. Keys are listed in the order in which they were made. One thread.
class RegistryInMemory final : public Registry {
public:
    RegistryInMemory();
    ~RegistryInMemory() override;

    /// Makes the key and those above it. `machine` has no backslashes.
    void setValue(const std::string& machine, RegistryRoot root, const std::string& keyPath,
                  const std::string& valueName, std::string data);
    void setKey(const std::string& machine, RegistryRoot root, const std::string& keyPath);

    /// The computer refuses connections to this root.
    void refuse(const std::string& machine, RegistryRoot root);

    /// For whoever wants to know whether everything was closed.
    std::size_t openKeys() const { return open_.size(); }

    RegistryStatus RegConnectRegistryA(const std::string& machineName, RegistryRoot root,
                                       RegistryHandle& key) override;
    RegistryStatus RegOpenKeyExA(RegistryHandle parent, const std::string& subKey, std::uint32_t access,
                                 RegistryHandle& key) override;
    RegistryStatus RegQueryValueExA(RegistryHandle key, const std::string& valueName, std::span<char> buffer,
                                    std::size_t& size) override;
    RegistryStatus RegEnumKeyA(RegistryHandle key, std::uint32_t index, std::string& name) override;
    void RegCloseKey(RegistryHandle key) override;

private:
    struct Key;
    struct NoCase {
        bool operator()(const std::string& one, const std::string& other) const;
    };
    struct Machine;

    Key& made(const std::string& machine, RegistryRoot root, const std::string& keyPath);
    const Key* opened(RegistryHandle key) const;
    RegistryHandle hold(const Key& key);

    std::map<std::string, Machine, NoCase> machines_;
    std::map<RegistryHandle, const Key*> open_;
    RegistryHandle lastHandle_ = 0;
};

} // namespace mirovane
