#include "applications/ApplicationStarter.h"

#include "platform/process/Terminal.h"

#include <map>

namespace mirovane {

namespace {

constexpr const char* browserOpener = "xdg-open";

std::string devices(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " device" : " devices");
}

/// "pc-1", "pc-1 and 3 more".
std::string concerned(const ApplicationRun::Refusal& refusal) {
    if (refusal.devices <= 1)
        return refusal.device;
    return refusal.device + " and " + std::to_string(refusal.devices - 1) + " more";
}

std::string whyNot(const std::string& program, const std::error_code& error) {
    const bool lookedUp = program.find('/') == std::string::npos;
    if (error == std::errc::no_such_file_or_directory && lookedUp)
        return "no program \"" + program + "\" is installed here";
    return "\"" + program + "\": " + error.message();
}

} // namespace

CApplicationStarter::Ready CApplicationStarter::makeReady(ProgramPlace place) const {
    if (place == ProgramPlace::Browser)
        return {{browserOpener}, {}};
    if (place == ProgramPlace::OwnWindow)
        return {};
    Ready ready;
    ready.before =
        splitCommandLine(parts_.settings.store().readText(terminalSetting).value_or(std::string()));
    if (ready.before.empty())
        ready.before = installedTerminal();
    if (ready.before.empty())
        ready.problem = "no terminal program was found; install one, or name it under Add Applications";
    else if (parts_.terminalRunner.empty())
        ready.problem = "this system does not tell where Mirovane is, which has to run in the terminal";
    return ready;
}

std::vector<std::string> CApplicationStarter::wordsFor(ProgramPlace place, const Ready& ready,
                                                       const ProgramWords& words) const {
    if (place == ProgramPlace::Terminal)
        return commandInTerminal(ready.before, parts_.terminalRunner, words);
    std::vector<std::string> all = ready.before;
    all.insert(all.end(), words.begin(), words.end());
    return all;
}

void CApplicationStarter::start(const std::string& name, const ApplicationRun& run) {
    const Ready ready = makeReady(run.place);
    std::size_t started = 0;
    std::map<std::string, std::size_t> failures;
    for (const ProgramWords& words : run.starts) {
        if (!ready.problem.empty()) {
            ++failures[ready.problem];
            continue;
        }
        const std::vector<std::string> command = wordsFor(run.place, ready, words);
        if (const std::error_code error = parts_.launcher.start(command))
            ++failures[whyNot(command.front(), error)];
        else
            ++started;
    }
    const std::string quoted = '"' + name + '"';
    for (const ApplicationRun::Refusal& refusal : run.refusals)
        say("Did not start " + quoted, concerned(refusal), refusal.reason);
    for (const auto& [reason, count] : failures)
        say("Could not start " + quoted, devices(count), reason);
    if (started > 0)
        say("Started " + quoted, devices(started), {});
}

void CApplicationStarter::say(std::string line, const std::string& whom, const std::string& reason) {
    line.append(" for ").append(whom);
    if (!reason.empty())
        line.append(": ").append(reason);
    parts_.log.LogMessage(line, true);
}
} // namespace mirovane
