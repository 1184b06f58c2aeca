#include "ui/frame/commands/FileCommands.h"

#include "model/records/Text.h"
#include "platform/files/FilePaths.h"
#include "ui/widgets/SaveFailure.h"
#include "ui/widgets/WaitCursor.h"

#include <algorithm>
#include <filesystem>

namespace mirovane {

namespace {

namespace fs = std::filesystem;

constexpr const char* datafileFilter = "Mirovane Files (*.mv)";
constexpr const char* allFilesFilter = "All Files (*)";

std::string openRemedy(const Datafile::Error& error) {
    switch (error.kind) {
    case Datafile::Error::Kind::CannotRead:
        return "Check the name of the file, and that you may read it.";
    case Datafile::Error::Kind::UnknownVersion:
        return "It may be no datafile at all, or one of a newer version of this program.";
    case Datafile::Error::Kind::Damaged:
        break;
    }
    return "Nothing was changed in it. Take the file from a backup, or ask \"mirovanectl check\" for more.";
}

} // namespace

std::string windowTitle(const std::string& documentPath) {
    const std::string name = documentPath.empty() ? "Untitled" : fs::path(documentPath).filename().string();
    return displayText(name) + " - Mirovane";
}

std::string withDatafileExtension(const std::string& path) {
    constexpr std::string_view extension = ".mv";
    const bool hasIt =
        path.size() > extension.size() &&
        equalIgnoringCase(std::string_view(path).substr(path.size() - extension.size()), extension);
    return hasIt ? path : path + std::string(extension);
}

CFileCommands::CFileCommands(CStation& station, FrameDialogs& dialogs, CRecentFiles& recent,
                             std::function<void()> onDocument)
    : station_(station), dialogs_(dialogs), recent_(recent), onDocument_(std::move(onDocument)) {}

void CFileCommands::connectTo(CCommandActions& actions) {
    const auto on = [&actions](CommandId id, std::function<void()> run) {
        actions.setHandler(id, {[run = std::move(run)](const CommandDefinition&, bool) { run(); }, {}});
    };
    on(
        CommandId::FileNew, [this] { newFile(); });
    on(
        CommandId::FileOpen, [this] { open(); });
    on(
        CommandId::FileSave, [this] { save(); });
    on(CommandId::FileSaveAs, [this] { saveAs(); });
}

bool CFileCommands::newFile() {
    if (!mayLeaveDocument())
        return false;
    const CWaitCursor wait;
    station_.newDatafile();
    onDocument_();
    return true;
}

bool CFileCommands::open() {
    const auto path =
        dialogs_.chooseFileToOpen({"Open", station_.datafile().path(), {datafileFilter, allFilesFilter}});
    return path && openPath(*path);
}

bool CFileCommands::openPath(const std::string& givenPath) {
    const std::string path = absolutePath(givenPath);
    if (!mayLeaveDocument())
        return false;
    std::optional<Datafile::Error> error;
    {
        const CWaitCursor wait;
        error = station_.openDatafile(path);
    }
    if (error) {
        if (isMissing(path)) // a share that is away comes back
            recent_.remove(path);
        onDocument_();
        dialogs_.fail("The datafile " + path + " could not be opened.\n\n" + error->sentence + "\n\n" +
                      openRemedy(*error));
        return false;
    }
    recent_.add(path);
    onDocument_();
    return true;
}

bool CFileCommands::save() {
    if (station_.datafile().path().empty())
        return saveAs();
    const SaveReport report = saveWaiting();
    if (report.failed())
        showSaveError(*report.error);
    return !report.failed();
}

bool CFileCommands::saveAs() {
    const std::string& current = station_.datafile().path();
    const auto chosen = dialogs_.chooseFileToSave(
        {"Save As", current.empty() ? "Untitled.mv" : current, {datafileFilter, allFilesFilter}});
    if (!chosen)
        return false;
    const std::string path = absolutePath(withDatafileExtension(*chosen));
    if (path != current && existsOnDisk(path) &&
        !dialogs_.ask({Question::Kind::ReplaceFile,
                       displayText(path) + " already exists.\n\nDo you want to replace it?"}))
        return false;
    return saveUnderNewName(path);
}

bool CFileCommands::saveUnderNewName(const std::string& path) {
    SaveReport report;
    {
        const CWaitCursor wait;
        report = station_.saveDatafileAs(path);
    }
    if (report.failed()) {
        showSaveError(*report.error);
        return false;
    }
    recent_.add(path);
    onDocument_();
    return true;
}

bool CFileCommands::close() {
    const Leaving leaving = leaveDocument();
    if (leaving == Leaving::Stay)
        return false;
    std::optional<FileError> error;
    {
        const CWaitCursor wait;
        error = station_.shutDown();
    }
    return !error || leaving == Leaving::Unsaved || mayLose(*error); // the user is asked once
}

CFileCommands::Leaving CFileCommands::leaveDocument() {
    if (!station_.document().modified())
        return Leaving::Saved;
    if (!station_.datafile().path().empty()) { // an earlier save failed
        const SaveReport report = saveWaiting();
        if (!report.failed())
            return Leaving::Saved;
        return mayLose(*report.error) ? Leaving::Unsaved : Leaving::Stay;
    }
    switch (dialogs_.askToSave(
        "Do you want to save the new datafile?\n\nIt has no file yet. What is on its floor is "
        "lost if you don't save it.")) {
    case SaveAnswer::Save:
        return saveAs() ? Leaving::Saved : Leaving::Stay;
    case SaveAnswer::Discard:
        return Leaving::Unsaved;
    case SaveAnswer::Cancel:
        break;
    }
    return Leaving::Stay;
}

SaveReport CFileCommands::saveWaiting() {
    const CWaitCursor wait;
    return station_.saveDatafile();
}

bool CFileCommands::mayLose(const FileError& error) {
    const char* fate =
        station_.unsavedEditsKept()
            ? "Your changes are kept on this computer for later: they are put into the datafile "
              "when it is next opened here."
            : "What was changed since the last save is lost then.";
    return dialogs_.ask(
        {Question::Kind::LeaveUnsaved, "The datafile could not be saved.\n\n" + error.sentence +
                                           "\n\nDo you want to leave it all the same? " + fate});
}

void CFileCommands::showSaveError(const FileError& error) {
    dialogs_.fail(saveFailureText(error));
}

} // namespace mirovane
