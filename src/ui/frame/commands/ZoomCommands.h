#pragma once

#include "ui/floor/FloorZooming.h"
#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameDialogs.h"

namespace mirovane {

/// The Zoom menu. Its two toggles are display settings like others.
class CZoomCommands {
public:
    /// All references outlive the object.
    CZoomCommands(CFloorZooming& zooming, FrameDialogs& dialogs) : zooming_(zooming), dialogs_(dialogs) {}

    void connectTo(CCommandActions& actions);

private:
    void askCustom();

    CFloorZooming& zooming_;
    FrameDialogs& dialogs_;
};

} // namespace mirovane
