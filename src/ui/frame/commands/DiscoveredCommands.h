#pragma once

#include "ui/discovered/DiscoveredWindow.h"
#include "ui/floor/FloorInput.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/commands/FindCommands.h"
#include "ui/frame/commands/PropertiesCommand.h"

#include <QAction>
#include <QObject>
#include <QPointer>

#include <memory>

namespace mirovane {

/// The Discovered/Misc window in the main window: its command, what it shares with Find and Properties, and
/// what is dragged between it and the floor. Main thread.
class CDiscoveredCommands : public QObject, private FloorDropTarget {
    Q_OBJECT

public:
    struct Parts {
        CStation& station;
        FrameDialogs& dialogs;
        CSettings& settings;
        CMessageLog& log;
        CMirovaneView& floor;
        CFindCommands& finding;
        CPropertiesCommand& properties;
        QWidget& window; ///< the main window, whose picture this one's is
    };

    /// All references outlive the object.
    explicit CDiscoveredCommands(Parts parts);
    ~CDiscoveredCommands() override;

    void connectTo(CCommandActions& actions);

    /// Made when it is first asked for: most runs of the program never show it.
    CDiscoveredWindow& discovered();
    CDiscoveredWindow* shown() { return discovered_.get(); }
    void close();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // FloorDropTarget
    bool isAt(QPoint screenPoint) const override;
    void devicesDropped() override;

    void editSelected();

    Parts parts_;
    QPointer<QAction> moveTo_; ///< from the floor to this window, with its question
    std::unique_ptr<CDiscoveredWindow> discovered_;
};

} // namespace mirovane
