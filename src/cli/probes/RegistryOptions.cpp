#include "cli/probes/RegistryOptions.h"

#include "platform/qt/ConfigFolder.h"

namespace mirovane {

namespace {

constexpr int highestPort = 65535;

} // namespace

std::optional<RegistryRemoteOptions> remoteOptions(CommandContext& context, ExitStatus& status) {
    RegistryRemoteOptions options;
    options.credentialsFile = usualCredentialsFile(context.configFolder);
    if (const auto text = context.arguments.value("--smb-port")) {
        const auto port = numberArgument(*text, 1, highestPort);
        if (!port) {
            status = usageError(context, "option --smb-port: " + *text + " is not a port (1 to 65535)");
            return std::nullopt;
        }
        options.smbPort = static_cast<std::uint16_t>(*port);
    }
    if (const auto file = context.arguments.value("--credentials")) {
        options.credentialsFile = *file;
        if (const auto wrong = credentialsTrouble(*file)) {
            context.out.diagnose("cannot use the credentials file", *wrong);
            status = ExitStatus::FileFailed;
            return std::nullopt;
        }
    }
    return options;
}

} // namespace mirovane
