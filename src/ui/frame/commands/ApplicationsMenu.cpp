#include "ui/frame/commands/ApplicationsMenu.h"

#include "ui/widgets/DialogText.h"

#include <algorithm>
#include <utility>

namespace mirovane {

namespace {

/// Counted from 0: between Tools and Help.
constexpr int placeInMenuBar = 4;

/// A name is a name: its "&" marks no letter, and a tab in it starts no column of keys. An entry without a
/// name can at least be told from the others by its command.
QString itemText(const ApplicationValues& application) {
    const std::string& text = application.name.empty() ? application.command : application.name;
    return shownText(text).simplified().replace(u'&', QStringLiteral("&&"));
}

} // namespace

CApplicationsMenu::CApplicationsMenu(QMenuBar& bar, Parts parts)
    : QObject(&bar),
      bar_(bar),
      parts_(std::move(parts)),
      menu_(new QMenu(QObject::tr("&Applications"), &bar)),
      plain_(new QMenu(&bar)) {
    setObjectName(QStringLiteral("applicationsMenuKeeper"));
    menu_->setObjectName(QStringLiteral("menuApplications"));
    plain_->setObjectName(QStringLiteral("menuFloor"));
    for (QMenu* menu : {menu_, plain_})
        connect(menu, &QMenu::aboutToShow, this, [this] {
            showCommands();
            showTargets();
        });
    // Whatever was chosen runs first.
    connect(
        menu_, &QMenu::aboutToHide, this, [this] { rebuildSoon_.start(); }, Qt::QueuedConnection);
    rebuildSoon_.setSingleShot(true);
    rebuildSoon_.setInterval(0);
    connect(&rebuildSoon_, &QTimer::timeout, this, &CApplicationsMenu::rebuild);
    parts_.document.addObserver(*this);
    fill();
    rebuild();
    showCommands();
}

CApplicationsMenu::~CApplicationsMenu() {
    parts_.document.removeObserver(*this);
}

void CApplicationsMenu::popup(QPoint screenPoint) {
    if (rebuildSoon_.isActive())
        rebuild();
    (shown_.empty() ? plain_ : menu_)->popup(screenPoint);
}

void CApplicationsMenu::runCommand(int id) {
    const int item = id - firstApplicationCommand;
    if (item < 0 || item >= static_cast<int>(shown_.size()))
        return;
    const ApplicationValues chosen = shown_[static_cast<std::size_t>(item)];
    const std::vector<ApplicationValues> now = applicationsOnMenu(parts_.document);
    if (std::ranges::find(now, chosen) != now.end())
        parts_.run(chosen);
}

void CApplicationsMenu::changed(const CHardware& record) {
    if (record.Type == SpecialType::ApplicationRecord)
        rebuildSoon_.start();
}

void CApplicationsMenu::rebuild() {
    rebuildSoon_.stop();
    if (menu_->isVisible())
        return; // its closing brings us here again
    std::vector<ApplicationValues> wanted = applicationsOnMenu(parts_.document);
    if (wanted == shown_)
        return;
    shown_ = std::move(wanted);
    fill();
    placeInBar();
}

void CApplicationsMenu::fill() {
    qDeleteAll(std::exchange(targets_, {}));
    menu_->clear();
    plain_->clear();
    int id = firstApplicationCommand;
    for (const ApplicationValues& application : shown_) {
        QAction* item = menu_->addAction(itemText(application));
        item->setData(id);
        item->setStatusTip(tr("Run for the selected devices: ") + shownText(application.command));
        connect(item, &QAction::triggered, this, [this, id] { runCommand(id); });
        ++id;
    }
    menu_->addSeparator();
    addCommands(*menu_);
    addCommands(*plain_);
}

void CApplicationsMenu::placeInBar() {
    bar_.removeAction(menu_->menuAction());
    if (shown_.empty())
        return;
    const QList<QAction*> menus = bar_.actions();
    const bool helpLast = !menus.isEmpty() && menus.size() <= placeInMenuBar;
    QAction* before = helpLast ? menus.last() : menus.value(placeInMenuBar);
    bar_.insertMenu(before, menu_);
}

/// The first line names the devices, so that nothing is run for others than those under the eye.
void CApplicationsMenu::showTargets() {
    qDeleteAll(std::exchange(targets_, {}));
    const QString names = qText(parts_.targets()).simplified().replace(u'&', QStringLiteral("&&"));
    if (names.isEmpty())
        return;
    for (QMenu* menu : {menu_, plain_}) {
        auto* line = new QAction(names, menu);
        line->setObjectName(QStringLiteral("applicationsTargets"));
        line->setEnabled(false);
        QAction* first = menu->actions().value(0);
        menu->insertAction(first, line);
        targets_ << line << menu->insertSeparator(first);
    }
}

/// What cannot be done to the devices is left out. A hidden action would never become enabled, so all of them
/// come back before it is known which can.
void CApplicationsMenu::showCommands() {
    QList<QAction*> actions;
    for (const CommandDefinition& command : commandTable())
        if (command.menu == MenuId::RightClick)
            actions << parts_.actions.action(command.name);
    for (QAction* action : actions)
        action->setVisible(true);
    parts_.aboutToShow();
    for (QAction* action : actions)
        action->setVisible(action->isEnabled());
}

void CApplicationsMenu::addCommands(QMenu& menu) {
    for (const CommandDefinition& command : commandTable())
        if (command.menu == MenuId::RightClick) {
            if (command.groupStart)
                menu.addSeparator();
            menu.addAction(parts_.actions.action(command.name));
        }
}

} // namespace mirovane
