#pragma once

#include "cli/Commands.h"
#include "probes/RegistryRemote.h"

#include <optional>

namespace mirovane {

/// How other computers' registries are asked: --credentials and --smb-port, where the command has them, and
/// the user's own credentials file. Nothing when the command cannot run; then it has been said why, and
/// `status` says how it ends.
std::optional<RegistryRemoteOptions> remoteOptions(CommandContext& context, ExitStatus& status);

} // namespace mirovane
