#include "ui/frame/bars/FrameMenus.h"

#include "model/records/Text.h"
#include "ui/widgets/DialogText.h"

#include <QFile>
#include <QFileInfo>

namespace mirovane {

QString recentFileText(int number, const std::string& path) {
    const QFileInfo file(QString::fromStdString(displayText(path)));
    QString shown = QStringLiteral("%1 [%2]").arg(file.fileName(), file.path());
    return QStringLiteral("&%1 ").arg(number) + shown.replace(u'&', QStringLiteral("&&"));
}

CFrameMenus::CFrameMenus(QMenuBar& bar, Parts parts) : QObject(&bar), bar_(bar), parts_(std::move(parts)) {
    for (const CommandDefinition& command : commandTable())
        if (findMenu(command.menu))
            addCommand(command);
}

/// Makes the menus on the way that do not exist yet, so that a menu without commands never comes to be.
QMenu* CFrameMenus::menuAt(MenuId id) {
    if (const auto found = menus_.find(id); found != menus_.end())
        return found->second;
    const MenuDefinition& definition = *findMenu(id);
    auto* menu = new QMenu(commandText(definition.text), &bar_);
    menu->setObjectName(qText(definition.name));
    menu->setToolTipsVisible(false);
    connect(menu, &QMenu::aboutToShow, this, parts_.aboutToShow);
    if (definition.parent == MenuId::None) {
        bar_.addMenu(menu);
    } else {
        QMenu* parent = menuAt(definition.parent);
        if (definition.groupStart)
            parent->addSeparator();
        parent->addMenu(menu);
    }
    return menus_[id] = menu;
}

void CFrameMenus::addCommand(const CommandDefinition& command) {
    QMenu* menu = menuAt(command.menu);
    if (command.id == CommandId::FileRecent) {
        recentMenu_ = menu;
        recentEnd_ = menu->addSeparator();
        connect(menu, &QMenu::aboutToShow, this, &CFrameMenus::fillRecentFiles);
        return;
    }
    if (command.groupStart)
        menu->addSeparator();
    menu->addAction(parts_.actions.action(command.name));
}

void CFrameMenus::fillRecentFiles() {
    qDeleteAll(recentActions_);
    recentActions_.clear();
    int number = 0;
    if (!parts_.recent.paths().empty())
        recentActions_ << recentMenu_->insertSeparator(recentEnd_);
    for (const std::string& path : parts_.recent.paths()) {
        auto* action = new QAction(recentFileText(++number, path), this);
        action->setObjectName(QStringLiteral("recentFile%1").arg(number));
        action->setStatusTip(tr("Open this datafile"));
        // Queued: opening rebuilds this very list.
        connect(
            action, &QAction::triggered, this, [this, path] { parts_.openRecent(path); },
            Qt::QueuedConnection);
        recentMenu_->insertAction(recentEnd_, action);
        recentActions_ << action;
    }
}

} // namespace mirovane
