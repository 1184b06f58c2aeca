#include "ui/find/QuickFindPopup.h"

#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

namespace mirovane {

namespace {

constexpr QSize wantedSize(680, 420);
constexpr int iconSide = 20;

} // namespace

CQuickFindPopup::CQuickFindPopup(const CMirovaneDoc& document, CIconSet& icons, QWidget* parent)
    : QFrame(parent, Qt::Popup),
      model_(document, icons, this),
      line_(new QLineEdit(this)),
      list_(new QTreeView(this)),
      status_(new QLabel(this)) {
    setObjectName(QStringLiteral("quickFind"));
    setAccessibleName(tr("Quick find"));
    setFrameStyle(QFrame::StyledPanel | QFrame::Raised);
    setFocusProxy(line_);
    layOut();
    line_->installEventFilter(this);
    connect(line_, &QLineEdit::textChanged, this, &CQuickFindPopup::look);
    connect(list_, &QTreeView::clicked, this, &CQuickFindPopup::choose);
}

void CQuickFindPopup::layOut() {
    line_->setObjectName(QStringLiteral("quickFindText"));
    line_->setAccessibleName(tr("Quick find"));
    line_->setPlaceholderText(tr("Name, address, user, MAC address, jack, or any other text"));
    line_->setClearButtonEnabled(true);
    list_->setObjectName(QStringLiteral("quickFindList"));
    list_->setAccessibleName(tr("Devices found"));
    list_->setModel(&model_);
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setItemsExpandable(false);
    list_->setAllColumnsShowFocus(true);
    list_->setIconSize({iconSide, iconSide});
    list_->setFocusPolicy(Qt::NoFocus);
    list_->header()->hide();
    list_->header()->setStretchLastSection(true);
    status_->setObjectName(QStringLiteral("quickFindStatus"));
    status_->setTextFormat(Qt::PlainText);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(line_);
    layout->addWidget(list_);
    layout->addWidget(status_);
}

void CQuickFindPopup::present(QPoint at, const QString& typed) {
    const QScreen* screen = QGuiApplication::screenAt(at);
    const QRect area = (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    const QSize size = wantedSize.boundedTo(area.size());
    const QPoint corner(std::clamp(at.x(), area.left(), area.left() + area.width() - size.width()),
                        std::clamp(at.y(), area.top(), area.top() + area.height() - size.height()));
    setGeometry({corner, size});
    model_.prepare();
    if (typed.isEmpty())
        line_->selectAll(); // what was looked for last stays until something is typed
    else
        line_->setText(typed);
    look();
    show();
    line_->setFocus(Qt::PopupFocusReason);
}

void CQuickFindPopup::look() {
    model_.look(line_->text());
    const int width = list_->viewport()->width();
    constexpr int shares[CQuickFindModel::columnCount_] = {32, 10, 17, 18, 23};
    for (int column = 0; column < CQuickFindModel::columnCount_; ++column)
        list_->setColumnWidth(column, width * shares[column] / 100);
    if (model_.rowCount() > 0)
        list_->setCurrentIndex(model_.index(0, 0));
    const QLocale locale;
    const int shown = model_.rowCount();
    if (line_->text().trimmed().isEmpty())
        status_->setText(tr("Enter shows the device, Esc closes."));
    else if (shown == 0)
        status_->setText(tr("No device fits."));
    else if (static_cast<std::size_t>(shown) < model_.total())
        status_->setText(tr("The best %1 of %2 devices")
                             .arg(locale.toString(shown), locale.toString(qulonglong{model_.total()})));
    else
        status_->setText(shown == 1 ? tr("1 device") : tr("%1 devices").arg(locale.toString(shown)));
}

void CQuickFindPopup::choose(const QModelIndex& index) {
    if (!index.isValid())
        return;
    const DeviceKey device = model_.deviceAt(index.row());
    hide();
    Q_EMIT deviceChosen(device);
}

bool CQuickFindPopup::walk(int key) {
    const int rows = model_.rowCount();
    const int page = std::max(1, list_->viewport()->height() / std::max(1, list_->sizeHintForRow(0)) - 1);
    int row = list_->currentIndex().row();
    if (key == Qt::Key_Down)
        ++row;
    else if (key == Qt::Key_Up)
        --row;
    else if (key == Qt::Key_PageDown)
        row += page;
    else if (key == Qt::Key_PageUp)
        row -= page;
    else
        return false;
    if (rows > 0)
        list_->setCurrentIndex(model_.index(std::clamp(row, 0, rows - 1), 0));
    return true;
}

bool CQuickFindPopup::eventFilter(QObject* watched, QEvent* event) {
    if (watched != line_ || event->type() != QEvent::KeyPress)
        return QFrame::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        choose(list_->currentIndex());
        return true;
    }
    if (key == Qt::Key_Escape) {
        hide();
        return true;
    }
    return walk(key);
}

CQuickFindField::CQuickFindField(QWidget* parent) : QLineEdit(parent) {
    setObjectName(QStringLiteral("quickFindField"));
    setAccessibleName(tr("Quick find"));
    setPlaceholderText(tr("Quick find (Ctrl+K)"));
    setToolTip(tr("Find a device by anything that is known of it"));
    setReadOnly(true);
    constexpr int narrowest = 120;
    constexpr int widest = 220;
    setMinimumWidth(narrowest);
    setMaximumWidth(widest);
}

void CQuickFindField::mousePressEvent(QMouseEvent*) {
    Q_EMIT wanted({});
}

void CQuickFindField::keyPressEvent(QKeyEvent* event) {
    const bool opens =
        event->key() == Qt::Key_Return || event->key() == Qt::Key_Space || event->key() == Qt::Key_Down;
    const QString typed = event->text().trimmed();
    if (opens || (!typed.isEmpty() && typed[0].isPrint()))
        Q_EMIT wanted(typed);
    else
        QLineEdit::keyPressEvent(event);
}

} // namespace mirovane
