#pragma once

#include "ui/frame/base/FrameServices.h"
#include "ui/frame/commands/ApplicationCommands.h"
#include "ui/frame/commands/DiscoveredCommands.h"
#include "ui/frame/commands/FindCommands.h"
#include "ui/frame/commands/HelpCommands.h"
#include "ui/frame/commands/PropertiesCommand.h"
#include "ui/frame/commands/ReminderCommands.h"
#include "ui/frame/commands/ToolsCommands.h"
#include "ui/frame/commands/ViewCommands.h"
#include "ui/frame/commands/ZoomCommands.h"
#include "ui/frame/editing/EditingCommands.h"
#include "ui/frame/file/ExportCommand.h"
#include "ui/frame/file/FileCommands.h"
#include "ui/frame/file/MailCommand.h"
#include "ui/frame/file/PrintCommands.h"

#include <QWidget>

#include <functional>

namespace mirovane {

class CFrameWindows;
class CMirovaneView;

/// What stands behind the main window's commands, menu by menu. Main thread.
class CFrameCommands {
public:
    /// Parts of the main window; all outlive the object.
    struct Parts {
        QWidget& frame;
        CMirovaneView& floor;
        QWidget& toolbar;
        QWidget& statusBar;
        CFrameWindows& windows;
        std::function<void()> refresh; ///< the window shows another document, or the same under another name
    };

    CFrameCommands(const FrameServices& services, const Parts& parts);

    void connectTo(CCommandActions& actions);

    CFileCommands& files() { return files_; }
    const CFileCommands& files() const { return files_; }
    CToolsCommands& tools() { return tools_; }
    CEditingCommands& editing() { return editing_; }
    CFindCommands& finding() { return find_; }
    CDiscoveredCommands& discovered() { return discovered_; }
    CApplicationCommands& applications() { return applications_; }
    CPropertiesCommand& properties() { return properties_; }

    /// Properties of the rows that are selected in the List View; "Next" and "Previous" go by its rows.
    void editListRows();

    /// In words: the devices that commands and applications work on.
    std::string targets() const;

    /// The session ends or the datafile is saved: what is being typed counts.
    void storeTyping();

private:
    void showDevice(std::int32_t recID);

    FrameServices services_;
    Parts parts_;
    CFileCommands files_;
    CExportCommand export_;
    CMailCommand mail_;
    CViewCommands view_;
    CZoomCommands zoom_;
    CPrintCommands print_;
    CToolsCommands tools_;
    CEditingCommands editing_;
    CFindCommands find_;
    CReminderCommands reminders_;
    CPropertiesCommand properties_;
    CDiscoveredCommands discovered_;
    CApplicationCommands applications_;
    CHelpCommands help_;
};

} // namespace mirovane
