#pragma once

#include "model/Settings.h"
#include "model/datafile/DatafileLink.h"
#include "model/rows/ListRows.h"
#include "platform/SharePatience.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace mirovane {

class CExportWriter;
struct ExportSettings;

/// Writes what the List View shows into a text file: at the user's command, and by itself after changes where
/// this user wants that for this datafile. Main thread; all references outlive it.
class CListExport {
public:
    /// Where a thread that writes exports writes them; called once for each such thread. Null: the system's
    /// files.
    using MakeFiles = std::function<std::shared_ptr<Files>()>;

    struct Services {
        MakeFiles makeFiles;
        SharePatience* patience = nullptr; ///< null: nobody minds a main thread that sleeps for some seconds
    };

    CListExport(const CMirovaneDoc& document, const CDatafileLink& link, CSettings& settings,
                CMessageLog& log, Services services);
    ~CListExport();
    CListExport(const CListExport&) = delete;
    CListExport& operator=(const CListExport&) = delete;

    /// Order and visibility of the rows, as the user set them in the List View.
    ListViewState& listView() { return listView_; }
    const ListViewState& listView() const { return listView_; }

    /// The document has another datafile: "Auto export on changes" is read for it.
    void takeDatafile();

    /// The automatic export, where it is on.
    void afterChanges();

    /// At the user's command. Waits some seconds for a share that does not answer, not longer.
    std::optional<FileError> now(const ExportSettings& settings);

    /// Why the last export failed; nothing when it did not. The log does not tell.
    std::optional<FileError> error() const;

private:
    std::size_t writeRows(std::unique_ptr<CExportWriter>& writer, const ExportSettings& settings,
                          std::chrono::milliseconds patience);
    void waitForCommand(const std::string& target);

    const CMirovaneDoc& document_;
    const CDatafileLink& link_;
    CSettings& settings_;
    CMessageLog& log_;
    Services services_;
    ListViewState listView_;
    bool automatic_ = false;
    std::unique_ptr<CExportWriter> autoWriter_;
    std::unique_ptr<CExportWriter> commandWriter_; ///< a dead share of the other must not hold it up
    const CExportWriter* lastWriter_ = nullptr;
};

} // namespace mirovane
