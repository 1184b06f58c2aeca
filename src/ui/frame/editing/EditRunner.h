#pragma once

#include "model/floor/FloorEdits.h"
#include "ui/frame/base/FrameDialogs.h"

namespace mirovane {

class CMirovaneView;

/// What the commands of this folder work with; all of it outlives them.
struct EditingParts {
    CStation& station;
    CMirovaneView& floor;
    FrameDialogs& dialogs;
    CSettings& settings;
    CMessageLog& log;
};

/// Takes the edits of commands through the station's door and tells the user what came in the way. Main
/// thread; both references outlive it.
class CEditRunner {
public:
    CEditRunner(CStation& station, FrameDialogs& dialogs) : station_(station), dialogs_(dialogs) {}

    /// False, after a message: memory ran out, and what the edit had done by then is in the document. A save
    /// that failed is shown and tried again by itself: the edit is made.
    bool run(const FloorEdit& edit);

    /// As `run`, for an edit that adds devices: says also when not all of `wanted` found room.
    bool runAdding(const FloorEdit& edit, std::size_t wanted);

    /// Does this; false, after a message, where memory runs out.
    bool guarded(const std::function<void()>& work);

    /// Tells about the save of an edit that was made elsewhere.
    void report(const SaveReport& report);

private:
    CStation& station_;
    FrameDialogs& dialogs_;
};

} // namespace mirovane
