#include "cli/station/StationCommand.h"

#include "cli/base/ChosenDevices.h"
#include "cli/base/Datafiles.h"
#include "cli/base/Signals.h"
#include "cli/probes/RegistryOptions.h"
#include "cli/station/StationOptionTable.h"
#include "cli/station/StationRun.h"
#include "platform/files/AbandonableFiles.h"
#include "platform/files/PosixFiles.h"
#include "platform/files/ProgramClaims.h"
#include "platform/files/StateFolder.h"
#include "platform/qt/QtTimers.h"
#include "probes/SystemStepProbes.h"
#include "probes/registry/ThisStation.h"

#include <QCoreApplication>

#include <array>

namespace mirovane {

namespace {

/// Devices that cannot be meant are refused before the station touches the datafile.
std::optional<ExitStatus> refuseDevices(COutput& out, const StationRequest& request) {
    if (request.now.empty())
        return std::nullopt;
    const auto content = readDatafile(out, request.path);
    if (!content)
        return ExitStatus::FileFailed;
    const auto chosen = chosenDevices(content->records, request.now, "option --now", request.path);
    if (chosen)
        return std::nullopt;
    out.diagnose(chosen.error().sentence);
    return chosen.error().status;
}

ExitStatus runStationWith(CommandContext& context, const CStationConfiguration& configuration,
                          const StationOptions& options, const RegistryRemoteOptions& registry) {
    const CServiceManager manager = CServiceManager::fromEnvironment();
    std::array<char, 12> name{"mirovanectl"};
    std::array<char*, 2> argv{name.data(), nullptr};
    int argc = 1;
    const QCoreApplication application(argc, argv.data());

    CStationRun* run = nullptr;
    const CSignals signals([&run](int signal) {
        if (run)
            run->signalled(signal);
    });
    CStationSettings settings(context.configFolder);
    settings.take(options);
    CSystemClock clock;
    CMessageLog log(clock);
    CLogPrinter printer(context.out);
    printer.take(options);
    log.addListener(printer);
    CAbandonableFiles files(std::make_shared<CPosixFiles>());
    CQtTimerFactory timers;
    CSystemStepProbes probes(registry, thisStation());
    CHeadlessDialogs dialogs(context.out, options.request.takeOver);
    StationServices services{files, clock,   timers,       settings.settings(),
                             log,   dialogs, probes.all(), thisStation()};
    services.stateFolder = stateFolderFor(context.configFolder);
    CFileCalls calls;
    CProgramClaims programs(calls, runtimeFolder());
    services.programs = &programs;
    CStation station(std::move(services));
    CServiceReport report(manager, timers);
    CStationMetrics metrics(station, log, clock, timers);
    CStationRun stationRun(
        {context.out, station, log, printer, dialogs, configuration, settings, metrics, report}, options);
    run = &stationRun;
    return stationRun.run();
}

constexpr std::string_view stationDetails =
    "Prints each line of the message log as it is written. SIGTERM and SIGINT end it: Live Stat and Live\n"
    "Discover are switched off and the datafile saved. Exit status 4 when another station runs what was\n"
    "asked for and --take-over was not given.\n"
    "\n"
    "CONF holds a NAME=VALUE on each line: datafile, and each of the options above but --now, --loops, "
    "--for,\n"
    "--settings and --json, without its dashes; those without a value are set by yes or no. What the "
    "command\n"
    "line says counts. SIGHUP reads CONF again and changes what it says by now; the datafile is left only "
    "for\n"
    "another one. Without --settings SIGHUP opens the datafile again.\n"
    "\n"
    "A service manager that listens (NOTIFY_SOCKET) is told when the station is ready, what it does, when "
    "it\n"
    "reads its settings and when it ends, and gets its signs of life (WATCHDOG_USEC).\n";

ExitStatus runStation(CommandContext& context) {
    const CStationConfiguration configuration(context.arguments);
    const auto read = configuration.read();
    if (!read) {
        context.out.diagnose(read.error().sentence);
        return read.error().status;
    }
    if (const auto refused = refuseDevices(context.out, read.value().options.request))
        return *refused;
    ExitStatus status = ExitStatus::Done;
    context.arguments = read.value().arguments;
    const auto registry = remoteOptions(context, status);
    return registry ? runStationWith(context, configuration, read.value().options, *registry) : status;
}

} // namespace

constinit const Command stationCommand{
    .name = "station",
    .help = "run a station without a display",
    .usage = "[FILE] [--live-stat] [--discover] [--take-over] [--now RECID...] [--loops N] [--for SECONDS] "
             "[--run-sec N] [--per-run N] [--confirm-off N] [--export OUT] [--metrics OUT.prom] "
             "[--settings CONF] [--log WEIGHT] [--json]",
    .least = 0,
    .most = 1,
    .options = stationOptions,
    .details = stationDetails,
    .run = runStation,
};

} // namespace mirovane
