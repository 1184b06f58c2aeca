#pragma once

#include "model/Settings.h"
#include "model/rows/ListRows.h"

#include <QHeaderView>
#include <QTableView>
#include <QTimer>

#include <array>

namespace mirovane {

/// Gives the List View's columns the widths that the user left them with, or those they begin with, and
/// remembers each change shortly after it. Belongs to the titles.
class CListColumnWidths final : public QObject {
    Q_OBJECT

public:
    CListColumnWidths(QHeaderView& titles, CSettings& settings);

    /// Makes a column wide enough for a text, unless the user made it narrower than it began: of a number
    /// that is cut off nothing useful is left, and widths fitted to one datafile serve the next, too.
    void makeRoomFor(int column, const QString& text);

    /// Columns that the user has left alone become as wide as their titles and the texts in the table, within
    /// limits: no narrower than they began, and none so wide that it hides the others.
    void fit(QTableView& table);

    /// The widths that they begin with; remembered as such.
    void reset(QTableView& table);

    /// Writes now what is still waiting to be written.
    void flush();

private:
    void write();

    QHeaderView& titles_;
    CSettings& settings_;
    std::array<int, listColumnCount> began_{}; ///< the widths that nobody chose
    QTimer delay_;
};

} // namespace mirovane
