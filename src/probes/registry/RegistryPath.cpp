#include "probes/registry/RegistryPath.h"

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

struct NamedRoot {
    std::string_view name;
    RegistryRoot root;
};

constexpr std::array roots{
    NamedRoot{"HKEY_LOCAL_MACHINE", RegistryRoot::LocalMachine},
    NamedRoot{"HKEY_USERS", RegistryRoot::Users},
    NamedRoot{"HKEY_CLASSES_ROOT", RegistryRoot::ClassesRoot},
    NamedRoot{"HKEY_CURRENT_USER", RegistryRoot::CurrentUser},
};

std::string upperCased(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return result;
}

} // namespace

RegistryPath splitRegistryPath(std::string_view path, const std::string& localComputerName) {
    RegistryPath parts;
    const bool namesHost = path.starts_with("\\\\");
    std::size_t begin = 0;
    for (std::size_t end = path.find('\\'); end != path.npos; end = path.find('\\', begin)) {
        const std::string_view token = path.substr(begin, end - begin);
        begin = end + 1;
        if (token.empty())
            continue;
        if (namesHost && parts.host.empty())
            parts.host = "\\\\" + std::string(token);
        else if (parts.hive.empty())
            parts.hive = upperCased(token);
        else
            parts.keyPath.append(token).append("\\");
    }
    parts.valueName = path.substr(begin);
    if (parts.host.empty())
        parts.host = "\\\\" + localComputerName;
    return parts;
}

void appendRegistryKeys(std::string& path, std::string_view subKey) {
    std::size_t begin = 0;
    while (begin < subKey.size()) {
        const std::size_t end = std::min(subKey.find('\\', begin), subKey.size());
        if (end > begin)
            path.append("\\").append(subKey, begin, end - begin);
        begin = end + 1;
    }
}

std::optional<RegistryRoot> registryRoot(std::string_view hive) {
    const auto* const found =
        std::find_if(roots.begin(), roots.end(), [hive](const NamedRoot& one) { return one.name == hive; });
    return found == roots.end() ? std::nullopt : std::optional(found->root);
}

std::string_view registryRootName(RegistryRoot root) {
    const auto* const found =
        std::find_if(roots.begin(), roots.end(), [root](const NamedRoot& one) { return one.root == root; });
    return found->name;
}

} // namespace mirovane
