#include "probes/registry/Registry.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

constexpr std::size_t valueBufferSize = 256;

char lowerCased(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

bool CRegistryKey::readText(const std::string& valueName, std::string& text) const {
    std::array<char, valueBufferSize> buffer{};
    std::size_t size = 0;
    if (registry_->RegQueryValueExA(handle_, valueName, buffer, size) != RegistryStatus::Success)
        return false;
    const auto end = buffer.begin() + static_cast<std::ptrdiff_t>(std::min(size, buffer.size()));
    text.assign(buffer.begin(), std::find(buffer.begin(), end, '\0'));
    return true;
}

bool readRegistryText(const CRegistryKey& root, Registry& registry, const std::string& keyPath,
                      const std::string& valueName, std::string& text) {
    CRegistryKey key(registry);
    return key.open(root, keyPath) && key.readText(valueName, text);
}

bool sameRegistryName(const std::string& one, const std::string& other) {
    return std::equal(
        one.begin(), one.end(), other.begin(), other.end(),
        [](char a, char b) { return lowerCased(a) == lowerCased(b); });
}

} // namespace mirovane
