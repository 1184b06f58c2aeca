#include "station/export/ListExport.h"

#include "model/rows/TextExport.h"
#include "platform/files/UnflushedFiles.h"
#include "station/export/ExportWriter.h"

#include <utility>

namespace mirovane {

namespace {

/// Longer than a share that answers takes, short enough for a window that waits.
constexpr std::chrono::milliseconds autoPatience{300};

/// The user asked for it and wants to know.
constexpr std::chrono::milliseconds commandPatience{5000};

} // namespace

CListExport::CListExport(const CMirovaneDoc& document, const CDatafileLink& link, CSettings& settings,
                         CMessageLog& log, MakeFiles makeFiles)
    : document_(document), link_(link), settings_(settings), log_(log), makeFiles_(std::move(makeFiles)) {}

CListExport::~CListExport() = default;

void CListExport::takeDatafile() {
    automatic_ = !link_.path().empty() && readExportAuto(settings_, link_.path());
}

void CListExport::afterChanges() {
    if (!automatic_)
        return;
    ExportSettings settings;
    settings.read(settings_, link_.path());
    writeRows(autoWriter_, settings, autoPatience);
    log_.LogMessage("Auto exported to text file", true);
}

std::optional<FileError> CListExport::now(const ExportSettings& settings) {
    if (commandWriter_ && commandWriter_->hangs())
        commandWriter_.reset(); // the user was told; another file may well be written
    const std::size_t rows = writeRows(commandWriter_, settings, commandPatience);
    auto failure = error();
    if (!failure)
        log_.LogMessage("Exported " + std::to_string(rows) + " device(s) to " +
                            exportTarget(settings.ExportFilename, link_.path()),
                        true);
    return failure;
}

/// Returns how many rows there are.
std::size_t CListExport::writeRows(std::unique_ptr<CExportWriter>& writer, const ExportSettings& settings,
                                   std::chrono::milliseconds patience) {
    if (!writer)
        writer =
            std::make_unique<CExportWriter>(makeFiles_ ? makeFiles_() : std::make_shared<CUnflushedFiles>());
    const auto rows = listViewRows(document_, listView_);
    writer->write({exportTarget(settings.ExportFilename, link_.path()), link_.path(),
                   exportText(rows, settings.format())},
                  patience);
    lastWriter_ = writer.get();
    return rows.size();
}

std::optional<FileError> CListExport::error() const {
    return lastWriter_ ? lastWriter_->error() : std::nullopt;
}

} // namespace mirovane
