#pragma once

#include "model/find/QuickFind.h"
#include "ui/floor/paint/IconSet.h"

#include <QAbstractTableModel>
#include <QIcon>
#include <QString>

#include <vector>

namespace mirovane {

/// The devices that the quick find found, a row each. It holds texts, not records: those may go while the
/// list is looked at.
class CQuickFindModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Device, State, Address, User, Place, columnCount_ };

    /// More than anybody reads; the line below the list says how many there are.
    static constexpr std::size_t mostRows = 200;

    CQuickFindModel(const CMirovaneDoc& document, CIconSet& icons, QObject* parent);

    void prepare() { finder_.prepare(); }
    void look(const QString& typed);
    std::size_t total() const { return total_; }

    DeviceKey deviceAt(int row) const { return rows_[static_cast<std::size_t>(row)].device; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    struct Row {
        DeviceKey device;
        std::int32_t type = 0;
        std::int32_t state = 0;
        QString texts[columnCount_];
    };

    Row rowOf(const CHardware& device);
    QIcon icon(const Row& row) const;

    const CMirovaneDoc& document_;
    CIconSet& icons_;
    CQuickFind finder_;
    std::vector<Row> rows_;
    std::size_t total_ = 0;
};

} // namespace mirovane
