#include "station/export/ListExport.h"

#include "model/rows/TextExport.h"
#include "platform/files/UnflushedFiles.h"
#include "station/export/ExportWriter.h"

#include <utility>

namespace mirovane {

namespace {

/// Longer than a share that answers takes; where somebody minds, no longer than a frame.
constexpr std::chrono::milliseconds autoPatience{300};

/// The user asked for it and wants to know.
constexpr std::chrono::milliseconds commandPatience{5000};

} // namespace

CListExport::CListExport(const CMirovaneDoc& document, const CDatafileLink& link, CSettings& settings,
                         CMessageLog& log, Services services)
    : document_(document), link_(link), settings_(settings), log_(log), services_(std::move(services)) {}

CListExport::~CListExport() = default;

void CListExport::takeDatafile() {
    automatic_ = !link_.path().empty() && readExportAuto(settings_, link_.path());
}

void CListExport::afterChanges() {
    if (!automatic_)
        return;
    ExportSettings settings;
    settings.read(settings_, link_.path());
    writeRows(autoWriter_, settings, services_.patience ? oneFrame : autoPatience);
    log_.LogMessage("Auto exported to text file", true);
}

std::optional<FileError> CListExport::now(const ExportSettings& settings) {
    if (commandWriter_ && commandWriter_->hangs())
        commandWriter_.reset(); // the user was told; another file may well be written
    const std::size_t rows =
        writeRows(commandWriter_, settings, services_.patience ? oneFrame : commandPatience);
    if (services_.patience)
        waitForCommand(exportTarget(settings.ExportFilename, link_.path()));
    auto failure = error();
    if (!failure)
        log_.LogMessage("Exported " + std::to_string(rows) + " device(s) to " +
                            exportTarget(settings.ExportFilename, link_.path()),
                        true);
    return failure;
}

void CListExport::waitForCommand(const std::string& target) {
    const auto end = std::chrono::steady_clock::now() + commandPatience;
    while (commandWriter_->hangs() && std::chrono::steady_clock::now() < end &&
           services_.patience->keepWaiting(target))
        commandWriter_->wait(oneFrame);
}

/// Returns how many rows there are.
std::size_t CListExport::writeRows(std::unique_ptr<CExportWriter>& writer, const ExportSettings& settings,
                                   std::chrono::milliseconds patience) {
    if (!writer)
        writer = std::make_unique<CExportWriter>(services_.makeFiles ? services_.makeFiles()
                                                                     : std::make_shared<CUnflushedFiles>());
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
