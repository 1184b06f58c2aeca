#pragma once

#include "discover/sweep/SweepRun.h"

#include <QAbstractTableModel>

#include <cstddef>
#include <vector>

namespace mirovane {

/// The hosts that a sweep has found, in the order in which they answered: address and name. Takes batches, so
/// that thousands of hosts a second cost one insertion.
class CFoundHostsModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { Address, Name, ColumnCount };

    using QAbstractTableModel::QAbstractTableModel;

    /// `hosts` are all found until now, `changed` the places in it that are new or got a name since the last
    /// call.
    void update(const std::vector<FoundHost>& hosts, const std::vector<std::size_t>& changed);
    void clear();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    std::vector<FoundHost> hosts_;
};

} // namespace mirovane
