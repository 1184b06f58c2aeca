#pragma once

#include <string>

namespace mirovane {

/// The user's own credentials file, whether it exists or not: samba-credentials beside the settings.
/// `configFolder` is that of --config; empty for the user's own.
std::string usualCredentialsFile(const std::string& configFolder);

} // namespace mirovane
