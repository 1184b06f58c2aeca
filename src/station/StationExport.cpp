#include "model/TextExport.h"
#include "platform/UnflushedFiles.h"
#include "station/ExportWriter.h"
#include "station/Station.h"

namespace mirovane {

namespace {

/// Longer than a share that answers takes, short enough for a window that waits.
constexpr std::chrono::milliseconds autoPatience{300};

/// The user asked for it and wants to know.
constexpr std::chrono::milliseconds commandPatience{5000};

} // namespace

void CStation::refillListView() {
    if (onListRefill)
        onListRefill();
    autoExport();
}

void CStation::autoExport() {
    if (!doc_->exportAuto() || doc_->path().empty())
        return;
    ExportSettings settings;
    settings.read(services_.settings, doc_->path());
    writeRows(autoWriter_, settings, autoPatience);
    services_.log.LogMessage("Auto exported to text file", true);
}

std::optional<FileError> CStation::exportNow(const ExportSettings& settings) {
    if (onListRefill)
        onListRefill(); // the file has the order that is seen
    if (commandWriter_ && commandWriter_->hangs())
        commandWriter_.reset(); // the user was told; another file may well be written
    const std::size_t rows = writeRows(commandWriter_, settings, commandPatience);
    auto error = exportError();
    if (!error)
        services_.log.LogMessage("Exported " + std::to_string(rows) + " device(s) to " +
                                     exportTarget(settings.ExportFilename, doc_->path()),
                                 true);
    return error;
}

/// Returns how many rows there are.
std::size_t CStation::writeRows(std::unique_ptr<CExportWriter>& writer, const ExportSettings& settings,
                                std::chrono::milliseconds patience) {
    if (!writer)
        writer = std::make_unique<CExportWriter>(
            services_.makeExportFiles ? services_.makeExportFiles() : std::make_shared<UnflushedFiles>());
    const auto rows = listViewRows(*doc_, listView_);
    writer->write({exportTarget(settings.ExportFilename, doc_->path()), doc_->path(),
                   exportText(rows, settings.format())},
                  patience);
    lastWriter_ = writer.get();
    return rows.size();
}

std::optional<FileError> CStation::exportError() const {
    return lastWriter_ ? lastWriter_->error() : std::nullopt;
}

} // namespace mirovane
