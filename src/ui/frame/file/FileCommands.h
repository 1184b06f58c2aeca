#pragma once

#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameDialogs.h"
#include "ui/frame/base/RecentFiles.h"

#include <functional>
#include <optional>
#include <string>

namespace mirovane {

/// New, Open, Save, Save As, the recently used files and what must happen before the window may close. Every
/// failure is shown with what failed, where and what to do about it, and leaves the document as it was.
class CFileCommands {
public:
    /// All references outlive the object. `onDocument` is called when the window shows another document, or
    /// the same one under another name.
    CFileCommands(CStation& station, FrameDialogs& dialogs, CRecentFiles& recent,
                  std::function<void()> onDocument);

    /// New, Open, Save, Save As; Exit is the window's own.
    void connectTo(CCommandActions& actions);

    bool newFile();
    bool open();

    /// Also for the command line and the recent files. Relative paths are taken from the current directory.
    bool openPath(const std::string& path);
    bool save();
    bool saveAs();

    /// Asks what must be asked, switches Live Stat off and saves. False: the user wants to stay.
    bool close();

    /// The datafile cannot be written.
    bool readOnly() const { return station_.readOnly(); }

private:
    enum class Leaving { Stay, Saved, Unsaved };

    Leaving leaveDocument();
    bool mayLeaveDocument() { return leaveDocument() != Leaving::Stay; }
    bool saveUnderNewName(const std::string& path);
    SaveReport saveWaiting();
    bool mayReplace(const std::string& path);
    Leaving mayLeaveUnsaved(const FileError& error);
    Leaving answered(SaveAnswer answer);
    void showSaveError(const FileError& error);

    CStation& station_;
    FrameDialogs& dialogs_;
    CRecentFiles& recent_;
    std::function<void()> onDocument_;
};

/// The path with ".mv" at its end.
std::string withDatafileExtension(const std::string& path);

} // namespace mirovane
