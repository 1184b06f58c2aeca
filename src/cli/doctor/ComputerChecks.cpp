#include "cli/doctor/Check.h"
#include "model/datafile/KeptEdits.h"
#include "platform/files/PosixFiles.h"
#include "platform/files/StateFolder.h"
#include "platform/process/Terminal.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <unistd.h>

namespace mirovane {

namespace {

CheckResult ownFolder(const std::string& folder, const std::string& what) {
    CFileCalls calls;
    if (!makeStateFolder(calls, folder))
        return CheckResult::fails(folder + ": " + std::strerror(errno) + "; " + what,
                                  "sudo install -d -m 700 -o \"$USER\" " + folder);
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        return CheckResult::fails(folder + ": " + std::strerror(errno) + "; " + what,
                                  "chmod u+rwx " + folder);
    return CheckResult::works(folder);
}

CheckResult checkStateFolder(const DoctorPlaces& places) {
    return ownFolder(places.stateFolder, "edits are lost if the program ends while a share is away");
}

CheckResult checkRuntimeFolder(const DoctorPlaces& places) {
    return ownFolder(places.runtimeFolder, "two programs of one user do not see each other");
}

/// Of this user's programs, for this datafile.
CheckResult checkUnsaved(const DoctorPlaces& places) {
    std::size_t edits = 0;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(places.stateFolder, error)) {
        if (entry.path().extension() != ".edits")
            continue;
        CPosixFiles files;
        const auto file = files.lock(entry.path().string(), FileAccess::Read, std::chrono::milliseconds(0));
        const auto bytes = file ? std::optional(file.value()->read()) : std::nullopt;
        if (!bytes || !*bytes)
            return CheckResult::note("a program that is running has edits that are not saved yet",
                                     "wait until the share is back, or look at its message log");
        const auto content = KeptEditsFormat::read(bytes->value());
        if (content.datafile == places.datafile)
            edits += content.edits.size();
    }
    if (edits == 0)
        return CheckResult::works("no edits wait to be saved");
    return CheckResult::fails(std::to_string(edits) + " edits of an earlier program are not in the datafile",
                              "open it once: mirovanectl station " + places.datafile + " --for 5");
}

CheckResult checkFonts(const DoctorPlaces& places) {
    const auto face = places.ask({"fc-match", "-f", "%{family}\\n", "Arial"});
    if (!face)
        return CheckResult::note("fc-match is not installed, so nobody knows",
                                 "sudo apt-get install fontconfig");
    if (face->find("Arial") == std::string::npos && face->find("Liberation Sans") == std::string::npos)
        return CheckResult::fails("labels have other widths than at your colleagues': " + *face +
                                      " takes the place of Arial",
                                  "sudo apt-get install fonts-liberation");
    return CheckResult::works(*face);
}

CheckResult checkIcons(const DoctorPlaces& places) {
    for (const std::string& folder : places.icons)
        if (!folder.empty() && access((folder + "/PrinterOn.bmp").c_str(), R_OK) == 0)
            return CheckResult::works(folder);
    return CheckResult::fails("there are none in " + places.icons.front(),
                              "sudo apt-get install --reinstall mirovane");
}

CheckResult checkTerminal(const DoctorPlaces&) {
    const auto words = installedTerminal();
    if (words.empty())
        return CheckResult::fails("External Applications have no terminal to run in",
                                  "sudo apt-get install xterm");
    return CheckResult::works(words[0]);
}

bool withNamedDatafile(const DoctorPlaces& places) {
    return places.hasDatafile();
}

bool withDesktop(const DoctorPlaces& places) {
    return places.desktop;
}

constexpr std::array computerTable{
    Check{"unsaved edits", checkUnsaved, withNamedDatafile, "look whether the home folder's share hangs"},
    Check{"state folder", checkStateFolder, always, "look whether the home folder's share hangs"},
    Check{"run-time folder", checkRuntimeFolder, always, "log in anew"},
    Check{"fonts", checkFonts, withDesktop, "fc-cache -f"},
    Check{"icons", checkIcons, withDesktop, "sudo apt-get install --reinstall mirovane"},
    Check{"terminal", checkTerminal, withDesktop, "sudo apt-get install xterm"},
};

} // namespace

std::span<const Check> computerChecks() {
    return computerTable;
}

} // namespace mirovane
