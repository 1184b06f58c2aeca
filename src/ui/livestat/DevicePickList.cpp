#include "ui/livestat/DevicePickList.h"

#include "ui/widgets/DialogText.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace mirovane {

namespace {

constexpr int linesInSight = 7;

QString entryText(const CHardware& device) {
    QStringList parts;
    for (const std::string& field : {device.Name, device.IPAddress, device.Username, device.Comment}) {
        const QString part = shownText(field).simplified();
        if (!part.isEmpty())
            parts << part;
    }
    if (device.inDiscovered())
        parts << QObject::tr("in Discovered/Misc");
    return QStringLiteral("%1:  ").arg(device.RecID) + parts.join(QStringLiteral("  ·  "));
}

} // namespace

CDevicePickList::CDevicePickList(QWidget* parent)
    : QWidget(parent), search_(new QLineEdit(this)), list_(new QListView(this)) {
    search_->setObjectName(QStringLiteral("deviceSearch"));
    search_->setAccessibleName(tr("Search for a device"));
    search_->setPlaceholderText(tr("Part of a name, address, user or comment"));
    search_->setClearButtonEnabled(true);
    search_->installEventFilter(this);
    list_->setObjectName(QStringLiteral("deviceList"));
    list_->setAccessibleName(tr("Devices"));
    list_->setModel(&model_);
    list_->setUniformItemSizes(true);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setMinimumHeight(linesInSight * (list_->fontMetrics().height() + 2) + 2 * list_->frameWidth());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(search_);
    layout->addWidget(list_, 1);
    connect(search_, &QLineEdit::textChanged, this, &CDevicePickList::narrow);
}

void CDevicePickList::offer(const CMirovaneDoc& document, std::int32_t type) {
    all_.clear();
    std::int32_t selected = pickedRecID();
    for (std::size_t i = 0; i < document.size(); ++i) {
        const CHardware& record = document.at(i);
        if (!record.isDevice() || floorCode(record.Type) != type)
            continue;
        all_.push_back({record.RecID, entryText(record)});
        if (record.Selected != 0 && selected == 0)
            selected = record.RecID;
    }
    narrow();
    pick(selected);
}

void CDevicePickList::pick(std::int32_t recID) {
    for (std::size_t i = 0; i < shown_.size(); ++i) {
        if (shown_[i] == recID) {
            list_->setCurrentIndex(model_.index(static_cast<int>(i)));
            list_->scrollTo(list_->currentIndex(), QAbstractItemView::PositionAtCenter);
        }
    }
}

void CDevicePickList::narrow() {
    const QString wanted = search_->text().trimmed();
    QStringList texts;
    shown_.clear();
    for (const Entry& entry : all_) {
        if (!entry.text.contains(wanted, Qt::CaseInsensitive))
            continue;
        shown_.push_back(entry.RecID);
        texts << entry.text;
    }
    model_.setStringList(texts);
    if (!shown_.empty())
        list_->setCurrentIndex(model_.index(0));
}

std::int32_t CDevicePickList::pickedRecID() const {
    const QModelIndex current = list_->currentIndex();
    return current.isValid() ? shown_[static_cast<std::size_t>(current.row())] : 0;
}

bool CDevicePickList::eventFilter(QObject* watched, QEvent* event) {
    if (watched == search_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown)
            return QCoreApplication::sendEvent(list_, event);
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace mirovane
