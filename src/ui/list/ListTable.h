#pragma once

#include "ui/list/ListRowSelection.h"
#include "ui/list/ListSearch.h"
#include "ui/list/ListViewModel.h"

#include <QElapsedTimer>
#include <QTableView>

#include <cstdint>
#include <optional>

namespace mirovane {

/// The table of the List View: rows of one height, titles to click, rows to select, letters to type. The
/// current row and the place in the list survive every refill, found again by record ID. Main thread; the
/// model outlives the table.
class CListTable final : public QTableView {
    Q_OBJECT

public:
    explicit CListTable(CListViewModel& rows, QWidget* parent = nullptr);

    /// The device of the current row; 0 when there is none.
    std::int32_t currentDevice() const;

    /// The row that stands at the top.
    int topRow() const { return rowAt(0); }

    /// To the next row with the text typed last.
    void findAgain(SearchDirection direction);

    /// Sorts by a column, as a click on its title does.
    void sortBy(ListColumn column);

    /// Makes the device's row the current one, and brings it into view. Nothing when it has none.
    void goToDevice(std::int32_t recID);

    /// Back to the first row, with no current one: another datafile.
    void goToStart();

    void keyboardSearch(const QString& letters) override;

Q_SIGNALS:
    /// Enter or a double-click on a row.
    void rowActivated(std::int32_t recID);

    /// What was typed to find a row; `found` false when no row has it.
    void searched(const QString& text, bool found);

protected:
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    /// Where the user is, in terms that survive a refill.
    struct Place {
        std::int32_t current = 0;
        int column = 0;
        int currentBelowTop = -1; ///< rows between the top one and the current one; -1: it is out of view
        std::int32_t top = 0;
        int topNumber = 0;
    };

    void setUpTitles();
    void setRowHeight();
    void rememberPlace();
    void restorePlace();
    QItemSelectionModel::SelectionFlags pressCommand(const QModelIndex& index,
                                                     const QMouseEvent& event) const;
    QString emptyText() const;
    bool goTo(std::optional<int> row);
    bool endTyping();

    CListViewModel& rows_;
    Place place_;
    QString typed_;
    QElapsedTimer lastLetter_;
    mutable QItemSelectionModel::SelectionFlags ctrlDrag_ = QItemSelectionModel::Select;
};

} // namespace mirovane
