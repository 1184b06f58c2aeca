#pragma once

#include "probes/registry/RegistryPath.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace mirovane::test {

/// Registries of whole computers, held in memory. Keys are listed in the order in which they were made. One
/// thread.
class RegistryInMemory final : public Registry {
public:
    /// Makes the key and those above it. `machine` has no backslashes.
    void setKey(const std::string& machine, RegistryRoot root, const std::string& keyPath) {
        keys_.push_back(pathOf("\\\\" + machine, root, keyPath));
    }
    void setValue(const std::string& machine, RegistryRoot root, const std::string& keyPath,
                  const std::string& valueName, std::string data) {
        setKey(machine, root, keyPath);
        values_[lowered(keys_.back() + valueName)] = std::move(data);
    }

    /// The computer refuses connections to this root.
    void refuse(const std::string& machine, RegistryRoot root) {
        refused_.insert(lowered(pathOf("\\\\" + machine, root, "")));
    }

    /// For whoever wants to know whether everything was closed.
    std::size_t openKeys() const { return open_.size(); }

    RegistryStatus RegConnectRegistryA(const std::string& machineName, RegistryRoot root,
                                       RegistryHandle& key) override {
        const std::string path = pathOf(machineName, root, "");
        if (!machineName.starts_with("\\\\") || !exists(machineName + "\\") ||
            refused_.contains(lowered(path)))
            return RegistryStatus::NetPathNotFound;
        key = hold(path);
        return RegistryStatus::Success;
    }
    RegistryStatus RegOpenKeyExA(RegistryHandle parent, const std::string& subKey, std::uint32_t /*access*/,
                                 RegistryHandle& key) override {
        if (!open_.contains(parent))
            return RegistryStatus::InvalidHandle;
        const std::string path = below(open_[parent], subKey);
        if (!exists(path))
            return RegistryStatus::FileNotFound;
        key = hold(path);
        return RegistryStatus::Success;
    }
    RegistryStatus RegQueryValueExA(RegistryHandle key, const std::string& valueName, std::span<char> buffer,
                                    std::size_t& size) override {
        if (!open_.contains(key))
            return RegistryStatus::InvalidHandle;
        const auto found = values_.find(lowered(open_[key] + valueName));
        if (found == values_.end())
            return RegistryStatus::FileNotFound;
        if (found->second.size() > buffer.size())
            return RegistryStatus::MoreData;
        std::ranges::copy(found->second, buffer.begin());
        size = found->second.size();
        return RegistryStatus::Success;
    }
    RegistryStatus RegEnumKeyA(RegistryHandle key, std::uint32_t index, std::string& name) override {
        if (!open_.contains(key))
            return RegistryStatus::InvalidHandle;
        const std::string& path = open_[key];
        std::vector<std::string> names;
        for (const std::string& made : keys_) {
            if (made.size() <= path.size() || !lowered(made).starts_with(lowered(path)))
                continue;
            const std::string next = made.substr(path.size(), made.find('\\', path.size()) - path.size());
            if (std::ranges::find(names, next) == names.end())
                names.push_back(next);
        }
        if (index >= names.size())
            return RegistryStatus::NoMoreItems;
        name = names[index];
        return RegistryStatus::Success;
    }
    void RegCloseKey(RegistryHandle key) override { open_.erase(key); }

private:
    static std::string lowered(std::string text) {
        std::ranges::transform(text, text.begin(), [](unsigned char c) { return std::tolower(c); });
        return text;
    }
    static std::string below(std::string path, const std::string& subKey) {
        path.pop_back();
        appendRegistryKeys(path, subKey);
        return path + "\\";
    }
    static std::string pathOf(const std::string& host, RegistryRoot root, const std::string& keyPath) {
        return below(host + "\\" + std::string(registryRootName(root)) + "\\", keyPath);
    }
    bool exists(const std::string& path) const {
        return std::ranges::any_of(
            keys_, [&](const std::string& key) { return lowered(key).starts_with(lowered(path)); });
    }
    RegistryHandle hold(const std::string& path) {
        open_[++lastHandle_] = path;
        return lastHandle_;
    }

    std::vector<std::string> keys_; ///< each with a last backslash
    std::map<std::string, std::string> values_;
    std::set<std::string> refused_;
    std::map<RegistryHandle, std::string> open_;
    RegistryHandle lastHandle_ = 0;
};

} // namespace mirovane::test
