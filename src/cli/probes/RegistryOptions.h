#pragma once

#include "cli/base/Command.h"
#include "probes/registry/RegistryRemote.h"

#include <optional>

namespace mirovane {

inline constexpr OptionDefinition credentialsOption{"--credentials", 1, "FILE",
                                                    "Samba authentication file that only its owner can read"};
inline constexpr OptionDefinition smbPortOption{"--smb-port", 1, "N", "ask on this port instead of 445"};

/// How other computers' registries are asked: --credentials and --smb-port, where the command has them, and
/// the user's own credentials file. Nothing when the command cannot run; then it has been said why, and
/// `status` says how it ends.
std::optional<RegistryRemoteOptions> remoteOptions(CommandContext& context, ExitStatus& status);

} // namespace mirovane
