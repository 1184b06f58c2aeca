#include "cli/base/ChosenDevices.h"
#include "cli/base/RecordJson.h"
#include "cli/livestat/LiveStatCommands.h"
#include "cli/probes/LookUpSignals.h"
#include "cli/probes/RegistryOptions.h"
#include "livestat/steps/Engine.h"
#include "livestat/steps/RowTrial.h"
#include "probes/SystemStepProbes.h"
#include "probes/registry/ThisStation.h"

#include <QJsonArray>

#include <algorithm>
#include <numeric>
#include <sstream>

namespace mirovane {

namespace {

/// Who is tried, and which rows; all rows that do something when none is named.
struct TrialRequest {
    std::int32_t recID = 0;
    std::vector<int> rows;
};

Result<TrialRequest, UsageError> trialRequest(const std::vector<std::string>& words) {
    TrialRequest request;
    const auto recIDs = recordIDArguments(std::span(words).subspan(1, 1));
    if (!recIDs)
        return recIDs.error();
    request.recID = recIDs.value().front();
    for (const std::string& word : std::span(words).subspan(2)) {
        const auto row = criteriaRowArgument(word);
        if (!row)
            return UsageError{"unknown row \"" + word + "\": give 0 to 11 or the row's label"};
        request.rows.push_back(*row);
    }
    return request;
}

std::vector<StepInput> inputsFor(const CMirovaneDoc& document, const CHardware& device,
                                 const TrialRequest& request, const std::stop_token& stop) {
    std::vector<int> rows = request.rows;
    if (rows.empty()) {
        rows.resize(criteriaRowCount);
        std::iota(rows.begin(), rows.end(), 0);
    }
    std::vector<StepInput> inputs;
    for (const int row : rows) {
        StepInput input = trialInput(document, device, row, stop);
        if (!request.rows.empty() || isAction(input.criteria.Command))
            inputs.push_back(std::move(input));
    }
    return inputs;
}

std::string changeText(const RowTrial::Change& change) {
    const std::string was = change.before.empty() ? " (was empty)" : " (was: " + change.before + ")";
    return change.field + (change.after.empty() ? " emptied" : ": " + change.after) + was;
}

void printText(COutput& out, const RowTrial& trial) {
    const auto line = [&out](std::string_view label, std::string_view bytes) {
        out.printLine("  " + std::string(label) + printable(bytes));
    };
    out.printLine(std::to_string(trial.row) + " " + std::string(criteriaRowLabel(trial.row)) + ": " +
                  printable(trial.command.empty() ? "no action" : trial.command));
    if (!trial.expandedArgument.empty())
        line("argument: ", trial.expandedArgument);
    if (!trial.expandedPattern.empty())
        line("pattern:  ", trial.expandedPattern);
    std::istringstream answer(trial.answer);
    for (std::string each; std::getline(answer, each);)
        line("answer:   ", each);
    line("outcome:  ", outcomeText(trial));
    for (const RowTrial::Change& change : trial.changes)
        line("writes:   ", changeText(change));
    if (trial.acted && !trial.cancelled && trial.changes.empty())
        line("writes:   ", "nothing: it is so already");
}

QJsonObject trialObject(const RowTrial& trial) {
    QJsonArray changes;
    for (const RowTrial::Change& change : trial.changes)
        changes.append(QJsonObject{{jsonKey("Field"), jsonText(change.field)},
                                   {jsonKey("Before"), jsonText(change.before)},
                                   {jsonKey("After"), jsonText(change.after)}});
    return {{jsonKey("Row"), trial.row},
            {jsonKey("Label"), jsonText(criteriaRowLabel(trial.row))},
            {jsonKey("Command"), jsonText(trial.command)},
            {jsonKey("Argument"), jsonText(trial.expandedArgument)},
            {jsonKey("SearchFor"), jsonText(trial.expandedPattern)},
            {jsonKey("ConditionAllows"), trial.conditionAllows},
            {jsonKey("PassedOver"), trial.passedOver},
            {jsonKey("Answer"), jsonText(trial.answer)},
            {jsonKey("Acted"), trial.acted},
            {jsonKey("Failed"), trial.acted && trial.failed},
            {jsonKey("CouldNotAsk"), trial.couldNotAsk},
            {jsonKey("Changes"), changes}};
}

ExitStatus tryAll(CommandContext& context, const std::vector<StepInput>& inputs, const StepProbes& probes) {
    const CSystemClock clock;
    const bool json = context.arguments.has("--json");
    CJsonArrayPrinter printer(context.out);
    ExitStatus status = ExitStatus::Done;
    for (const StepInput& input : inputs) {
        if (input.stop.stop_requested())
            break;
        const RowTrial trial = tryRow(input, probes, clock);
        if ((trial.acted && trial.failed) || trial.couldNotAsk)
            status = ExitStatus::No;
        if (json)
            printer.add(trialObject(trial));
        else
            printText(context.out, trial);
        context.out.flush();
    }
    if (json)
        printer.end();
    return status;
}

constexpr std::array testOptions{
    OptionDefinition{"--json", 0, "", "an array of objects, one for each row"},
    credentialsOption,
    smbPortOption,
};

constexpr std::string_view testDetails =
    "Runs the rows as Live Stat does, by the fields and the state that the device has in FILE, and writes\n"
    "nothing. ROW is a number from 0 to 11 or a label; without one every row that does something is tried.\n"
    "A text file is searched even when it has not changed since Live Stat searched it.\n"
    "A failed test of a device that is On is not repeated here.\n"
    "Exit status 1 when a row that ran found no match or could not ask, or no device has that RECID.\n";

ExitStatus runTest(CommandContext& context) {
    ExitStatus status = ExitStatus::Done;
    const auto request = trialRequest(context.arguments.positionals);
    if (!request)
        return usageError(context, request.error().sentence);
    const auto registry = remoteOptions(context, status);
    if (!registry)
        return status;
    const CLookUpSignals signals;
    const std::string& path = context.arguments.positionals[0];
    std::optional<EditRefusal> refusal;
    std::vector<StepInput> inputs;
    const ExitStatus read = viewDatafile(context.out, path, [&](const CMirovaneDoc& document) {
        const auto chosen = chosenDevices(document, {&request.value().recID, 1}, "cannot test a row", path);
        if (chosen)
            inputs = inputsFor(document, *chosen.value().front(), request.value(), signals.token());
        else
            refusal = chosen.error();
    });
    if (read != ExitStatus::Done)
        return read;
    if (refusal) {
        context.out.diagnose(refusal->sentence);
        return refusal->status;
    }
    CSystemStepProbes probes(*registry, thisStation());
    return tryAll(context, inputs, probes.all());
}

} // namespace

constinit const Command testCommand{
    .name = "test",
    .help = "try criteria rows for a device and change nothing",
    .usage = "FILE RECID [ROW...] [--json] [--credentials FILE] [--smb-port N]",
    .least = 2,
    .most = anyNumber,
    .options = testOptions,
    .details = testDetails,
    .run = runTest,
};

} // namespace mirovane
