#pragma once

#include "model/Document.h"
#include "ui/frame/CommandActions.h"

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

    /// The document and the parts outlive the object.
    CViewCommands(CMirovaneDoc& document, Parts parts);

    void connectTo(CCommandActions& actions);

private:
    void setDisplay(const CommandDefinition& command, bool on);
    bool isDisplayed(const CommandDefinition& command) const;

    CMirovaneDoc& document_;
    Parts parts_;
};

} // namespace mirovane
