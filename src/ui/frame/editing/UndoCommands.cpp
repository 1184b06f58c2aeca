#include "ui/frame/editing/UndoCommands.h"

#include "ui/floor/MirovaneView.h"
#include "ui/widgets/DialogText.h"

#include <QCoreApplication>

namespace mirovane {

CUndoCommands::CUndoCommands(const EditingParts& parts)
    : parts_(parts), runner_(parts.station, parts.dialogs) {
    parts_.station.addObserver(*this);
}

CUndoCommands::~CUndoCommands() {
    parts_.station.removeObserver(*this);
}

void CUndoCommands::connectTo(CCommandActions& actions) {
    undo_ = actions.action("editUndo");
    redo_ = actions.action("editRedo");
    const auto handle = [this, &actions](CommandId id, SaveReport (CStation::*reverse)()) {
        const auto run = [this, reverse](const CommandDefinition&, bool) {
            if (parts_.floor.input().gesture().buttonDown())
                return;                      // what is dragged is under the hand, not in the history
            parts_.floor.input().endNudge(); // what a key moved is a step of its own
            runner_.guarded([this, reverse] { runner_.report((parts_.station.*reverse)()); });
        };
        actions.setHandler(id, {run, {}});
    };
    handle(CommandId::EditUndo, &CStation::undo);
    handle(CommandId::EditRedo, &CStation::redo);
    historyChanged();
}

/// The menu shows what would be undone: "Undo Move 12 devices".
void CUndoCommands::historyChanged() {
    showName(undo_, QCoreApplication::translate("Commands", "&Undo"), CEditHistory::Way::Undo);
    showName(redo_, QCoreApplication::translate("Commands", "&Redo"), CEditHistory::Way::Redo);
}

void CUndoCommands::showName(QAction* action, const QString& verb, CEditHistory::Way way) {
    if (!action)
        return;
    const EditStep* step = parts_.station.edits().history().next(way);
    QString name;
    if (step)
        name = u' ' + QCoreApplication::translate("EditSteps", step->name.pattern.c_str())
                          .replace(QStringLiteral("%1"), QString::number(step->name.count))
                          .replace(u'&', QStringLiteral("&&"));
    action->setText(verb + name);
}

} // namespace mirovane
