#include "ui/discover/FoundHostsModel.h"

#include "discover/AddressRanges.h"
#include "ui/widgets/DialogText.h"

#include <algorithm>

namespace mirovane {

void CFoundHostsModel::update(const std::vector<FoundHost>& hosts, const std::vector<std::size_t>& changed) {
    const std::size_t before = hosts_.size();
    if (hosts.size() > before) {
        beginInsertRows({}, static_cast<int>(before), static_cast<int>(hosts.size()) - 1);
        hosts_.insert(hosts_.end(), hosts.begin() + static_cast<std::ptrdiff_t>(before), hosts.end());
        endInsertRows();
    }
    std::size_t first = before;
    std::size_t last = 0;
    for (const std::size_t place : changed) {
        if (place >= before || hosts_[place] == hosts[place])
            continue;
        hosts_[place] = hosts[place];
        first = std::min(first, place);
        last = std::max(last, place);
    }
    if (first < before)
        Q_EMIT dataChanged(index(static_cast<int>(first), Name), index(static_cast<int>(last), Name));
}

void CFoundHostsModel::clear() {
    beginResetModel();
    hosts_.clear();
    endResetModel();
}

int CFoundHostsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(hosts_.size());
}

int CFoundHostsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant CFoundHostsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    const FoundHost& host = hosts_[static_cast<std::size_t>(index.row())];
    if (index.column() == Address)
        return role == Qt::DisplayRole ? qText(formatRangeAddress(host.address)) : QString();
    // A name comes from the network: a tooltip must not take it for markup.
    const QString name = shownText(host.name);
    return role == Qt::DisplayRole || name.isEmpty() ? name : name.toHtmlEscaped();
}

QVariant CFoundHostsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == Address ? tr("IP Address") : tr("Name");
}

} // namespace mirovane
