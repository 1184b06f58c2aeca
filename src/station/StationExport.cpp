#include "model/TextExport.h"
#include "platform/PosixFiles.h"
#include "station/ExportWriter.h"
#include "station/Station.h"

namespace mirovane {

namespace {

/// Longer than a share that answers takes, short enough for a window that waits.
constexpr std::chrono::milliseconds writePatience{300};

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
    if (!exportWriter_) {
        auto files = services_.exportFiles ? services_.exportFiles : std::make_shared<PosixFiles>();
        exportWriter_ = std::make_unique<CExportWriter>(std::move(files));
    }
    const auto rows = listViewRows(*doc_, listView_);
    exportWriter_->write({exportTarget(settings.ExportFilename, doc_->path()), doc_->path(),
                          exportText(rows, settings.format())},
                         writePatience);
    services_.log.LogMessage("Auto exported to text file", true);
}

std::optional<FileError> CStation::exportError() const {
    return exportWriter_ ? exportWriter_->error() : std::nullopt;
}

} // namespace mirovane
