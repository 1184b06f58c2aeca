#include "ui/list/ListTable.h"

#include "ui/list/ListCellDelegate.h"

#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>

namespace mirovane {

namespace {

using Flags = QItemSelectionModel::SelectionFlags;

/// After so long a letter begins another word.
constexpr int typingPauseMs = 1500;

/// So long people take a text for the one that they are typing: the window shows it for that time.
constexpr int typedShownMs = 4000;

constexpr int smallestColumn = 14;

/// A column is fitted to the texts of so many rows; all 65,000 would take seconds.
constexpr int rowsToFit = 200;

constexpr int rowPadding = 6;

constexpr Flags onlyThis = QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows;
constexpr Flags rangeToHere = onlyThis | QItemSelectionModel::Current;
constexpr Flags andRangeToHere = QItemSelectionModel::SelectCurrent | QItemSelectionModel::Rows;

} // namespace

CListTable::CListTable(CListViewModel& rows, QWidget* parent) : QTableView(parent), rows_(rows) {
    setObjectName(QStringLiteral("listTable"));
    setAccessibleName(tr("Devices"));
    setModel(&rows);
    setSelectionModel(new CListRowSelection(rows, this));
    setItemDelegate(new CListCellDelegate(rows, this));
    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setAlternatingRowColors(true);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
    setContextMenuPolicy(Qt::CustomContextMenu);
    setUpTitles();
    setRowHeight();
    connect(&rows, &CListViewModel::aboutToRearrange, this, &CListTable::rememberPlace);
    connect(&rows, &CListViewModel::rearranged, this, &CListTable::restorePlace);
    connect(this, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { Q_EMIT rowActivated(rows_.recIDAt(index.row())); });
}

void CListTable::setUpTitles() {
    QHeaderView* titles = horizontalHeader();
    titles->setObjectName(QStringLiteral("listTitles"));
    titles->setHighlightSections(false);
    titles->setMinimumSectionSize(smallestColumn);
    titles->setTextElideMode(Qt::ElideNone);
    titles->setResizeContentsPrecision(rowsToFit);
    titles->setSectionsClickable(true);
    titles->setSortIndicatorShown(true);
    // A click on a title sorts here, where a table would select the column.
    disconnect(titles, SIGNAL(sectionPressed(int)), this, nullptr);
    disconnect(titles, SIGNAL(sectionEntered(int)), this, nullptr);
    const auto showOrder = [this, titles] {
        const ListViewState& state = rows_.state();
        titles->setSortIndicator(static_cast<int>(state.column),
                                 state.greatestFirst ? Qt::DescendingOrder : Qt::AscendingOrder);
    };
    showOrder();
    connect(&rows_, &CListViewModel::sortChanged, this, showOrder);
    connect(titles, &QHeaderView::sectionClicked, this,
            [this](int column) { sortBy(static_cast<ListColumn>(column)); });
}

/// One height for all rows: nobody has to ask 65,000 rows how high they would like to be.
void CListTable::setRowHeight() {
    verticalHeader()->hide();
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + rowPadding);
}

void CListTable::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        setRowHeight();
}

std::int32_t CListTable::currentDevice() const {
    const CHardware* device = rows_.recordAt(currentIndex().row());
    return device ? device->RecID : 0;
}

/// The user asked for another order: his row stays in view where it was, else the list begins at the top.
void CListTable::sortBy(ListColumn column) {
    const int current = currentIndex().row();
    const bool seen = current >= 0 && viewport()->rect().intersects(visualRect(currentIndex()));
    rows_.sortBy(column);
    if (seen)
        scrollTo(currentIndex(), PositionAtCenter);
    else
        scrollToTop();
}

void CListTable::goToDevice(std::int32_t recID) {
    const int row = rows_.rowOfDevice(recID);
    if (row < 0)
        return;
    const QModelIndex place = rows_.index(row, std::max(0, currentIndex().column()));
    setCurrentIndex(place);
    scrollTo(place);
}

void CListTable::goToStart() {
    place_ = {};
    selectionModel()->clearCurrentIndex();
    scrollToTop();
}

// ---- the user's place

void CListTable::rememberPlace() {
    const int top = topRow();
    if (top < 0)
        return;
    place_ = {};
    place_.topNumber = top;
    place_.top = rows_.recIDAt(top);
    const QModelIndex current = currentIndex();
    if (!current.isValid())
        return;
    place_.current = rows_.recIDAt(current.row());
    place_.column = current.column();
    if (viewport()->rect().intersects(visualRect(current)))
        place_.currentBelowTop = current.row() - top;
}

/// Whoever looks at the first rows goes on doing so. Elsewhere the current row stays where it is on the
/// screen, or, when it is out of view, the row at the top does.
void CListTable::restorePlace() {
    const int current = place_.current == 0 ? -1 : rows_.rowOfDevice(place_.current);
    executeDelayedItemsLayout();
    if (current >= 0) {
        const bool scrolls = hasAutoScroll();
        setAutoScroll(false); // a current cell must not pull the columns along
        selectionModel()->setCurrentIndex(rows_.index(current, place_.column), QItemSelectionModel::NoUpdate);
        setAutoScroll(scrolls);
    }
    int top = 0;
    if (place_.topNumber > 0) {
        const int wanted = place_.currentBelowTop >= 0 && current >= 0 ? current - place_.currentBelowTop
                                                                       : rows_.rowOfDevice(place_.top);
        top = wanted >= 0 ? wanted : place_.topNumber;
    }
    verticalScrollBar()->setValue(top);
}

// ---- selecting

/// The base class asks the selection model what is selected, which holds no ranges here; and what it does on
/// release serves dragging rows away, which nobody does.
Flags CListTable::selectionCommand(const QModelIndex& index, const QEvent* event) const {
    if (!event)
        return QTableView::selectionCommand(index, event);
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        return pressCommand(index, static_cast<const QMouseEvent&>(*event));
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
        return QItemSelectionModel::NoUpdate;
    case QEvent::MouseMove: {
        const bool ctrl = static_cast<const QMouseEvent*>(event)->modifiers().testFlag(Qt::ControlModifier);
        return ctrl ? ctrlDrag_ | QItemSelectionModel::Current | QItemSelectionModel::Rows : rangeToHere;
    }
    case QEvent::KeyPress: {
        const auto modifiers = static_cast<const QKeyEvent*>(event)->modifiers();
        const Flags base = QTableView::selectionCommand(index, event);
        const bool range = base.testFlag(QItemSelectionModel::Current);
        return range && !modifiers.testFlag(Qt::ControlModifier) ? rangeToHere : base;
    }
    default:
        return QTableView::selectionCommand(index, event);
    }
}

Flags CListTable::pressCommand(const QModelIndex& index, const QMouseEvent& event) const {
    const bool ctrl = event.modifiers().testFlag(Qt::ControlModifier);
    const bool shift = event.modifiers().testFlag(Qt::ShiftModifier);
    const bool selected = index.isValid() && rows_.isSelected(index.row());
    if (event.button() != Qt::LeftButton)
        return selected || ctrl || shift || !index.isValid() ? QItemSelectionModel::NoUpdate : onlyThis;
    if (!index.isValid())
        return ctrl || shift ? QItemSelectionModel::NoUpdate : QItemSelectionModel::Clear;
    if (shift)
        return ctrl ? andRangeToHere : rangeToHere;
    if (!ctrl)
        return onlyThis;
    ctrlDrag_ = selected ? QItemSelectionModel::Deselect : QItemSelectionModel::Select;
    return ctrlDrag_ | QItemSelectionModel::Rows;
}

// ---- keys

/// Home and End are for the first and the last row: the rows are what the user goes through.
QModelIndex CListTable::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const int column = std::max(0, currentIndex().column());
    if (action == MoveHome)
        return rows_.index(0, column);
    if (action == MoveEnd)
        return rows_.index(rows_.rowCount() - 1, column);
    return QTableView::moveCursor(action, modifiers);
}

void CListTable::keyPressEvent(QKeyEvent* event) {
    const bool typing = lastLetter_.isValid() && !lastLetter_.hasExpired(typingPauseMs);
    const bool plain = !(event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
    if (event->key() == Qt::Key_Escape && endTyping())
        return;
    if (event->matches(QKeySequence::Copy))
        return; // the menu's command copies rows; the base class would copy the current cell
    if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        if (const std::int32_t device = currentDevice())
            Q_EMIT rowActivated(device);
    } else if (plain && typing && event->key() == Qt::Key_Space) {
        keyboardSearch(QStringLiteral(" "));
    } else if (plain && typing && event->key() == Qt::Key_Backspace) {
        typed_.chop(1);
        keyboardSearch({});
    } else {
        QTableView::keyPressEvent(event);
    }
}

/// False when nothing is being typed: then the key is for the window.
bool CListTable::endTyping() {
    if (!lastLetter_.isValid() || lastLetter_.hasExpired(typedShownMs))
        return false;
    lastLetter_.invalidate();
    typed_.clear();
    Q_EMIT searched({}, true);
    return true;
}

/// Letters typed without a pause make one text, and the search begins at the current row, so that a row that
/// still fits stays. The same letter again and again goes from one row to the next.
void CListTable::keyboardSearch(const QString& letters) {
    const bool goesOn = lastLetter_.isValid() && !lastLetter_.hasExpired(typingPauseMs);
    lastLetter_.start();
    const bool repeated = goesOn && letters.size() == 1 && typed_ == letters;
    if (!repeated)
        typed_ = goesOn ? typed_ + letters : letters;
    if (typed_.isEmpty()) {
        Q_EMIT searched({}, true);
        return;
    }
    const bool fromNext = repeated || !goesOn;
    const int start = currentIndex().row() + (fromNext ? 1 : 0);
    const int count = std::max(1, rows_.rowCount());
    goTo(findListRow(rows_, typed_, std::max(0, start) % count));
}

void CListTable::findAgain(SearchDirection direction) {
    const int count = rows_.rowCount();
    if (typed_.isEmpty() || count == 0)
        return;
    const int step = direction == SearchDirection::Down ? 1 : count - 1;
    goTo(findListRow(rows_, typed_, (std::max(0, currentIndex().row()) + step) % count, direction));
}

bool CListTable::goTo(std::optional<int> row) {
    if (row) {
        // The view's own function: it also makes this the row from which a range is extended.
        setCurrentIndex(rows_.index(*row, std::max(0, currentIndex().column())));
    }
    Q_EMIT searched(typed_, row.has_value());
    return row.has_value();
}

// ---- nothing to show

QString CListTable::emptyText() const {
    if (rows_.document().deviceCount() == 0)
        return tr("This floor has no devices yet.");
    return tr("No device is shown.\nThe View menu says which kinds are hidden.");
}

void CListTable::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (rows_.rowCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(20, 20, -20, -20), Qt::AlignCenter | Qt::TextWordWrap,
                     emptyText());
}

} // namespace mirovane
