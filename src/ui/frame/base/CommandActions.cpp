#include "ui/frame/base/CommandActions.h"

#include "ui/widgets/DialogText.h"

#include <QKeySequence>
#include <QStringList>
#include <QWidget>

#include <algorithm>

namespace mirovane {

namespace {

QList<QKeySequence> keySequences(std::string_view keys) {
    QList<QKeySequence> sequences;
    for (const QString& key : qText(keys).split(u' ', Qt::SkipEmptyParts))
        sequences.append(QKeySequence::fromString(key, QKeySequence::PortableText));
    return sequences;
}

QString toolTip(const QString& menuText, const QList<QKeySequence>& keys) {
    QString plain = menuText;
    plain.remove(u'&').remove(QStringLiteral("..."));
    if (keys.isEmpty())
        return plain;
    return plain + QStringLiteral(" (") + keys.first().toString(QKeySequence::NativeText) + u')';
}

QAction* makeAction(const CommandDefinition& command, QWidget& window) {
    auto* action = new QAction(commandText(command.text), &window);
    const QList<QKeySequence> keys = keySequences(command.keys);
    action->setObjectName(qText(command.name));
    action->setShortcuts(keys);
    action->setToolTip(toolTip(action->text(), keys));
    action->setStatusTip(commandText(command.help));
    action->setCheckable(command.checkable);
    if (command.id == CommandId::FileExit)
        action->setMenuRole(QAction::QuitRole);
    if (command.id == CommandId::HelpAbout)
        action->setMenuRole(QAction::AboutRole);
    window.addAction(action);
    return action;
}

} // namespace

CCommandActions::CCommandActions(QWidget& window) : QObject(&window) {
    for (const CommandDefinition& command : commandTable()) {
        if (command.id == CommandId::FileRecent)
            continue;
        const Entry entry{&command, makeAction(command, window)};
        entries_.push_back(entry);
        connect(entry.action, &QAction::triggered, this,
                [this, entry](bool checked) { run(entry, checked); });
    }
}

void CCommandActions::setHandler(CommandId id, Handler handler) {
    handlers_[id] = std::move(handler);
}

QAction* CCommandActions::action(std::string_view name) const {
    const auto found =
        std::ranges::find_if(entries_, [name](const Entry& entry) { return entry.command->name == name; });
    return found == entries_.end() ? nullptr : found->action;
}

void CCommandActions::refresh(const CommandState& state) {
    for (const Entry& entry : entries_) {
        refreshNeed(entry, state);
        refreshCheck(entry);
    }
}

void CCommandActions::run(const Entry& entry, bool checked) {
    const auto handler = handlers_.find(entry.command->id);
    if (handler != handlers_.end())
        handler->second.run(*entry.command, checked);
    refreshCheck(entry);
}

void CCommandActions::refreshCheck(const Entry& entry) {
    const auto handler = handlers_.find(entry.command->id);
    if (entry.command->checkable && handler != handlers_.end() && handler->second.isChecked)
        entry.action->setChecked(handler->second.isChecked(*entry.command));
}

void CCommandActions::refreshNeed(const Entry& entry, const CommandState& state) {
    const std::string_view reason = unmetReason(entry.command->needs, state);
    if (entry.action->isEnabled() == reason.empty())
        return;
    entry.action->setEnabled(reason.empty());
    entry.action->setStatusTip(commandText(reason.empty() ? entry.command->help : reason));
}

} // namespace mirovane
