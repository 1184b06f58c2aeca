#include "cli/Commands.h"
#include "cli/Datafiles.h"
#include "cli/OverlaySettings.h"
#include "cli/RecordJson.h"
#include "cli/RegistryCommands.h"
#include "cli/Signals.h"
#include "cli/StationRun.h"
#include "livestat/SystemStepProbes.h"
#include "model/Settings.h"
#include "platform/PosixFiles.h"
#include "platform/qt/IniSettingsStore.h"
#include "platform/qt/QtTimers.h"

#include <QCoreApplication>
#include <QDateTime>

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

constexpr std::int32_t mostSeconds = 2'000'000; ///< 23 days; a timer's milliseconds end soon after
constexpr std::int32_t mostLoops = 1'000'000'000;

/// What may be given as --name N, or why not.
std::optional<UsageError> takeNumber(const Arguments& arguments, std::string_view option, std::int32_t most,
                                     std::optional<std::int32_t>& number) {
    const auto text = arguments.value(option);
    if (!text)
        return std::nullopt;
    number = numberArgument(*text, 1, most);
    if (number)
        return std::nullopt;
    return UsageError{"option " + std::string(option) + ": \"" + *text + "\" is no number from 1 to " +
                      std::to_string(most)};
}

struct StationOptions {
    StationRequest request;
    std::optional<std::int32_t> runSec;
    std::optional<std::int32_t> perRun;
    bool json = false;
};

Result<StationOptions, UsageError> stationOptions(const Arguments& arguments) {
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
          takeNumber(arguments, "--per-run", LiveStatSettings::mostNumPerRun, options.perRun)}) {
        if (error)
            return *error;
    }
    if (options.request.loops && !options.request.liveStat && options.request.now.empty())
        return UsageError{"option --loops: without --live-stat or --now there are no loops to count"};
    return options;
}

/// Settings as this station shall see them. Live Stat starts with the datafile exactly when it was asked for,
/// and may then also replace an owner that fell silent.
void replaceSettings(OverlaySettingsStore& store, const StationOptions& options) {
    store.replace("LSAutoStart", options.request.liveStat ? 1 : 0);
    if (options.runSec)
        store.replace("LSRunSec", *options.runSec);
    if (options.perRun)
        store.replace("LSNumPerRun", *options.perRun);
}

/// Devices that are not there are told before the station touches the datafile.
std::optional<ExitStatus> refuseUnknown(Output& out, const StationRequest& request) {
    if (request.now.empty())
        return std::nullopt;
    const auto content = readDatafile(out, request.path);
    if (!content)
        return ExitStatus::FileFailed;
    for (const std::int32_t recID : request.now) {
        const bool known =
            std::any_of(content->records.begin(), content->records.end(),
                        [&](const auto& record) { return record->isDevice() && record->RecID == recID; });
        if (!known) {
            out.diagnose("option --now", "no device has the RecID " + std::to_string(recID));
            return ExitStatus::No;
        }
    }
    return std::nullopt;
}

/// The line without its date, which is in the locale's form and as long as that form makes it.
std::string_view withoutDate(std::string_view line) {
    constexpr std::string_view separator = " - ";
    const std::size_t at = line.find(separator);
    return at == std::string_view::npos ? line : line.substr(at + separator.size());
}

void printLogLine(Output& out, const std::string& line, bool json) {
    if (json)
        out.printLine(
            jsonLine({{jsonKey("time"), QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)},
                      {jsonKey("message"), jsonText(withoutDate(line))}}));
    else
        out.printLine(printable(line));
    out.flush();
}

ExitStatus runStationWith(CommandContext& context, const StationOptions& options,
                          const RegistryRemoteOptions& registry) {
    std::array<char, 12> name{"mirovanectl"};
    std::array<char*, 2> argv{name.data(), nullptr};
    int argc = 1;
    const QCoreApplication application(argc, argv.data());

    StationRun* run = nullptr;
    const Signals signals([&run](int signal) {
        if (run)
            run->signalled(signal);
    });
    IniSettingsStore user(context.configFolder);
    OverlaySettingsStore store(user);
    CSettings(user).initialise();
    replaceSettings(store, options);
    CSettings settings(store);
    SystemClock clock;
    CMessageLog log(clock);
    log.addListener([&](const std::string& line, bool) { printLogLine(context.out, line, options.json); });
    PosixFiles files;
    QtTimerFactory timers;
    SystemStepProbes probes(registry, thisStation());
    HeadlessDialogs dialogs(context.out, options.request.takeOver);
    CStation station({files, clock, timers, settings, log, dialogs, probes.all(), thisStation()});
    StationRun stationRun(context.out, station, dialogs, options.request);
    run = &stationRun;
    return stationRun.run();
}

} // namespace

ExitStatus runStation(CommandContext& context) {
    const auto options = stationOptions(context.arguments);
    if (!options)
        return usageError(context, options.error().sentence);
    if (const auto refused = refuseUnknown(context.out, options.value().request))
        return *refused;
    ExitStatus status = ExitStatus::Done;
    const auto registry = remoteOptions(context, status);
    return registry ? runStationWith(context, options.value(), *registry) : status;
}

} // namespace mirovane
