#pragma once

#include "ui/frame/base/CommandActions.h"
#include "ui/frame/editing/EditRunner.h"

#include <QAction>
#include <QPointer>

namespace mirovane {

/// "Undo" and "Redo", with the name of the step that they are about. Main thread.
class CUndoCommands : private StationObserver {
public:
    explicit CUndoCommands(const EditingParts& parts);
    ~CUndoCommands() override;
    CUndoCommands(const CUndoCommands&) = delete;
    CUndoCommands& operator=(const CUndoCommands&) = delete;

    void connectTo(CCommandActions& actions);

private:
    void historyChanged() override;
    void showName(QAction* action, const QString& verb, CEditHistory::Way way);

    EditingParts parts_;
    CEditRunner runner_;
    QPointer<QAction> undo_;
    QPointer<QAction> redo_;
};

} // namespace mirovane
