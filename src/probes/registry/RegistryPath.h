#pragma once

#include "probes/registry/Registry.h"

#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// "\\<Hostname>\<Key>\..\<Valuename>", taken apart.
struct RegistryPath {
    std::string host;      ///< with its two leading backslashes
    std::string hive;      ///< in capitals; empty when the path has too few parts
    std::string keyPath;   ///< the components between, each followed by one backslash
    std::string valueName; ///< what follows the last backslash; empty for the default value
};

/// Doubled backslashes count as one, except for those that begin the path and announce a host. Without one,
/// the host is this computer.
RegistryPath splitRegistryPath(std::string_view path, const std::string& localComputerName);

/// Appends the keys of `subKey`, each with a backslash before it. Doubled and outer backslashes do not
/// matter.
void appendRegistryKeys(std::string& path, std::string_view subKey);

/// Only the four full names are known.
std::optional<RegistryRoot> registryRoot(std::string_view hive);
std::string_view registryRootName(RegistryRoot root);

} // namespace mirovane
