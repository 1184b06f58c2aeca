#pragma once

#include "model/Settings.h"
#include "ui/frame/base/CommandActions.h"

#include <QWidget>

#include <functional>

namespace mirovane {

/// The View menu: bars, display settings, the message log and the list window. A switched display setting is
/// written to the user's settings at once and shown at once.
class CViewCommands {
public:
    struct Parts {
        QWidget& toolbar;
        QWidget& statusBar;
        std::function<void()> showMessageLog;
        std::function<void()> showListView;
        std::function<void()> repaintFloor;
    };

    /// All references outlive the object.
    CViewCommands(DisplaySettings& display, CSettings& settings, Parts parts);

    void connectTo(CCommandActions& actions);

private:
    void setDisplay(const CommandDefinition& command, bool on);
    bool isDisplayed(const CommandDefinition& command) const;

    DisplaySettings& display_;
    CSettings& settings_;
    Parts parts_;
};

} // namespace mirovane
