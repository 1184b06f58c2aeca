#include "ui/frame/file/FileCommands.h"

#include "model/records/Text.h"
#include "platform/files/FilePaths.h"
#include "ui/widgets/SaveFailure.h"
#include "ui/widgets/WaitCursor.h"

#include <QObject>

#include <algorithm>

namespace mirovane {

namespace {

/// UTF-8, as the dialogs take it.
std::string words(const QString& text) {
    return text.toStdString();
}

std::vector<std::string> datafileFilters() {
    return {words(QObject::tr("Mirovane Files (*.mv)")), words(QObject::tr("All Files (*)"))};
}

QString openRemedy(Datafile::Error::Kind kind) {
    switch (kind) {
    case Datafile::Error::Kind::CannotRead:
        return QObject::tr("Check the name of the file, and that you may read it.");
    case Datafile::Error::Kind::NotADatafile:
        return QObject::tr(
            "Choose another file: datafiles usually end in .mv. Nothing was changed in this one.");
    case Datafile::Error::Kind::UnknownVersion:
        return QObject::tr("It may come from a newer version of this program. Open it with that one.");
    case Datafile::Error::Kind::Damaged:
        break;
    }
    return QObject::tr(
        "Nothing was changed in it. Take the file from a backup, or ask \"mirovanectl check\" for more.");
}

} // namespace

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
    const auto path = dialogs_.chooseFileToOpen(
        {words(QObject::tr("Open")), station_.datafile().path(), datafileFilters()});
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
        dialogs_.fail(
            words(QObject::tr("%1 could not be opened.").arg(QString::fromStdString(displayText(path)))) +
            "\n\n" + asSentence(error->sentence) + "\n\n" + words(openRemedy(error->kind)));
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

/// Who does not want to replace a file wants another name.
bool CFileCommands::saveAs() {
    const std::string& current = station_.datafile().path();
    std::string start = current.empty() ? "Untitled.mv" : current;
    while (const auto chosen =
               dialogs_.chooseFileToSave({words(QObject::tr("Save As")), start, datafileFilters()})) {
        const std::string path = absolutePath(withDatafileExtension(*chosen));
        if (path == current || !existsOnDisk(path) || mayReplace(path))
            return saveUnderNewName(path);
        start = path;
    }
    return false;
}

bool CFileCommands::mayReplace(const std::string& path) {
    return dialogs_.ask(
        {Question::Kind::ReplaceFile, words(QObject::tr("%1 already exists.\n\nDo you want to replace it?")
                                                .arg(QString::fromStdString(displayText(path))))});
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

/// What background work found is found again; only what the user changed is worth a question.
bool CFileCommands::close() {
    const Leaving leaving = leaveDocument();
    if (leaving == Leaving::Stay)
        return false;
    std::optional<FileError> error;
    {
        const CWaitCursor wait;
        error = station_.shutDown();
    }
    return !error || leaving == Leaving::Unsaved || !station_.document().unsavedEdits() ||
           mayLeaveUnsaved(*error) != Leaving::Stay;
}

CFileCommands::Leaving CFileCommands::leaveDocument() {
    const CMirovaneDoc& document = station_.document();
    if (!station_.datafile().path().empty()) {
        if (!document.unsavedEdits())
            return Leaving::Saved;
        const SaveReport report = saveWaiting(); // an earlier save failed
        return report.failed() ? mayLeaveUnsaved(*report.error) : Leaving::Saved;
    }
    if (!document.modified())
        return Leaving::Saved;
    return answered(dialogs_.askToSave(
        words(QObject::tr("Do you want to save the new datafile?\n\nIt has no file yet. What is on its "
                          "floor is lost if you don't save it.")),
        SaveOffer::Save));
}

CFileCommands::Leaving CFileCommands::mayLeaveUnsaved(const FileError& error) {
    const QString fate =
        station_.unsavedEditsKept()
            ? QObject::tr(
                  "If you don't, your changes are kept on this computer: they are put into the datafile "
                  "when it is next opened here.")
            : QObject::tr("What you changed since the last save is lost if you don't.");
    return answered(dialogs_.askToSave(
        words(QObject::tr("The datafile could not be saved.")) + "\n\n" + asSentence(error.sentence) +
            "\n\n" + words(QObject::tr("Do you want to save it elsewhere?") + u' ' + fate),
        SaveOffer::SaveAs));
}

CFileCommands::Leaving CFileCommands::answered(SaveAnswer answer) {
    switch (answer) {
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
    return station_.saveDatafile(WaitFor::Answer);
}

void CFileCommands::showSaveError(const FileError& error) {
    dialogs_.fail(saveFailureText(error));
}

} // namespace mirovane
