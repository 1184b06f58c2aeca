#include "cli/station/StationCommand.h"

#include "cli/base/ChosenDevices.h"
#include "cli/base/OverlaySettings.h"
#include "cli/base/RecordJson.h"
#include "cli/base/Signals.h"
#include "cli/probes/RegistryOptions.h"
#include "cli/station/StationRun.h"
#include "model/Settings.h"
#include "platform/files/AbandonableFiles.h"
#include "platform/files/PosixFiles.h"
#include "platform/files/ProgramClaims.h"
#include "platform/files/StateFolder.h"
#include "platform/qt/IniSettingsStore.h"
#include "platform/qt/QtTimers.h"
#include "probes/SystemStepProbes.h"
#include "probes/registry/ThisStation.h"

#include <QCoreApplication>
#include <QDateTime>

#include <array>

namespace mirovane {

namespace {

constexpr std::int32_t mostSeconds = 2'000'000; ///< 23 days; a timer's milliseconds end soon after
constexpr std::int32_t mostLoops = 1'000'000'000;

/// What may be given as --name N, or why not.
std::optional<UsageError> takeNumber(const Arguments& arguments, std::string_view option, std::int32_t most,
                                     std::optional<std::int32_t>& number, std::int32_t least = 1) {
    const auto text = arguments.value(option);
    if (!text)
        return std::nullopt;
    number = numberArgument(*text, least, most);
    if (number)
        return std::nullopt;
    return UsageError{"option " + std::string(option) + ": \"" + *text + "\" is not a number from " +
                      std::to_string(least) + " to " + std::to_string(most)};
}

struct StationOptions {
    StationRequest request;
    std::optional<std::int32_t> runSec;
    std::optional<std::int32_t> perRun;
    std::optional<std::int32_t> confirmOff;
    bool json = false;
};

Result<StationOptions, UsageError> parseOptions(const Arguments& arguments) {
    StationOptions options;
    options.request.path = arguments.positionals[0];
    options.request.liveStat = arguments.has("--live-stat");
    options.request.discover = arguments.has("--discover");
    options.request.takeOver = arguments.has("--take-over");
    options.json = arguments.has("--json");
    const auto recIDs = recordIDArguments(arguments.values("--now"));
    if (!recIDs)
        return recIDs.error();
    options.request.now = recIDs.value();
    for (const auto& error :
         {takeNumber(arguments, "--loops", mostLoops, options.request.loops),
          takeNumber(arguments, "--for", mostSeconds, options.request.seconds),
          takeNumber(arguments, "--run-sec", LiveStatSettings::mostRunSec, options.runSec),
          takeNumber(arguments, "--per-run", LiveStatSettings::mostNumPerRun, options.perRun),
          takeNumber(arguments, "--confirm-off", LiveStatSettings::mostConfirmOff, options.confirmOff, 0)})
        if (error)
            return *error;
    if (options.request.loops && !options.request.liveStat && options.request.now.empty())
        return UsageError{"option --loops: without --live-stat or --now there are no loops to count"};
    return options;
}

/// Settings as this station shall see them. Live Stat starts with the datafile exactly when it was asked for,
/// and may then also replace an owner that fell silent.
void replaceSettings(COverlaySettingsStore& store, const StationOptions& options) {
    store.replace("LSAutoStart", options.request.liveStat ? 1 : 0);
    if (options.runSec)
        store.replace("LSRunSec", *options.runSec);
    if (options.perRun)
        store.replace("LSNumPerRun", *options.perRun);
    if (options.confirmOff)
        store.replace("LSConfirmOff", *options.confirmOff);
}

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

/// Prints each line of the message log as it is written.
class CLogPrinter final : public LogListener {
public:
    CLogPrinter(COutput& out, bool json) : out_(out), json_(json) {}

    void lineLogged(const LogLine& line) override {
        if (json_)
            out_.printLine(
                jsonLine({{jsonKey("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)},
                          {jsonKey("message"), jsonText(line.text)}}));
        else
            out_.printLine(printable(line.shown()));
        out_.flush();
    }

private:
    COutput& out_;
    bool json_;
};

ExitStatus runStationWith(CommandContext& context, const StationOptions& options,
                          const RegistryRemoteOptions& registry) {
    std::array<char, 12> name{"mirovanectl"};
    std::array<char*, 2> argv{name.data(), nullptr};
    int argc = 1;
    const QCoreApplication application(argc, argv.data());

    CStationRun* run = nullptr;
    const CSignals signals([&run](int signal) {
        if (run)
            run->signalled(signal);
    });
    CIniSettingsStore user(context.configFolder);
    COverlaySettingsStore store(user);
    CSettings(user).initialise();
    replaceSettings(store, options);
    CSettings settings(store);
    CSystemClock clock;
    CMessageLog log(clock);
    CLogPrinter printer(context.out, options.json);
    log.addListener(printer);
    CAbandonableFiles files(std::make_shared<CPosixFiles>());
    CQtTimerFactory timers;
    CSystemStepProbes probes(registry, thisStation());
    CHeadlessDialogs dialogs(context.out, options.request.takeOver);
    StationServices services{files, clock, timers, settings, log, dialogs, probes.all(), thisStation()};
    services.stateFolder = stateFolderFor(context.configFolder);
    CFileCalls calls;
    CProgramClaims programs(calls, runtimeFolder());
    services.programs = &programs;
    CStation station(std::move(services));
    CStationRun stationRun(context.out, station, log, dialogs, options.request);
    run = &stationRun;
    return stationRun.run();
}

constexpr std::array stationOptions{
    OptionDefinition{"--live-stat", 0, "", "run Live Stat; without it the station only watches"},
    OptionDefinition{"--discover", 0, "", "run Live Discover over the ranges of the datafile"},
    OptionDefinition{"--take-over", 0, "", "answer Yes when another station runs what is to run here"},
    OptionDefinition{"--now", OptionDefinition::recordIDs, "RECID...",
                     "start with Live Stat Now on these devices"},
    OptionDefinition{"--loops", 1, "N",
                     "end after N loops over the devices (a pass of --now alone counts as one)"},
    OptionDefinition{"--for", 1, "SECONDS", "end after this time"},
    OptionDefinition{"--run-sec", 1, "N", "pause between two runs in seconds, for this station only"},
    OptionDefinition{"--per-run", 1, "N", "device checks per run, for this station only"},
    OptionDefinition{"--confirm-off", 1, "N",
                     "repeat a failed test of a device that is On N times (0 to 5), for this station only"},
    credentialsOption,
    smbPortOption,
    OptionDefinition{"--json", 0, "", "one JSON object a line"},
};

constexpr std::string_view stationDetails =
    "Prints each line of the message log as it is written. SIGTERM and SIGINT end it: Live Stat and Live\n"
    "Discover are switched off and the datafile saved. SIGHUP opens the datafile again. Exit status 4 when\n"
    "another station runs what was asked for and --take-over was not given.\n";

ExitStatus runStation(CommandContext& context) {
    const auto options = parseOptions(context.arguments);
    if (!options)
        return usageError(context, options.error().sentence);
    if (const auto refused = refuseDevices(context.out, options.value().request))
        return *refused;
    ExitStatus status = ExitStatus::Done;
    const auto registry = remoteOptions(context, status);
    return registry ? runStationWith(context, options.value(), *registry) : status;
}

} // namespace

constinit const Command stationCommand{
    .name = "station",
    .help = "run a station without a display",
    .usage = "FILE [--live-stat] [--discover] [--take-over] [--now RECID...] [--loops N] [--for SECONDS] "
             "[--run-sec N]"
             " [--per-run N] [--confirm-off N] [--json]",
    .least = 1,
    .most = 1,
    .options = stationOptions,
    .details = stationDetails,
    .run = runStation,
};

} // namespace mirovane
