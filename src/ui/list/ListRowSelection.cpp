#include "ui/list/ListRowSelection.h"

namespace mirovane {

CListRowSelection::CListRowSelection(CListViewModel& rows, QObject* parent)
    : QItemSelectionModel(&rows, parent), rows_(rows) {
    connect(
        &rows, &CListViewModel::rearranged, this, [this] { base_.clear(); });
}

void CListRowSelection::select(const QModelIndex& index, SelectionFlags command) {
    select(QItemSelection(index, index), command);
}

void CListRowSelection::select(const QItemSelection& selection, SelectionFlags command) {
    if (command == NoUpdate)
        return;
    if (command & Clear)
        base_.assign(rows_.selectedRows().size(), 0);
    else if (!(command & Current) || base_.size() != rows_.selectedRows().size())
        base_ = rows_.selectedRows();

    std::vector<char> wanted = base_;
    for (const QItemSelectionRange& range : selection) {
        if (!range.isValid())
            continue;
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const auto place = static_cast<std::size_t>(row);
            if ((command & Toggle) == Toggle)
                wanted[place] = base_[place] ? 0 : 1;
            else
                wanted[place] = command & Select ? 1 : 0;
        }
    }
    rows_.setSelectedRows(wanted, command.testFlag(Clear));
}

} // namespace mirovane
