#include "cli/RegistryCommands.h"

#include "cli/LookUpSignals.h"
#include "platform/Host.h"
#include "platform/qt/ConfigFolder.h"
#include "probes/RegistryPath.h"
#include "probes/SystemRegistryProbes.h"

#include <optional>

namespace mirovane {

namespace {

constexpr int highestPort = 65535;

std::string reason(const SystemRegistryProbes& probes) {
    const std::string trouble = probes.lastTrouble();
    return trouble.empty() ? "there is no such key or value" : trouble;
}

std::string reason(const SystemRegistryProbes& probes, const std::string& path) {
    if (registryRoot(splitRegistryPath(path, {}).hive))
        return reason(probes);
    return "its hive is none of HKEY_LOCAL_MACHINE, HKEY_USERS, HKEY_CLASSES_ROOT and HKEY_CURRENT_USER";
}

} // namespace

std::optional<RegistryRemoteOptions> remoteOptions(CommandContext& context, ExitStatus& status) {
    RegistryRemoteOptions options;
    options.credentialsFile = usualCredentialsFile(context.configFolder);
    if (const auto text = context.arguments.value("--smb-port")) {
        const auto port = numberArgument(*text, 1, highestPort);
        if (!port) {
            status = usageError(context, "option --smb-port: " + *text + " is no port (1 to 65535)");
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

ExitStatus runRegistry(CommandContext& context) {
    ExitStatus status = ExitStatus::Done;
    const auto options = remoteOptions(context, status);
    if (!options)
        return status;
    const std::string& path = context.arguments.positionals[0];
    const LookUpSignals signals;
    const StationIdentity station = thisStation();
    SystemRegistryProbes probes(*options, station);
    const auto value = probes.ReadRegistryValue(path, station.computerName, signals.token());
    if (value) {
        context.out.printLine(printable(*value));
        return ExitStatus::Done;
    }
    context.out.diagnose(printable("cannot read " + path.substr(0, 300)), printable(reason(probes, path)));
    return ExitStatus::No;
}

ExitStatus runLoggedOn(CommandContext& context) {
    ExitStatus status = ExitStatus::Done;
    const auto options = remoteOptions(context, status);
    if (!options)
        return status;
    std::string host = context.arguments.positionals[0];
    const std::string shown = printable(host.substr(0, 300));
    if (!host.starts_with("\\\\"))
        host.insert(0, "\\\\");
    const LookUpSignals signals;
    SystemRegistryProbes probes(*options, thisStation());
    const LoggedOnUser user = probes.LookUpLoggedOnUser(host, signals.token());
    if (!user.name.empty()) {
        context.out.printLine(printable(user.name));
        return ExitStatus::Done;
    }
    if (user.reached)
        context.out.diagnose("nobody is logged on to " + shown);
    else
        context.out.diagnose("cannot ask " + shown, printable(reason(probes)));
    return ExitStatus::No;
}

} // namespace mirovane
