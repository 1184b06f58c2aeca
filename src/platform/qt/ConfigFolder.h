#pragma once

#include <string>

namespace mirovane {

/// Where one user's files of this program are, as the file system spells it: the folder of his choice, or
/// with an empty `chosen` mirovane below the XDG config folder.
std::string configFolder(const std::string& chosen);

/// The Samba authentication file that the registry look-ups take when none is named.
std::string usualCredentialsFile(const std::string& chosenFolder);

} // namespace mirovane
