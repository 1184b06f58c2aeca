#pragma once

#include <QIcon>
#include <QStyledItemDelegate>

namespace mirovane {

class CListViewModel;

/// Paints the cells of the List View. A device's state has a sign beside its word, different in shape and not
/// only in colour, which is still there where the column is too narrow for the word. The whole text of a cell
/// that is cut off is in its tool tip.
class CListCellDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    CListCellDelegate(const CListViewModel& rows, QObject* parent);

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

private:
    void addStateSign(QStyleOptionViewItem& option, int row) const;

    const CListViewModel& rows_;
    QIcon on_;
    QIcon off_;
};

} // namespace mirovane
