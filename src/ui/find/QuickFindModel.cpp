#include "ui/find/QuickFindModel.h"

#include "model/rows/ListRows.h"
#include "ui/widgets/DialogText.h"

#include <QPixmap>

namespace mirovane {

CQuickFindModel::CQuickFindModel(const CMirovaneDoc& document, CIconSet& icons, QObject* parent)
    : QAbstractTableModel(parent), document_(document), icons_(icons), finder_(document) {}

void CQuickFindModel::look(const QString& typed) {
    beginResetModel();
    rows_.clear();
    const QuickFindResult found = finder_.find(typed.toStdString(), mostRows);
    total_ = found.total;
    for (const CHardware* device : found.devices)
        rows_.push_back(rowOf(*device));
    endResetModel();
}

/// A device without a name is called by what people know it by next.
CQuickFindModel::Row CQuickFindModel::rowOf(const CHardware& device) {
    Row row{document_.keyOf(device), floorCode(device.Type), device.State, {}};
    const std::string& name = !device.Name.empty() || floorCode(device.Type) != DeviceType::LocationMarker
                                  ? device.Name
                                  : device.Comment;
    row.texts[Device] = name.empty() ? qText(typeName(device.Type)) : shownText(name).simplified();
    row.texts[State] = shownText(listCellText(device, ListColumn::LS));
    row.texts[Address] = shownText(device.IPAddress);
    row.texts[User] = shownText(device.Username).simplified();
    row.texts[Place] = device.inDiscovered() ? tr("Discovered/Misc")
                                             : shownText(quickFindPlace(finder_, device)).simplified();
    return row;
}

int CQuickFindModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int CQuickFindModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnCount_;
}

QIcon CQuickFindModel::icon(const Row& row) const {
    return QPixmap::fromImage(icons_.bitmap(row.type, row.state));
}

QVariant CQuickFindModel::data(const QModelIndex& index, int role) const {
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    if (role == Qt::DisplayRole)
        return row.texts[index.column()];
    if (role == Qt::DecorationRole && index.column() == Device)
        return icon(row);
    if (role == Qt::AccessibleTextRole) {
        QStringList words;
        for (const QString& text : row.texts)
            if (!text.isEmpty())
                words << text;
        return words.join(QStringLiteral(", "));
    }
    return {};
}

} // namespace mirovane
