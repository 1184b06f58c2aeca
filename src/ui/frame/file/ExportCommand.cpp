#include "ui/frame/file/ExportCommand.h"

#include "model/rows/TextExport.h"
#include "platform/files/FilePaths.h"
#include "ui/widgets/SaveFailure.h"
#include "ui/widgets/WaitCursor.h"

#include <algorithm>

namespace mirovane {

namespace {

constexpr std::size_t previewRows = 6;

} // namespace

void CExportCommand::connectTo(CCommandActions& actions) {
    actions.setHandler(CommandId::FileExport, {[this](const CommandDefinition&, bool) { run(); }, {}});
}

ExportRequest CExportCommand::request() const {
    ExportRequest request;
    request.datafile = station_.datafile().path();
    request.settings.read(settings_, request.datafile);
    const auto rows = listViewRows(station_.document(), station_.listExport().listView());
    request.rowCount = rows.size();
    for (std::size_t i = 0; i < std::min(previewRows, rows.size()); ++i)
        request.firstRows.push_back(*rows[i]);
    if (const auto error = station_.listExport().error())
        request.lastFailure = error->sentence;
    return request;
}

/// Who does not want to overwrite a file is asked for another one.
void CExportCommand::run() {
    while (const auto settings = dialogs_.askExport(request())) {
        const std::string datafile = station_.datafile().path();
        settings->write(settings_, datafile);
        const std::string target = exportTarget(settings->ExportFilename, datafile);
        if (!existsOnDisk(target) ||
            dialogs_.askStop("File already exist! Do you want to overwrite the file?"))
            return write(*settings);
    }
}

void CExportCommand::write(const ExportSettings& settings) {
    std::optional<FileError> error;
    {
        const CWaitCursor wait;
        error = station_.exportNow(settings);
    }
    if (error)
        dialogs_.fail("Error creating export file!\n\n" + asSentence(error->sentence));
}

} // namespace mirovane
