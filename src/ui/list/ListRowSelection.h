#pragma once

#include "ui/list/ListViewModel.h"

#include <QItemSelectionModel>

#include <vector>

namespace mirovane {

/// What the mouse and the keys select in the List View goes straight to the devices' Selected flags, where
/// the floor sees it; this class keeps the current row, and no ranges. A selection of tens of thousands of
/// scattered rows costs no more than one of a few, and it survives every sort and refill.
class CListRowSelection final : public QItemSelectionModel {
    Q_OBJECT

public:
    CListRowSelection(CListViewModel& rows, QObject* parent);

    void select(const QModelIndex& index, SelectionFlags command) override;

    /// Whole rows, whatever the cells.
    void select(const QItemSelection& selection, SelectionFlags command) override;

private:
    CListViewModel& rows_;
    std::vector<char> base_; ///< what was selected before the range that the user is still changing
};

} // namespace mirovane
