#include "cli/base/Datafiles.h"
#include "cli/base/OverlaySettings.h"
#include "cli/base/RecordJson.h"
#include "cli/base/TextTable.h"
#include "cli/discover/DiscoverCommands.h"
#include "cli/discover/SweepRunner.h"
#include "platform/files/PosixFiles.h"
#include "platform/qt/IniSettingsStore.h"
#include "platform/qt/QtTimers.h"
#include "probes/SystemStepProbes.h"
#include "probes/SystemSweepProbes.h"
#include "probes/registry/ThisStation.h"
#include "station/Station.h"

#include <QCoreApplication>
#include <QJsonObject>

#include <algorithm>
#include <array>

namespace mirovane {

namespace {

struct SweepRequest {
    std::string path;
    int perSecond = usualSweepRate;
    bool dryRun = false;
    bool takeOver = false;
    bool json = false;
    bool yes = false;
};

Result<SweepRequest, UsageError> sweepRequest(const CommandContext& context) {
    const Arguments& arguments = context.arguments;
    SweepRequest request;
    request.path = arguments.positionals[0];
    request.dryRun = arguments.has("--dry-run");
    request.takeOver = arguments.has("--take-over");
    request.json = arguments.has("--json");
    request.yes = arguments.has("--yes");
    if (const auto text = arguments.value("--rate")) {
        const auto rate = numberArgument(*text, leastSweepRate, mostSweepRate);
        if (!rate)
            return UsageError{"option --rate: \"" + text->substr(0, 60) + "\" is not a number from " +
                              std::to_string(leastSweepRate) + " to " + std::to_string(mostSweepRate)};
        request.perSecond = *rate;
        return request;
    }
    CIniSettingsStore store(context.configFolder);
    request.perSecond = readSweepRate(CSettings(store));
    return request;
}

std::string sentence(const std::string& path, const std::string& why) {
    return "cannot discover with " + path + ": " + why;
}

/// What to do about a document that cannot be swept, behind why.
std::string withRemedy(const StartRefusal& why, const std::string& path) {
    if (why.kind != StartRefusal::Kind::NoRanges && why.kind != StartRefusal::Kind::InvalidRange)
        return why.text;
    return why.text + " (mirovanectl ranges " + path + " lists and changes the ranges)";
}

std::optional<ExitStatus> refuseLongSweep(COutput& out, const SweepRequest& request, const CSweepPlan& plan) {
    const auto warning = sweepWarning(plan, request.perSecond);
    if (!warning || request.yes)
        return std::nullopt;
    out.diagnose(sentence(request.path, *warning + " (--yes does it, --rate N changes the pace)"));
    return ExitStatus::Usage;
}

/// What would be asked, from the file as it is. On failure the status says how the command ends.
Result<CSweepPlan, ExitStatus> readPlan(COutput& out, const SweepRequest& request) {
    Result<CSweepPlan, StartRefusal> plan{CSweepPlan()};
    const ExitStatus status = viewDatafile(
        out, request.path, [&plan](const CMirovaneDoc& document) { plan = planSweep(document); });
    if (status != ExitStatus::Done)
        return status;
    if (!plan) {
        out.diagnose(sentence(request.path, withRemedy(plan.error(), request.path)));
        return ExitStatus::No;
    }
    if (const auto refused = refuseLongSweep(out, request, plan.value()))
        return *refused;
    return plan.value();
}

/// One line or object per host. Without a record ID on a dry run.
void printHosts(COutput& out, const std::vector<SweepResult::Added>& hosts, const SweepRequest& request) {
    if (request.json) {
        CJsonArrayPrinter printer(out);
        for (const SweepResult::Added& one : hosts) {
            QJsonObject object{{jsonKey("IPAddress"), jsonText(formatRangeAddress(one.host.address))},
                               {jsonKey("Name"), jsonText(one.host.name)}};
            if (!request.dryRun)
                object.insert(jsonKey("RecID"), one.recID);
            printer.add(object);
        }
        printer.end();
        return;
    }
    if (hosts.empty())
        return;
    std::vector<TableColumn> columns{{"IP Address", 0}, {"Name", 1}};
    if (!request.dryRun)
        columns.push_back({"RecID", 2, true});
    CTextTable table(std::move(columns));
    for (const SweepResult::Added& one : hosts) {
        std::vector<std::string> cells{formatRangeAddress(one.host.address), printable(one.host.name)};
        if (!request.dryRun)
            cells.push_back(std::to_string(one.recID));
        table.addRow(std::move(cells));
    }
    table.print(out);
}

ExitStatus report(COutput& out, const SweepRequest& request, const SweepResult& result) {
    printHosts(out, result.added, request);
    const bool smooth = result.complete && result.progress.failed == 0 && !result.datafileFull &&
                        !result.saveFailed && !result.added.empty();
    if (!smooth || out.showsProgress())
        out.diagnose("sweep of " + request.path, describeResult(result));
    if (result.saveFailed || result.datafileFull)
        return ExitStatus::FileFailed;
    if (result.takenOver)
        return ExitStatus::Refused;
    return result.complete && !result.added.empty() ? ExitStatus::Done : ExitStatus::No;
}

ExitStatus dryRun(CommandContext& context, const SweepRequest& request, CSweepPlan plan,
                  CInterrupt& interrupt) {
    CSystemHostProbes probes;
    CSystemSweepProbes network(probes);
    if (const auto reason = network.echoUnusable()) {
        context.out.diagnose(sentence(request.path, *reason));
        return ExitStatus::No;
    }
    const CSystemClock clock;
    SweepOptions options;
    options.perSecond = request.perSecond;
    CSweep sweep(std::move(plan), options, network, clock);
    const SweepResult result = runDrySweep(context.out, sweep, interrupt);
    return report(context.out, request, result);
}

/// Answers the station's questions, because there is nobody to ask.
class CSweepDialogs final : public StationDialogs {
public:
    CSweepDialogs(COutput& out, bool takeOver) : out_(out), takeOver_(takeOver) {}

    bool ask(const Question& question) override {
        if (!takeOver_)
            out_.diagnose("the sweep is not run here",
                          "answered No to \"" + question.text + "\" (--take-over answers Yes)");
        return takeOver_;
    }
    void fail(const std::string& text) override { out_.diagnose(text); }

private:
    COutput& out_;
    bool takeOver_;
};

ExitStatus sweepInto(CommandContext& context, const SweepRequest& request, CInterrupt& interrupt) {
    CIniSettingsStore user(context.configFolder);
    COverlaySettingsStore store(user);
    store.replace("LSAutoStart", 0);
    CSettings settings(store);
    CSystemClock clock;
    CMessageLog log(clock);
    CPosixFiles files;
    CQtTimerFactory timers;
    CSystemStepProbes probes({}, thisStation());
    CSystemSweepProbes network(probes.hosts());
    CSweepDialogs dialogs(context.out, request.takeOver);
    CStation station({files, clock, timers, settings, log, dialogs, probes.all(), thisStation(), false,
                      nullptr, nullptr, &network});
    if (const auto error = station.openDatafile(request.path)) {
        diagnoseUnreadable(context.out, request.path, *error);
        return ExitStatus::FileFailed;
    }
    if (const auto reason = station.features().discoverNow()->start(request.perSecond)) {
        if (reason->kind == StartRefusal::Kind::OwnerElsewhere)
            return ExitStatus::Refused;
        context.out.diagnose(sentence(request.path, withRemedy(*reason, request.path)));
        return ExitStatus::No;
    }
    const SweepResult result = runSweepOn(context.out, *station.features().discoverNow(), interrupt);
    const std::optional<FileError> saveError = result.saveFailed ? station.watch().lastError() : std::nullopt;
    const std::optional<FileError> endError = station.shutDown();
    if (endError || saveError)
        context.out.diagnose(endError ? endError->sentence : saveError->sentence);
    return report(context.out, request, result);
}

constexpr std::array sweepOptions{
    OptionDefinition{"--dry-run", 0, "", "print what answers and is new; write nothing at all"},
    OptionDefinition{"--rate", 1, "N", "probes a second, 1 to 10000 (usually 500)"},
    OptionDefinition{"--take-over", 0, "", "answer Yes when another station runs Live Discover"},
    OptionDefinition{"--yes", 0, "", "also where it takes more than ten minutes"},
    OptionDefinition{"--json", 0, "", "an array of objects: IPAddress, Name, RecID"},
};

constexpr std::string_view sweepDetails =
    "Asks every address of the ranges (mirovanectl ranges) that no device has, once, and adds the hosts\n"
    "that answer to the Discovered/Misc window, with one save at the end. SIGINT and SIGTERM end it: what\n"
    "was found until then is added.\n"
    "Exit status 1 when nothing new is found or the sweep did not reach its end, 4 when another station\n"
    "runs Live Discover and --take-over was not given.\n";

ExitStatus runSweep(CommandContext& context) {
    const auto request = sweepRequest(context);
    if (!request)
        return usageError(context, request.error().sentence);
    auto plan = readPlan(context.out, request.value());
    if (!plan)
        return plan.error();
    std::array<char, 12> name{"mirovanectl"};
    std::array<char*, 2> argv{name.data(), nullptr};
    int argc = 1;
    const QCoreApplication application(argc, argv.data());
    CInterrupt interrupt;
    return request.value().dryRun ? dryRun(context, request.value(), std::move(plan.value()), interrupt)
                                  : sweepInto(context, request.value(), interrupt);
}

} // namespace

constinit const Command sweepCommand{
    .name = "sweep",
    .help = "ask all Live Discover ranges at once and add who answers",
    .usage = "FILE [--dry-run] [--rate N] [--take-over] [--yes] [--json]",
    .least = 1,
    .most = 1,
    .options = sweepOptions,
    .details = sweepDetails,
    .run = runSweep,
};

} // namespace mirovane
