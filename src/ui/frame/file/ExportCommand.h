#pragma once

#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameDialogs.h"

namespace mirovane {

/// File, Export: the List View's rows, as it shows them or would show them, into a text file.
class CExportCommand {
public:
    /// Both outlive the object.
    CExportCommand(CStation& station, CSettings& settings, FrameDialogs& dialogs)
        : station_(station), settings_(settings), dialogs_(dialogs) {}

    void connectTo(CCommandActions& actions);

    void run();

private:
    ExportRequest request() const;
    void write(const ExportSettings& settings);

    CStation& station_;
    CSettings& settings_;
    FrameDialogs& dialogs_;
};

} // namespace mirovane
