#pragma once

#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/FrameDialogs.h"
#include "ui/help/Help.h"

#include <QObject>

namespace mirovane {

/// The Help menu, and help on the thing pointed at from every window.
class CHelpCommands : public QObject {
    Q_OBJECT

public:
    /// The dialogs outlive the object.
    explicit CHelpCommands(FrameDialogs& dialogs);

    void connectTo(CCommandActions& actions);

    /// Shows a page of the manual, or says what to do when it is not there.
    void open(const QString& page);

private:
    FrameDialogs& dialogs_;
    CHelp help_;
};

} // namespace mirovane
