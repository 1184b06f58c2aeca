#pragma once

#include "ui/frame/CommandActions.h"
#include "ui/frame/FrameDialogs.h"

#include <functional>

namespace mirovane {

/// The Tools menu: the floor map's picture, Live Stat and Live Discover.
class CToolsCommands {
public:
    /// All references outlive the object. `onFloorMap` is called when another picture was chosen.
    CToolsCommands(CStation& station, FrameDialogs& dialogs, std::function<void()> onFloorMap);

    void connectTo(CCommandActions& actions);

    void chooseFloorMap();

private:
    CStation& station_;
    FrameDialogs& dialogs_;
    std::function<void()> onFloorMap_;
};

} // namespace mirovane
