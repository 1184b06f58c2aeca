#include "cli/Commands.h"
#include "cli/Datafiles.h"
#include "cli/OverlaySettings.h"
#include "cli/RecordJson.h"
#include "cli/SweepRunner.h"
#include "cli/TextTable.h"
#include "livestat/SystemStepProbes.h"
#include "platform/PosixFiles.h"
#include "platform/qt/IniSettingsStore.h"
#include "platform/qt/QtTimers.h"
#include "probes/SystemSweepProbes.h"
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
            return UsageError{"option --rate: \"" + text->substr(0, 60) + "\" is no number from " +
                              std::to_string(leastSweepRate) + " to " + std::to_string(mostSweepRate)};
        request.perSecond = *rate;
        return request;
    }
    IniSettingsStore store(context.configFolder);
    request.perSecond = readSweepRate(CSettings(store));
    return request;
}

std::string sentence(const std::string& path, const std::string& why) {
    return "cannot discover with " + path + ": " + why;
}

/// What to do about a document that cannot be swept, behind why.
std::string withRemedy(const std::string& why, const std::string& path) {
    if (why.find("IP range") == std::string::npos && !why.starts_with(invalidRangeText))
        return why;
    return why + " (mirovanectl ranges " + path + " lists and changes the ranges)";
}

std::optional<ExitStatus> refuseLongSweep(Output& out, const SweepRequest& request, const SweepPlan& plan) {
    const auto warning = sweepWarning(plan, request.perSecond);
    if (!warning || request.yes)
        return std::nullopt;
    out.diagnose(sentence(request.path, *warning + " (--yes does it, --rate N changes the pace)"));
    return ExitStatus::Usage;
}

/// What would be asked, from the file as it is. On failure the status says how the command ends.
Result<SweepPlan, ExitStatus> readPlan(Output& out, const SweepRequest& request) {
    Result<SweepPlan, std::string> plan{std::string()};
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
void printHosts(Output& out, const std::vector<SweepResult::Added>& hosts, const SweepRequest& request) {
    if (request.json) {
        JsonArrayPrinter printer(out);
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
    TextTable table(std::move(columns));
    for (const SweepResult::Added& one : hosts) {
        std::vector<std::string> cells{formatRangeAddress(one.host.address), printable(one.host.name)};
        if (!request.dryRun)
            cells.push_back(std::to_string(one.recID));
        table.addRow(std::move(cells));
    }
    table.print(out);
}

ExitStatus report(Output& out, const SweepRequest& request, const SweepResult& result) {
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

ExitStatus dryRun(CommandContext& context, const SweepRequest& request, SweepPlan plan,
                  Interrupt& interrupt) {
    SystemHostProbes probes;
    SystemSweepProbes network(probes);
    if (const auto reason = network.echoUnusable()) {
        context.out.diagnose(sentence(request.path, *reason));
        return ExitStatus::No;
    }
    const SystemClock clock;
    SweepOptions options;
    options.perSecond = request.perSecond;
    CSweep sweep(std::move(plan), options, network, clock);
    const SweepResult result = runDrySweep(context.out, sweep, interrupt);
    return report(context.out, request, result);
}

/// Answers the station's questions when nobody sits there.
class SweepDialogs final : public StationDialogs {
public:
    SweepDialogs(Output& out, bool takeOver) : out_(out), takeOver_(takeOver) {}

    bool ask(const std::string& question) override {
        if (!takeOver_)
            out_.diagnose("the sweep is not run here",
                          "answered No to \"" + question + "\" (--take-over answers Yes)");
        return takeOver_;
    }
    void fail(const std::string& text) override { out_.diagnose(text); }

private:
    Output& out_;
    bool takeOver_;
};

ExitStatus sweepInto(CommandContext& context, const SweepRequest& request, Interrupt& interrupt) {
    IniSettingsStore user(context.configFolder);
    OverlaySettingsStore store(user);
    store.replace("LSAutoStart", 0);
    CSettings settings(store);
    SystemClock clock;
    CMessageLog log(clock);
    std::string lastError;
    log.addListener([&lastError](const std::string& line, bool) {
        if (const auto at = line.find(" - Error"); at != std::string::npos)
            lastError = line.substr(at + 3);
    });
    PosixFiles files;
    QtTimerFactory timers;
    SystemStepProbes probes({}, thisStation());
    SystemSweepProbes network(probes.hosts());
    SweepDialogs dialogs(context.out, request.takeOver);
    CStation station({files, clock, timers, settings, log, dialogs, probes.all(), thisStation(), false,
                      nullptr, nullptr, &network});
    if (const auto error = station.openDatafile(request.path)) {
        diagnoseUnreadable(context.out, request.path, *error);
        return ExitStatus::FileFailed;
    }
    if (const auto reason = station.discoverNow()->start(request.perSecond)) {
        if (reason->empty())
            return ExitStatus::Refused;
        context.out.diagnose(sentence(request.path, withRemedy(*reason, request.path)));
        return ExitStatus::No;
    }
    const SweepResult result = runSweepOn(context.out, *station.discoverNow(), interrupt);
    const auto error = station.shutDown();
    if ((result.saveFailed || error) && !lastError.empty())
        context.out.diagnose(lastError);
    return report(context.out, request, result);
}

} // namespace

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
    Interrupt interrupt;
    return request.value().dryRun ? dryRun(context, request.value(), std::move(plan.value()), interrupt)
                                  : sweepInto(context, request.value(), interrupt);
}

} // namespace mirovane
