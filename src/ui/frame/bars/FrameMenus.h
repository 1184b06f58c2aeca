#pragma once

#include "ui/frame/base/CommandActions.h"
#include "ui/frame/base/RecentFiles.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QObject>

#include <functional>
#include <string>

namespace mirovane {

/// The menu bar, made from the command table. Belongs to the menu bar.
class CFrameMenus : public QObject {
    Q_OBJECT

public:
    struct Parts {
        const CCommandActions& actions;
        const CRecentFiles& recent;
        std::function<void(const std::string& path)> openRecent;
        std::function<void()> aboutToShow; ///< check marks and enablement are brought up to date
    };

    CFrameMenus(QMenuBar& bar, Parts parts);

private:
    QMenu* menuAt(MenuId id);
    void addCommand(const CommandDefinition& command);
    void fillRecentFiles();

    QMenuBar& bar_;
    Parts parts_;
    std::map<MenuId, QMenu*> menus_;
    QMenu* recentMenu_ = nullptr;
    QAction* recentEnd_ = nullptr; ///< the recent files stand before this separator
    QList<QAction*> recentActions_;
};

/// "&1 plan.mv [/srv/floors]": the number is the key, the name is what the user looks for.
QString recentFileText(int number, const std::string& path);

} // namespace mirovane
