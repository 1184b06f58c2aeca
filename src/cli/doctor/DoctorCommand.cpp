#include "cli/doctor/DoctorCommand.h"

#include "cli/base/RecordJson.h"
#include "cli/doctor/Doctor.h"
#include "cli/probes/RegistryOptions.h"
#include "platform/files/FilePaths.h"
#include "platform/files/ProgramClaims.h"
#include "platform/files/StateFolder.h"
#include "platform/process/ProcessRun.h"
#include "platform/process/Terminal.h"
#include "platform/qt/ConfigFolder.h"

#include <algorithm>
#include <array>
#include <unistd.h>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds patience{6000}; ///< a look-up takes five to fail
constexpr std::chrono::seconds programPatience{4};

std::optional<std::string> firstLineOf(const std::vector<std::string>& words) {
    ProcessRequest request;
    request.words = words;
    request.deadline = std::chrono::steady_clock::now() + programPatience;
    const ProcessResult result = runProcess(request);
    if (result.end != ProcessEnd::Exited || result.exitStatus != 0)
        return std::nullopt;
    return printable(result.output.substr(0, result.output.find('\n')));
}

std::shared_ptr<DoctorPlaces> placesHere(CommandContext& context, RegistryRemoteOptions registry) {
    auto places = std::make_shared<DoctorPlaces>();
    if (!context.arguments.positionals.empty())
        places->datafile = absolutePath(context.arguments.positionals[0]);
    places->stateFolder = stateFolderFor(context.configFolder);
    places->runtimeFolder = runtimeFolder();
    places->program = ownProgramPath();
    places->registry = std::move(registry);
    places->desktop = access((folderOf(places->program) + "/mirovane").c_str(), X_OK) == 0;
    places->icons = {MIROVANE_INSTALLED_ICONS, MIROVANE_SOURCE_ICONS};
    places->now = std::chrono::system_clock::now();
    places->openEcho = openEchoSocket;
    places->names = systemNameService();
    places->ask = firstLineOf;
    return places;
}

struct StateWords {
    std::string_view shown;
    std::string_view name; ///< in JSON
};

StateWords wordsOf(CheckResult::State state) {
    switch (state) {
    case CheckResult::State::Works:
        return {"ok", "works"};
    case CheckResult::State::Note:
        return {"note", "note"};
    case CheckResult::State::Fails:
        break;
    }
    return {"FAILS", "fails"};
}

void printFinding(COutput& out, const Finding& finding) {
    constexpr std::size_t stateColumn = 7;
    constexpr std::size_t nameColumn = 17;
    std::string state(wordsOf(finding.result.state).shown);
    std::string name(finding.check);
    state.resize(stateColumn, ' ');
    name.resize(nameColumn, ' ');
    out.printLine(state + name + printable(finding.result.says));
    if (!finding.result.mend.empty())
        out.printLine(std::string(stateColumn + nameColumn, ' ') + "-> " + printable(finding.result.mend));
}

void printJson(COutput& out, const std::vector<Finding>& findings) {
    CJsonArrayPrinter array(out);
    for (const Finding& finding : findings)
        array.add({{jsonKey("check"), jsonKey(finding.check)},
                   {jsonKey("state"), jsonKey(wordsOf(finding.result.state).name)},
                   {jsonKey("says"), jsonText(finding.result.says)},
                   {jsonKey("mend"), jsonText(finding.result.mend)}});
    array.end();
}

constexpr std::array doctorOptions{credentialsOption, jsonOption};

constexpr std::string_view doctorDetails =
    "A line for each thing: ok, note (not there, and only some need it) or FAILS, and behind -> the one "
    "line\n"
    "that mends it. Without FILE the datafile and its folder are left out; without the window its fonts,\n"
    "icons and terminal. Beside FILE a small file is made, locked, replaced and removed. No check takes\n"
    "longer than six seconds. Exit status 1 when something fails.\n";

ExitStatus runDoctor(CommandContext& context) {
    RegistryRemoteOptions registry;
    registry.credentialsFile =
        context.arguments.value("--credentials").value_or(usualCredentialsFile(context.configFolder));
    const std::vector<Finding> findings = examine(placesHere(context, std::move(registry)), patience);
    if (context.arguments.has("--json"))
        printJson(context.out, findings);
    else
        for (const Finding& finding : findings)
            printFinding(context.out, finding);
    const bool fails = std::ranges::any_of(
        findings, [](const Finding& finding) { return finding.result.state == CheckResult::State::Fails; });
    return fails ? ExitStatus::No : ExitStatus::Done;
}

} // namespace

constinit const Command doctorCommand{
    .name = "doctor",
    .help = "say what works on this computer and with a datafile, and what mends the rest",
    .usage = "[FILE] [--credentials FILE] [--json]",
    .least = 0,
    .most = 1,
    .options = doctorOptions,
    .details = doctorDetails,
    .run = runDoctor,
};

} // namespace mirovane
