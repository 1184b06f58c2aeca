#include "probes/RegistryInMemory.h"

#include <algorithm>
#include <strings.h>

namespace mirovane {

struct RegistryInMemory::Key {
    std::string name;
    std::vector<std::unique_ptr<Key>> subKeys;
    std::vector<std::pair<std::string, std::string>> values;

    Key* subKey(const std::string& wanted) const {
        const auto found = std::find_if(subKeys.begin(), subKeys.end(), [&wanted](const auto& one) {
            return sameRegistryName(one->name, wanted);
        });
        return found == subKeys.end() ? nullptr : found->get();
    }

    const std::string* value(const std::string& wanted) const {
        const auto found = std::find_if(values.begin(), values.end(), [&wanted](const auto& one) {
            return sameRegistryName(one.first, wanted);
        });
        return found == values.end() ? nullptr : &found->second;
    }
};

struct RegistryInMemory::Machine {
    std::map<RegistryRoot, Key> roots;
    std::set<RegistryRoot> refused;
};

namespace {

std::vector<std::string> componentsOf(const std::string& keyPath) {
    std::vector<std::string> components;
    std::size_t begin = 0;
    while (begin < keyPath.size()) {
        const std::size_t end = std::min(keyPath.find('\\', begin), keyPath.size());
        if (end > begin)
            components.push_back(keyPath.substr(begin, end - begin));
        begin = end + 1;
    }
    return components;
}

} // namespace

RegistryInMemory::RegistryInMemory() = default;
RegistryInMemory::~RegistryInMemory() = default;

bool RegistryInMemory::NoCase::operator()(const std::string& one, const std::string& other) const {
    return strcasecmp(one.c_str(), other.c_str()) < 0;
}

RegistryInMemory::Key& RegistryInMemory::made(const std::string& machine, RegistryRoot root,
                                              const std::string& keyPath) {
    Key* key = &machines_[machine].roots[root];
    for (const std::string& component : componentsOf(keyPath)) {
        Key* next = key->subKey(component);
        if (!next) {
            next = key->subKeys.emplace_back(std::make_unique<Key>()).get();
            next->name = component;
        }
        key = next;
    }
    return *key;
}

void RegistryInMemory::setKey(const std::string& machine, RegistryRoot root, const std::string& keyPath) {
    made(machine, root, keyPath);
}

void RegistryInMemory::setValue(const std::string& machine, RegistryRoot root, const std::string& keyPath,
                                const std::string& valueName, std::string data) {
    auto& values = made(machine, root, keyPath).values;
    std::erase_if(values, [&valueName](const auto& one) { return sameRegistryName(one.first, valueName); });
    values.emplace_back(valueName, std::move(data));
}

void RegistryInMemory::refuse(const std::string& machine, RegistryRoot root) {
    machines_[machine].refused.insert(root);
}

const RegistryInMemory::Key* RegistryInMemory::opened(RegistryHandle key) const {
    const auto found = open_.find(key);
    return found == open_.end() ? nullptr : found->second;
}

RegistryHandle RegistryInMemory::hold(const Key& key) {
    open_.emplace(++lastHandle_, &key);
    return lastHandle_;
}

RegistryStatus RegistryInMemory::RegConnectRegistryA(const std::string& machineName, RegistryRoot root,
                                                     RegistryHandle& key) {
    if (!machineName.starts_with("\\\\"))
        return RegistryStatus::NetPathNotFound;
    const auto machine = machines_.find(machineName.substr(2));
    if (machine == machines_.end() || machine->second.refused.contains(root))
        return RegistryStatus::NetPathNotFound;
    key = hold(machine->second.roots[root]);
    return RegistryStatus::Success;
}

RegistryStatus RegistryInMemory::RegOpenKeyExA(RegistryHandle parent, const std::string& subKey,
                                               std::uint32_t /*access*/, RegistryHandle& key) {
    const Key* found = opened(parent);
    if (!found)
        return RegistryStatus::InvalidHandle;
    for (const std::string& component : componentsOf(subKey)) {
        found = found->subKey(component);
        if (!found)
            return RegistryStatus::FileNotFound;
    }
    key = hold(*found);
    return RegistryStatus::Success;
}

RegistryStatus RegistryInMemory::RegQueryValueExA(RegistryHandle key, const std::string& valueName,
                                                  std::span<char> buffer, std::size_t& size) {
    const Key* const found = opened(key);
    if (!found)
        return RegistryStatus::InvalidHandle;
    const std::string* const data = found->value(valueName);
    if (!data)
        return RegistryStatus::FileNotFound;
    if (data->size() > buffer.size())
        return RegistryStatus::MoreData;
    std::copy(data->begin(), data->end(), buffer.begin());
    size = data->size();
    return RegistryStatus::Success;
}

RegistryStatus RegistryInMemory::RegEnumKeyA(RegistryHandle key, std::uint32_t index, std::string& name) {
    const Key* const found = opened(key);
    if (!found)
        return RegistryStatus::InvalidHandle;
    if (index >= found->subKeys.size())
        return RegistryStatus::NoMoreItems;
    name = found->subKeys[index]->name;
    return RegistryStatus::Success;
}

void RegistryInMemory::RegCloseKey(RegistryHandle key) {
    open_.erase(key);
}

} // namespace mirovane
