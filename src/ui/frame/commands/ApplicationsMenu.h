#pragma once

#include "applications/Applications.h"
#include "ui/frame/base/CommandActions.h"

#include <QMenu>
#include <QMenuBar>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <functional>
#include <vector>

namespace mirovane {

/// The "&Applications" menu: an item per External Application that is on the menu, then "P&roperties". It
/// is in the menu bar while there is such an application, and comes up at a right click on the floor;
/// without applications the right click brings "P&roperties" alone. Follows the document by itself, but never
/// while it is open: an item must not change under the pointer. Belongs to the menu bar. Main thread.
class CApplicationsMenu : public QObject, private DocumentObserver {
    Q_OBJECT

public:
    struct Parts {
        const CMirovaneDoc& document; ///< outlives the menu
        const CCommandActions& actions;
        std::function<void(const ApplicationValues& application)> run;
        std::function<std::string()> targets; ///< in words: the devices that an application is run for
        std::function<void()> aboutToShow;    ///< enablement is brought up to date
    };

    CApplicationsMenu(QMenuBar& bar, Parts parts);
    ~CApplicationsMenu() override;

    void popup(QPoint screenPoint);

    /// Runs the entry with this command id. Nothing happens for an id that the menu does not have, or when
    /// the entry has gone from the datafile since.
    void runCommand(int id);

private:
    // DocumentObserver
    void recordAdded(const CHardware& record) override { changed(record); }
    void recordChanged(const CHardware& before, const CHardware& after) override {
        changed(before);
        changed(after);
    }
    void recordRemoved(const CHardware& record) override { changed(record); }
    void orderChanged() override { rebuildSoon_.start(); }
    void documentReplaced() override { rebuildSoon_.start(); }

    void changed(const CHardware& record);
    void rebuild();
    void fill();
    void placeInBar();
    void showCommands();
    void showTargets();
    void addCommands(QMenu& menu);

    QMenuBar& bar_;
    Parts parts_;
    std::vector<ApplicationValues> shown_; ///< what the items stand for, in their order
    QMenu* menu_;
    QMenu* plain_;            ///< "P&roperties" alone
    QList<QAction*> targets_; ///< the first line of each menu and what parts it from the others
    QTimer rebuildSoon_;
};

} // namespace mirovane
