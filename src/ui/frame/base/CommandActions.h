#pragma once

#include "ui/frame/table/CommandTable.h"

#include <QAction>
#include <QObject>

#include <functional>
#include <map>
#include <vector>

namespace mirovane {

/// One QAction per line of the command table, and the one place where an action finds its handler. The
/// actions belong to the window given, which also makes their keys work when no menu shows them.
class CCommandActions : public QObject {
    Q_OBJECT

public:
    /// `checked` is the action's new check mark; the check mark is afterwards taken from `isChecked` again,
    /// so a handler that refuses leaves none behind.
    struct Handler {
        std::function<void(const CommandDefinition&, bool checked)> run;
        std::function<bool(const CommandDefinition&)> isChecked;
    };

    explicit CCommandActions(QWidget& window);

    void setHandler(CommandId id, Handler handler);
    bool hasHandler(CommandId id) const { return handlers_.contains(id); }

    /// Null for the line that stands for the recently used files.
    QAction* action(std::string_view name) const;

    /// Check marks, enablement, and in the help line of a disabled entry why it is disabled. Cheap enough for
    /// every idle moment.
    void refresh(const CommandState& state);

private:
    struct Entry {
        const CommandDefinition* command;
        QAction* action;
    };

    void run(const Entry& entry, bool checked);
    void refreshCheck(const Entry& entry);
    static void refreshNeed(const Entry& entry, const CommandState& state);

    std::vector<Entry> entries_;
    std::map<CommandId, Handler> handlers_;
};

} // namespace mirovane
