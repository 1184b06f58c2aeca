#pragma once

#include "ui/discovered/DiscoveredWindow.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/commands/FindCommands.h"

#include <QObject>

#include <memory>

namespace mirovane {

/// The Discovered/Misc window in the main window: its command, what it shares with Find, and what is dragged
/// from it and dropped on the floor. Main thread.
class CDiscoveredCommands : public QObject {
    Q_OBJECT

public:
    struct Parts {
        CStation& station;
        FrameDialogs& dialogs;
        CSettings& settings;
        CMessageLog& log;
        CMirovaneView& floor;
        CFindCommands& finding;
        QWidget& window; ///< the main window, whose picture this one's is
    };

    /// All references outlive the object.
    explicit CDiscoveredCommands(Parts parts);

    void connectTo(CCommandActions& actions);

    /// Made when it is first asked for: most runs of the program never show it.
    CDiscoveredWindow& discovered();
    CDiscoveredWindow* shown() { return discovered_.get(); }
    void close();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Parts parts_;
    std::unique_ptr<CDiscoveredWindow> discovered_;
};

} // namespace mirovane
