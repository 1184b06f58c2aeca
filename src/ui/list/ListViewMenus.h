#pragma once

#include "ui/list/ListColumnWidths.h"
#include "ui/list/ListTable.h"

#include <QMenuBar>

#include <functional>
#include <vector>

namespace mirovane {

/// The List View's menus: which kinds of devices have rows, copying and finding, and the order. Every entry
/// has its key or letter. Belongs to the menu bar.
class CListViewMenus final : public QObject {
    Q_OBJECT

public:
    struct Parts {
        CListViewModel& rows;
        CListTable& table;
        CListColumnWidths& widths;
        CSettings& settings;
        std::function<void()> refresh; ///< "&Refresh"
        std::function<void()> close;
        std::function<void()> properties; ///< of the selected rows
    };

    CListViewMenus(QMenuBar& bar, Parts parts);

private:
    void makeViewMenu(QMenu& menu);
    void makeHideMenu(QMenu& menu);
    void makeEditMenu(QMenu& menu);
    void makeSortMenu(QMenu& menu);
    void makePopups();
    void addPlaceToggle(QMenu& menu, const QString& text, bool ListFilter::*shown);
    void addHideToggle(QMenu& menu, const QString& text, std::int32_t type);
    QAction* addCommand(QMenu& menu, const QString& text, const QKeySequence& key, std::function<void()> run);
    void setHiddenTypes(std::uint32_t hidden);
    void setFilter(const ListFilter& filter);
    void copyRows();
    void refreshChecks();
    void popUpForTitle(QPoint where);

    Parts parts_;
    QAction* copy_ = nullptr;
    QAction* selectAll_ = nullptr;
    QAction* show_ = nullptr;
    QAction* properties_ = nullptr;
    std::vector<std::function<void()>> checks_; ///< each brings the mark of one entry up to date
};

} // namespace mirovane
