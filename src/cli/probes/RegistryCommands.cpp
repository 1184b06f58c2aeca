#include "cli/probes/LookUpSignals.h"
#include "cli/probes/ProbeCommands.h"
#include "cli/probes/RegistryOptions.h"
#include "probes/SystemRegistryProbes.h"
#include "probes/registry/ThisStation.h"

namespace mirovane {

namespace {

constexpr std::array registryOptions{credentialsOption, smbPortOption};

constexpr std::string_view registryDetails =
    "PATH: '\\\\HOST\\HIVE\\KEY\\...\\VALUE', without HOST this computer. HIVE is HKEY_LOCAL_MACHINE,\n"
    "HKEY_USERS, HKEY_CLASSES_ROOT or HKEY_CURRENT_USER; on another computer the current user is the first\n"
    "one logged on there who has the value. A path that ends in \\ names a key's default value.\n"
    "Prints the value's text up to the first zero byte. Exit status 1 when it is not found.\n"
    "The credentials file has the lines \"username = NAME\", \"password = TEXT\" and, for a domain account,\n"
    "\"domain = NAME\"; its mode is 0600. Without --credentials it is samba-credentials beside the settings\n"
    "(~/.config/mirovane); where that is missing too, the user's Kerberos ticket is used.\n"
    "Needs Samba's net (package samba-common-bin).\n";

ExitStatus runRegistry(CommandContext& context) {
    ExitStatus status = ExitStatus::Done;
    const auto options = remoteOptions(context, status);
    if (!options)
        return status;
    const std::string& path = context.arguments.positionals[0];
    const CLookUpSignals signals;
    const StationIdentity station = thisStation();
    CSystemRegistryProbes probes(*options, station);
    std::string value;
    const ProbeAnswer answer = probes.ReadRegistryValue(path, station.computerName, value, signals.token());
    if (answer.isYes()) {
        context.out.printLine(printable(value));
        return ExitStatus::Done;
    }
    context.out.diagnose(printable("cannot read " + path.substr(0, 300)), printable(answer.why));
    return ExitStatus::No;
}

} // namespace

constinit const Command registryCommand{
    .name = "registry",
    .help = "read a value of a computer's registry",
    .usage = "PATH [--credentials FILE] [--smb-port N]",
    .least = 1,
    .most = 1,
    .options = registryOptions,
    .details = registryDetails,
    .run = runRegistry,
};

namespace {

constexpr std::string_view loggedOnDetails =
    "Prints the user's name; of several the first, with their number: anna(2).\n"
    "Exit status 1 when nobody is logged on or the computer cannot be asked.\n"
    "Credentials: as for `mirovanectl registry --help`.\n";

ExitStatus runLoggedOn(CommandContext& context) {
    ExitStatus status = ExitStatus::Done;
    const auto options = remoteOptions(context, status);
    if (!options)
        return status;
    std::string host = context.arguments.positionals[0];
    const std::string shown = printable(host.substr(0, 300));
    if (!host.starts_with("\\\\"))
        host.insert(0, "\\\\");
    const CLookUpSignals signals;
    CSystemRegistryProbes probes(*options, thisStation());
    LoggedOnUser user;
    const ProbeAnswer answer = probes.LookUpLoggedOnUser(host, user, signals.token());
    if (!user.name.empty()) {
        context.out.printLine(printable(user.name));
        return ExitStatus::Done;
    }
    if (answer.isYes())
        context.out.diagnose("nobody is logged on to " + shown);
    else
        context.out.diagnose("cannot ask " + shown, printable(answer.why));
    return ExitStatus::No;
}

} // namespace

constinit const Command loggedOnCommand{
    .name = "loggedon",
    .help = "tell who is logged on to a computer",
    .usage = "HOST [--credentials FILE] [--smb-port N]",
    .least = 1,
    .most = 1,
    .options = registryOptions,
    .details = loggedOnDetails,
    .run = runLoggedOn,
};

} // namespace mirovane
