#include "ui/list/ListCellDelegate.h"

#include "ui/list/ListViewModel.h"
#include "ui/widgets/DialogText.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QPainter>
#include <QPixmap>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>

namespace mirovane {

namespace {

constexpr int signSize = 12;
constexpr qsizetype toolTipLimit = 2000;

const QColor green(0, 128, 55);
const QColor red(190, 25, 25);

/// On a field of twelve units: On is a filled disc with a tick, Off an empty ring with a cross.
void drawSign(QPainter& painter, bool on) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(on ? QColor(Qt::white) : red, 1));
    painter.setBrush(on ? green : QColor(Qt::white));
    painter.drawEllipse(QRectF(0.5, 0.5, 11, 11));
    painter.setPen(QPen(on ? QColor(Qt::white) : red, 1.8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (on) {
        const QPointF tick[] = {{3.3, 6.2}, {5.3, 8.2}, {8.7, 4.0}};
        painter.drawPolyline(tick, 3);
    } else {
        painter.drawLine(QPointF(4, 4), QPointF(8, 8));
        painter.drawLine(QPointF(8, 4), QPointF(4, 8));
    }
}

QIcon stateSign(bool on) {
    QIcon icon;
    for (const int ratio : {1, 2, 3, 4}) {
        QPixmap picture(signSize * ratio, signSize * ratio);
        picture.setDevicePixelRatio(ratio);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        drawSign(painter, on);
        painter.end();
        icon.addPixmap(picture);
        icon.addPixmap(picture, QIcon::Selected); // not tinted: the colours say something
    }
    return icon;
}

/// The way QCommonStyle leaves it around an item's text.
int textMargin(const QStyleOptionViewItem& option) {
    const QStyle* style = option.widget ? option.widget->style() : QApplication::style();
    return style->pixelMetric(QStyle::PM_FocusFrameHMargin, &option, option.widget) + 1;
}

} // namespace

CListCellDelegate::CListCellDelegate(const CListViewModel& rows, QObject* parent)
    : QStyledItemDelegate(parent), rows_(rows), on_(stateSign(true)), off_(stateSign(false)) {}

void CListCellDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
    QStyledItemDelegate::initStyleOption(option, index);
    option->state.setFlag(QStyle::State_Selected, rows_.isSelected(index.row()));
    // The whole row answers to the pointer or none of it; here none.
    option->state.setFlag(QStyle::State_MouseOver, false);
    if (static_cast<ListColumn>(index.column()) == ListColumn::LS)
        addStateSign(*option, index.row());
}

void CListCellDelegate::addStateSign(QStyleOptionViewItem& option, int row) const {
    const CHardware* device = rows_.recordAt(row);
    if (!device || device->State == DeviceState::Def)
        return;
    option.features |= QStyleOptionViewItem::HasDecoration;
    option.icon = device->State == DeviceState::On ? on_ : off_;
    option.decorationSize = QSize(signSize, signSize);
    const int room = option.rect.width() - signSize - 4 * textMargin(option);
    // Without a place yet the question is how wide the column should be.
    if (option.rect.width() > 0 && option.fontMetrics.horizontalAdvance(option.text) > room)
        option.text.clear();
}

bool CListCellDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                  const QStyleOptionViewItem& option, const QModelIndex& index) {
    const CHardware* device = rows_.recordAt(index.row());
    if (event->type() != QEvent::ToolTip || !device)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const auto column = static_cast<ListColumn>(index.column());
    const QString text = shownText(listCellText(*device, column)).left(toolTipLimit);
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const int room = option.rect.width() - 2 * textMargin(cell) - (cell.icon.isNull() ? 0 : 2 * signSize);
    const bool cut =
        cell.text.isEmpty() || text.contains(u'\n') || option.fontMetrics.horizontalAdvance(text) > room;
    if (cut && !text.isEmpty())
        QToolTip::showText(event->globalPos(), Qt::convertFromPlainText(text), view, option.rect);
    else
        QToolTip::hideText();
    return true;
}

} // namespace mirovane
