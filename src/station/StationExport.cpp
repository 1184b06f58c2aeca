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
    writeRows(settings, autoPatience);
    services_.log.LogMessage("Auto exported to text file", true);
}

std::optional<FileError> CStation::exportNow(const ExportSettings& settings) {
    const std::size_t rows = writeRows(settings, commandPatience);
    auto error = exportError();
    if (!error)
        services_.log.LogMessage("Exported " + std::to_string(rows) + " device(s) to " +
                                     exportTarget(settings.ExportFilename, doc_->path()),
                                 true);
    return error;
}

/// Returns how many rows there are.
std::size_t CStation::writeRows(const ExportSettings& settings, std::chrono::milliseconds patience) {
    if (!exportWriter_) {
        auto files = services_.exportFiles ? services_.exportFiles : std::make_shared<UnflushedFiles>();
        exportWriter_ = std::make_unique<CExportWriter>(std::move(files));
    }
    const auto rows = listViewRows(*doc_, listView_);
    exportWriter_->write({exportTarget(settings.ExportFilename, doc_->path()), doc_->path(),
                          exportText(rows, settings.format())},
                         patience);
    return rows.size();
}

std::optional<FileError> CStation::exportError() const {
    return exportWriter_ ? exportWriter_->error() : std::nullopt;
}

} // namespace mirovane
