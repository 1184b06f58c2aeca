#include "ui/list/ListViewMenus.h"

#include "model/rows/ClipboardText.h"
#include "ui/widgets/DialogText.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>

#include <array>
#include <utility>

namespace mirovane {

namespace {

struct HideEntry {
    std::int32_t type;
    const char* text;
};

/// In the menu's order, which is not that of the codes.
constexpr std::array hideEntries{
    HideEntry{DeviceType::LocationMarker, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "Location Mar&ker")},
    HideEntry{DeviceType::Jack, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "&Jacks")},
    HideEntry{DeviceType::Computer, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "&Computers")},
    HideEntry{DeviceType::Printer, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "&Printers")},
    HideEntry{DeviceType::Laptop, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "Lap&tops")},
    HideEntry{DeviceType::Router, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "&Routers")},
    HideEntry{DeviceType::Switch, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "&Switches")},
    HideEntry{DeviceType::Phone, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "P&hones")},
    HideEntry{DeviceType::Camera, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "Ca&mera")},
    HideEntry{DeviceType::CardModule, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "Car&d Module")},
    HideEntry{DeviceType::Ups, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "&UPS")},
    HideEntry{DeviceType::Wireless, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "Wir&eless")},
    HideEntry{DeviceType::Unknown, QT_TRANSLATE_NOOP("mirovane::CListViewMenus", "Unknown")},
};

constexpr std::uint32_t bitOf(std::int32_t type) {
    return std::uint32_t{1} << (type - 1);
}

constexpr std::uint32_t everyType = bitOf(DeviceType::last + 1) - 1;

constexpr std::string_view addressesSetting = "ListViewAddressesAsNumbers";

/// The first ten columns; the others are reached by their letters in the menu.
QKeySequence sortKey(int column) {
    if (column > 9)
        return {};
    return QKeySequence(QStringLiteral("Ctrl+%1").arg((column + 1) % 10));
}

} // namespace

CListViewMenus::CListViewMenus(QMenuBar& bar, Parts parts) : QObject(&bar), parts_(std::move(parts)) {
    const auto add = [&bar](const QString& title, const char* name) {
        QMenu* menu = bar.addMenu(title);
        menu->setObjectName(QLatin1String(name));
        return menu;
    };
    makeViewMenu(*add(tr("&View"), "listMenuView"));
    makeEditMenu(*add(tr("&Edit"), "listMenuEdit"));
    makeSortMenu(*add(tr("&Sort"), "listMenuSort"));
    makePopups();
    connect(&parts_.rows, &CListViewModel::updated, this, &CListViewMenus::refreshChecks);
    refreshChecks();
}

QAction* CListViewMenus::addCommand(QMenu& menu, const QString& text, const QKeySequence& key,
                                    std::function<void()> run) {
    QAction* action = menu.addAction(text);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, [run = std::move(run)] { run(); });
    return action;
}

// ---- View

void CListViewMenus::makeViewMenu(QMenu& menu) {
    makeHideMenu(*menu.addMenu(tr("&Hide")));
    addPlaceToggle(menu, tr("&Discovered/Misc Device"), &ListFilter::discovered);
    addPlaceToggle(menu, tr("Main Floor Devices"), &ListFilter::floor);
    menu.addSeparator();
    addCommand(menu, tr("&Refresh"), QKeySequence(Qt::Key_F5), parts_.refresh);
    menu.addSeparator();
    addCommand(
        menu, tr("&Fit Columns to Their Texts"), {}, [this] { parts_.table.resizeColumnsToContents(); });
    addCommand(menu, tr("Reset Column &Widths"), {}, [this] { parts_.widths.reset(parts_.table); });
    menu.addSeparator();
    addCommand(menu, tr("&Close"), QKeySequence(QStringLiteral("Ctrl+W")), parts_.close);
}

void CListViewMenus::makeHideMenu(QMenu& menu) {
    menu.setObjectName(QStringLiteral("listMenuHide"));
    for (const HideEntry& entry : hideEntries)
        addHideToggle(menu, tr(entry.text), entry.type);
    menu.addSeparator();
    addCommand(
        menu, tr("&None"), {}, [this] { setHiddenTypes(0); });
    addCommand(menu, tr("&All"), {}, [this] { setHiddenTypes(everyType); });
}

void CListViewMenus::addHideToggle(QMenu& menu, const QString& text, std::int32_t type) {
    QAction* action = addCommand(menu, text, {}, [this, type] {
        setHiddenTypes(parts_.rows.state().filter.hiddenTypes ^ bitOf(type));
    });
    action->setCheckable(true);
    checks_.push_back([this, action, type] {
        action->setChecked((parts_.rows.state().filter.hiddenTypes & bitOf(type)) != 0);
    });
}

void CListViewMenus::addPlaceToggle(QMenu& menu, const QString& text, bool ListFilter::*shown) {
    QAction* action = addCommand(menu, text, {}, [this, shown] {
        ListFilter filter = parts_.rows.state().filter;
        filter.*shown = !(filter.*shown);
        setFilter(filter);
    });
    action->setCheckable(true);
    checks_.push_back([this, action, shown] { action->setChecked(parts_.rows.state().filter.*shown); });
}

void CListViewMenus::setHiddenTypes(std::uint32_t hidden) {
    ListFilter filter = parts_.rows.state().filter;
    filter.hiddenTypes = hidden;
    setFilter(filter);
}

void CListViewMenus::setFilter(const ListFilter& filter) {
    parts_.rows.setFilter(filter);
    refreshChecks();
}

// ---- Edit

void CListViewMenus::makeEditMenu(QMenu& menu) {
    copy_ = addCommand(menu, tr("&Copy"), {}, [this] { copyRows(); });
    copy_->setShortcuts({QKeySequence(QStringLiteral("Ctrl+C")), QKeySequence(QStringLiteral("Ctrl+Ins"))});
    selectAll_ = addCommand(menu, tr("Select &All"), QKeySequence(QStringLiteral("Ctrl+A")),
                            [this] { parts_.table.selectAll(); });
    menu.addSeparator();
    addCommand(
        menu, tr("Find Typed Text &Again"), QKeySequence(Qt::Key_F3),
        [this] { parts_.table.findAgain(SearchDirection::Down); });
    addCommand(menu, tr("Find Typed Text &Before"), QKeySequence(QStringLiteral("Shift+F3")),
               [this] { parts_.table.findAgain(SearchDirection::Up); });
    menu.addSeparator();
    properties_ = addCommand(menu, tr("&Properties"), {}, parts_.properties);
    properties_->setShortcuts(
        {QKeySequence(QStringLiteral("Alt+Return")), QKeySequence(QStringLiteral("Alt+Enter"))});
    show_ = menu.addAction(tr("Show on &Floor\tEnter"));
    connect(show_, &QAction::triggered, this, [this] {
        if (const std::int32_t device = parts_.table.currentDevice())
            Q_EMIT parts_.table.rowActivated(device);
    });
}

void CListViewMenus::copyRows() {
    parts_.rows.flush();
    std::vector<const CHardware*> devices;
    for (int row = 0; row < parts_.rows.rowCount(); ++row)
        if (parts_.rows.isSelected(row))
            devices.push_back(parts_.rows.recordAt(row));
    if (!devices.empty())
        QApplication::clipboard()->setText(qText(clipboardText(devices, ClipboardForm::Shown)));
}

// ---- Sort

void CListViewMenus::makeSortMenu(QMenu& menu) {
    for (int column = 0; column < listColumnCount; ++column) {
        const auto which = static_cast<ListColumn>(column);
        QAction* action = addCommand(menu, qText(listColumns()[static_cast<std::size_t>(column)].title),
                                     sortKey(column), [this, which] {
                                         parts_.table.sortBy(which);
                                         refreshChecks();
                                     });
        action->setCheckable(true);
        checks_.push_back([this, action, which] { action->setChecked(parts_.rows.state().column == which); });
    }
    menu.addSeparator();
    QAction* numbers = addCommand(menu, tr("Addresses as &Numbers"), {}, [this] {
        const bool on = parts_.rows.state().addresses == AddressOrder::Text;
        parts_.rows.setAddressOrder(on ? AddressOrder::Number : AddressOrder::Text);
        parts_.settings.write(addressesSetting, on ? 1 : 0);
        refreshChecks();
    });
    numbers->setCheckable(true);
    numbers->setObjectName(QStringLiteral("listAddressesAsNumbers"));
    checks_.push_back(
        [this, numbers] { numbers->setChecked(parts_.rows.state().addresses == AddressOrder::Number); });
    if (parts_.settings.read(addressesSetting, 0) != 0)
        parts_.rows.setAddressOrder(AddressOrder::Number);
}

// ---- under the right mouse button

void CListViewMenus::makePopups() {
    connect(&parts_.table, &QWidget::customContextMenuRequested, this, [this](QPoint where) {
        QMenu menu(&parts_.table);
        menu.addActions({show_, properties_, copy_, selectAll_});
        menu.exec(parts_.table.viewport()->mapToGlobal(where));
    });
    QHeaderView* titles = parts_.table.horizontalHeader();
    titles->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(titles, &QWidget::customContextMenuRequested, this, &CListViewMenus::popUpForTitle);
}

void CListViewMenus::popUpForTitle(QPoint where) {
    QHeaderView* titles = parts_.table.horizontalHeader();
    const int column = titles->logicalIndexAt(where);
    QMenu menu(titles);
    if (column >= 0)
        menu.addAction(
            tr("&Fit This Column to Its Texts"), titles,
            [this, column] { parts_.table.resizeColumnToContents(column); });
    menu.addAction(
        tr("Fit &All Columns"), titles, [this] { parts_.table.resizeColumnsToContents(); });
    menu.addAction(tr("&Reset Column Widths"), titles, [this] { parts_.widths.reset(parts_.table); });
    menu.exec(titles->mapToGlobal(where));
}

void CListViewMenus::refreshChecks() {
    for (const auto& check : checks_)
        check();
    copy_->setEnabled(parts_.rows.selectedCount() > 0);
    properties_->setEnabled(parts_.rows.selectedCount() > 0);
    show_->setEnabled(parts_.table.currentDevice() != 0);
}

} // namespace mirovane
