#pragma once

#include "station/Station.h"
#include "ui/dialogs/CustomZoomDialog.h"
#include "ui/dialogs/ExportRequest.h"
#include "ui/dialogs/PhotoSettings.h"

#include <QString>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QPrinter;

namespace mirovane {

enum class SaveAnswer { Save, Discard, Cancel };

/// What the first button of the question says: Save, or Save As where the datafile itself cannot be written.
enum class SaveOffer { Save, SaveAs };

/// What a file dialog starts with.
struct FileChoice {
    std::string title;
    std::string start;                ///< file or folder first shown; empty: the current folder
    std::vector<std::string> filters; ///< "Mirovane Files (*.mv)", the first one is chosen
};

/// Everything the main window asks the user, so that tests can answer. Main thread; each call returns when
/// the user has decided. Texts are UTF-8, paths the system's bytes.
class FrameDialogs : public StationDialogs {
public:
    virtual SaveAnswer askToSave(const std::string& question, SaveOffer offer) = 0;

    /// Nothing when the user cancels.
    virtual std::optional<std::string> chooseFileToOpen(const FileChoice& choice) = 0;

    /// The path as typed; neither an extension is added nor overwriting asked about.
    virtual std::optional<std::string> chooseFileToSave(const FileChoice& choice) = 0;

    /// A Yes/No question whose Yes destroys something.
    virtual bool askStop(const std::string& question) = 0;

    /// What the user chose in the Export dialog; nothing when he cancelled it.
    virtual std::optional<ExportSettings> askExport(const ExportRequest& request) = 0;

    /// Text that replaces $mvW in this command of an External Application; nothing when the user cancels.
    virtual std::optional<std::string> insertText(const std::string& command) = 0;

    /// The numbers of the Custom Zoom dialog; nothing when the user cancels.
    virtual std::optional<CustomZoom> askCustomZoom(const CustomZoom& start) = 0;

    /// What the user chose in the User Photo Settings; nothing when he cancelled them.
    virtual std::optional<PhotoSettings> askPhotoSettings(const PhotoSettings& settings) = 0;

    /// Shows a page of the manual, or another file, in the program that the user has for it. False: there is
    /// none.
    virtual bool openPage(const QString& path) = 0;

    /// Which printer, pages and copies; false when the user cancels.
    virtual bool choosePrinter(QPrinter& printer) = 0;

    /// Paper, orientation and margins.
    virtual void setUpPage(QPrinter& printer) = 0;

    /// Shows what `print` makes of the printer's paper, and prints it when the user wants to.
    virtual void previewPages(QPrinter& printer, const std::function<void(QPrinter&)>& print) = 0;

    virtual void about() = 0;
};

} // namespace mirovane
