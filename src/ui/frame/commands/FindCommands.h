#pragma once

#include "model/find/Find.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameDialogs.h"

#include <QPoint>
#include <QWidget>

#include <functional>
#include <optional>

namespace mirovane {

class CMirovaneView;
class CQuickFindPopup;

/// Find, Find Next, Find Reminder Due and the quick find, for every window that offers them, and the order of
/// the list by which devices are found. Main thread.
class CFindCommands {
public:
    using From = CFind::From;

    struct Parts {
        CStation& station;
        FrameDialogs& dialogs;
        CMirovaneView& floor;
        CMessageLog& log;
        QWidget& window; ///< the main window

        /// Brings a device of Discovered/Misc into view in its window, which opens for it.
        std::function<void(const CHardware& device, bool flash)> showInDiscovered;

        /// Shows the Find dialog in front of a window; nothing when the user cancels it.
        std::function<std::optional<FindSettings>(const FindSettings& settings, QWidget* window)> askFind;
    };

    /// All references outlive the object.
    explicit CFindCommands(Parts parts);

    void connectTo(CCommandActions& actions);

    /// `window` asks, and the dialog opens in front of it. Found devices are selected and brought into view.
    void find(From from, QWidget* window);
    void findNext(From from = From::Floor);

    /// What F4 does, and a click on the status bar's pane.
    void findReminderDue(From from = From::Floor);

    /// The Location Marker that was chosen in the toolbar: becomes the SelectedMarker, is selected and
    /// brought into view. What the user searches for otherwise stays as it is.
    void findMarker(std::int32_t recID);

    /// Opens the quick find below `at` (global coordinates).
    void quickFind(QPoint at, const QString& typed = {});
    void quickFind();

    /// Selects the device alone and shows it, in the middle and flashed, wherever it is.
    void show(const CHardware& device);

    /// The best fit of the quick find, as if it had been chosen there. False when no device fits.
    bool showBest(const std::string& text);

    void groupByProximity();

private:
    void search(FindMode mode, From from);
    void showFound(const CHardware& device);
    void raiseWindow();

    Parts parts_;
    CFind find_;
    CQuickFindPopup* popup_ = nullptr; ///< a child of the window, made when it is first wanted
};

/// The Find dialog as a question; see CFindCommands::Parts.
std::optional<FindSettings> askFind(const FindSettings& settings, QWidget* window);

} // namespace mirovane
