#pragma once

#include "probes/registry/Registry.h"

#include <optional>
#include <string>

namespace mirovane {

// Look-ups of single values. They keep nothing between calls and block as long as the registry does; whatever
// goes wrong is "not found".

/// The value that the path names, as text. `localComputerName` (no backslashes) is the host of a path without
/// one. HKEY_CURRENT_USER of another computer is looked for in the hives of the users who are logged on
/// there: the first that has the value gives it.
std::optional<std::string> ReadRegistryValue(Registry& registry, const std::string& path,
                                             const std::string& localComputerName);

/// Why the value of this path was not found, for people. `trouble` is why the look-up failed; it is empty
/// when the computer answered.
std::string whyNotFound(const std::string& path, const std::string& trouble);

/// The default logon user of a computer (no backslashes); empty when it cannot be read.
std::string GetDefaultUserName(Registry& registry, const std::string& computerName);

} // namespace mirovane
