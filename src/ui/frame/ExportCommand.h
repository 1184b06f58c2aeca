#pragma once

#include "ui/frame/CommandActions.h"
#include "ui/frame/FrameDialogs.h"

namespace mirovane {

/// File, Export: the List View's rows, as it shows them or would show them, into a text file.
class CExportCommand {
public:
    /// Both outlive the object.
    CExportCommand(CStation& station, FrameDialogs& dialogs) : station_(station), dialogs_(dialogs) {}

    void connectTo(CCommandActions& actions);

    void run();

private:
    ExportRequest request() const;

    CStation& station_;
    FrameDialogs& dialogs_;
};

} // namespace mirovane
