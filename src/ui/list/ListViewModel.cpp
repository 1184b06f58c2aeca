#include "ui/list/ListViewModel.h"

#include "ui/widgets/DialogText.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace mirovane {

namespace {

using std::chrono::milliseconds;

/// What a user did is seen at once; what Live Stat changed can wait, so that a busy run costs ten updates a
/// second and not a thousand.
constexpr milliseconds atOnce{0};
constexpr milliseconds cellDelay{100};

/// From so many rows that come or go on, filling anew is cheaper than moving rows one by one.
constexpr std::size_t manyRows = 64;

constexpr qsizetype lineLimit = 500;

bool isNumber(ListColumn column) {
    return column == ListColumn::ID || column == ListColumn::Priority;
}

QString headerToolTip(int section) {
    const std::string_view title = listColumns()[static_cast<std::size_t>(section)].title;
    return CListViewModel::tr("%1\nClick: sort; click again: the other way round").arg(qText(title));
}

} // namespace

QString listCellLine(const CHardware& device, ListColumn column) {
    QString line = shownText(listCellText(device, column)).left(lineLimit);
    line.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    std::replace_if(
        line.begin(), line.end(), [](QChar c) { return c < u' '; }, QChar(u' '));
    return line;
}

CListViewModel::CListViewModel(const CMirovaneDoc& document, CSelection& selection, ListViewState& state,
                               QObject* parent)
    : QAbstractTableModel(parent), document_(document), selection_(selection), state_(state) {
    soon_.setSingleShot(true);
    connect(&soon_, &QTimer::timeout, this, &CListViewModel::flush);
}

CListViewModel::~CListViewModel() {
    if (live_)
        document_.removeObserver(*this);
}

void CListViewModel::setLive(bool live) {
    if (live == live_)
        return;
    live_ = live;
    if (live)
        document_.addObserver(*this);
    else
        document_.removeObserver(*this);
    documentReplaced();
}

// ---- what Qt asks for

int CListViewModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int CListViewModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : listColumnCount;
}

QVariant CListViewModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const auto column = static_cast<ListColumn>(index.column());
    if (role == Qt::TextAlignmentRole && isNumber(column))
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    const CHardware* record = recordAt(index.row());
    if (role != Qt::DisplayRole || !record)
        return {};
    return listCellLine(*record, column);
}

QVariant CListViewModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= listColumnCount)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return qText(listColumns()[static_cast<std::size_t>(section)].title);
    case Qt::ToolTipRole:
        return headerToolTip(section);
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(Qt::Alignment(Qt::AlignLeft | Qt::AlignVCenter));
    default:
        return {};
    }
}

const CHardware* CListViewModel::recordAt(int row) const {
    return row >= 0 && row < rowCount() ? rows_[static_cast<std::size_t>(row)] : nullptr;
}

int CListViewModel::rowOfDevice(std::int32_t recID) const {
    if (std::exchange(placesStale_, false)) {
        places_.clear();
        places_.reserve(recIDs_.size());
        for (std::size_t row = 0; row < recIDs_.size(); ++row)
            places_.add(recIDs_[row], static_cast<std::uint32_t>(row));
    }
    const auto entry = places_.find(recID);
    return entry ? static_cast<int>(entry->place) : -1;
}

/// Two devices of a damaged file may have one record ID; then only a look at all rows tells them apart.
int CListViewModel::rowOf(const CHardware* record, std::int32_t recID) const {
    const int row = rowOfDevice(recID);
    if (row < 0 || rows_[static_cast<std::size_t>(row)] == record)
        return row;
    if (!places_.find(recID)->repeated)
        return -1;
    const auto found = std::find(rows_.begin(), rows_.end(), record);
    return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

// ---- order

void CListViewModel::sortBy(ListColumn column) {
    state_.column = column;
    state_.greatestFirst = !state_.greatestFirst;
    Q_EMIT sortChanged();
    refill();
}

void CListViewModel::setAddressOrder(AddressOrder order) {
    state_.addresses = order;
    refill();
}

void CListViewModel::setFilter(const ListFilter& filter) {
    state_.filter = filter;
    refill();
}

void CListViewModel::refill() {
    if (!live_)
        return;
    std::vector<const CHardware*> rows = listViewRows(document_, state_);
    if (goneCount_ > 0 || rows != rows_) {
        replaceRows(std::move(rows));
    } else {
        forgetPending();
        if (!rows_.empty())
            Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, listColumnCount - 1));
    }
    Q_EMIT updated();
}

void CListViewModel::settleOrder() {
    flush();
    const int row = stale_.size() == 1 ? rowOfDevice(*stale_.begin()) : -1;
    const bool oneRow = row >= 0 && !places_.find(*stale_.begin())->repeated;
    if (orderStale_ || (!stale_.empty() && !oneRow))
        refill();
    else if (oneRow)
        replaceOne(row);
}

/// The one row whose key changed goes to its sorted place.
void CListViewModel::replaceOne(int row) {
    stale_.clear();
    const CHardware* record = recordAt(row);
    rows_.erase(rows_.begin() + row);
    const int to = static_cast<int>(sortedPlace(rows_, *record, state_, document_));
    rows_.insert(rows_.begin() + row, record);
    if (to == row)
        return;
    const auto move = [row, to](auto& list) {
        const auto at = [&list](int place) {
            return list.begin() + place;
        };
        if (to > row)
            std::rotate(at(row), at(row + 1), at(to + 1));
        else
            std::rotate(at(to), at(row), at(row + 1));
    };
    Q_EMIT aboutToRearrange();
    beginMoveRows({}, row, row, {}, to > row ? to + 1 : to);
    move(rows_);
    move(recIDs_);
    move(selected_);
    placesStale_ = true;
    endMoveRows();
    Q_EMIT rearranged();
}

void CListViewModel::replaceRows(std::vector<const CHardware*> rows) {
    forgetPending();
    Q_EMIT aboutToRearrange();
    beginResetModel();
    rows_ = std::move(rows);
    recIDs_.resize(rows_.size());
    selected_.resize(rows_.size());
    selectedCount_ = 0;
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        recIDs_[row] = rows_[row]->RecID;
        selected_[row] = rows_[row]->Selected != 0 ? 1 : 0;
        selectedCount_ += selected_[row];
    }
    placesStale_ = true;
    endResetModel();
    Q_EMIT rearranged();
}

void CListViewModel::forgetPending() {
    goneCount_ = 0;
    added_.clear();
    dirty_.clear();
    stale_.clear();
    orderStale_ = false;
    soon_.stop();
}

// ---- what the document tells

void CListViewModel::recordAdded(const CHardware& record) {
    if (!state_.filter.shows(record))
        return;
    added_.insert(&record);
    schedule(atOnce);
}

void CListViewModel::recordChanged(const CHardware& before, const CHardware& after) {
    const bool shows = state_.filter.shows(after);
    const int row = shows || state_.filter.shows(before) ? rowOf(&after, before.RecID) : -1;
    if (row < 0) {
        if (shows)
            recordAdded(after);
        else
            added_.erase(&after);
        return;
    }
    if (!shows) {
        markGone(row);
        return;
    }
    if (before.RecID != after.RecID) {
        recIDs_[static_cast<std::size_t>(row)] = after.RecID;
        placesStale_ = true;
    }
    noteSelection(row);
    dirty_.push_back(after.RecID);
    if (!sameSortKey(before, after, state_))
        stale_.insert(after.RecID);
    schedule(cellDelay);
}

void CListViewModel::flagsChanged(const CHardware& record) {
    const int row = rowOf(&record, record.RecID);
    if (row >= 0)
        noteSelection(row);
}

void CListViewModel::recordRemoved(const CHardware& record) {
    added_.erase(&record);
    const int row = rowOf(&record, record.RecID);
    if (row >= 0)
        markGone(row);
}

void CListViewModel::orderChanged() {
    orderStale_ = true;
}

void CListViewModel::documentReplaced() {
    replaceRows(live_ ? listViewRows(document_, state_) : std::vector<const CHardware*>());
    Q_EMIT updated();
}

/// The pointer is dead from now on; the row itself goes with the next flush, together with others.
void CListViewModel::markGone(int row) {
    const auto place = static_cast<std::size_t>(row);
    rows_[place] = nullptr;
    selectedCount_ -= std::exchange(selected_[place], char{0});
    stale_.erase(recIDs_[place]);
    ++goneCount_;
    schedule(atOnce);
}

void CListViewModel::noteSelection(int row) {
    const auto place = static_cast<std::size_t>(row);
    const char now = rows_[place]->Selected != 0 ? 1 : 0;
    if (selected_[place] == now)
        return;
    selectedCount_ += now - selected_[place];
    selected_[place] = now;
    dirty_.push_back(recIDs_[place]);
    schedule(atOnce);
}

void CListViewModel::setSelectedRows(const std::vector<char>& wanted, bool onlyThese) {
    for (std::size_t row = 0; row < wanted.size() && row < rows_.size(); ++row)
        if (wanted[row] != selected_[row] && rows_[row])
            selection_.set(*rows_[row], wanted[row] != 0);
    if (onlyThese && selection_.count() != static_cast<std::size_t>(selectedCount_))
        for (const CHardware* device : selection_.members())
            if (rowOf(device, device->RecID) < 0)
                selection_.remove(*device);
    tellDirty(); // not a turn of the event loop later: the hand is on the mouse
    Q_EMIT updated();
}

// ---- telling the view

void CListViewModel::schedule(milliseconds delay) {
    if (!soon_.isActive() || soon_.remainingTime() > delay.count())
        soon_.start(delay);
}

void CListViewModel::flush() {
    soon_.stop();
    if (!live_)
        return;
    // A place among rows that are out of order says nothing.
    const bool disordered = !added_.empty() && (orderStale_ || !stale_.empty());
    if (disordered || goneCount_ + added_.size() > manyRows) {
        refill();
        return;
    }
    if (goneCount_ > 0 || !added_.empty()) {
        Q_EMIT aboutToRearrange();
        dropGone();
        insertAdded();
        Q_EMIT rearranged();
    }
    tellDirty();
    Q_EMIT updated();
}

void CListViewModel::dropGone() {
    for (int row = rowCount() - 1; row >= 0 && goneCount_ > 0; --row) {
        if (rows_[static_cast<std::size_t>(row)])
            continue;
        beginRemoveRows({}, row, row);
        rows_.erase(rows_.begin() + row);
        recIDs_.erase(recIDs_.begin() + row);
        selected_.erase(selected_.begin() + row);
        --goneCount_;
        placesStale_ = true;
        endRemoveRows();
    }
}

void CListViewModel::insertAdded() {
    for (const CHardware* record : std::exchange(added_, {}))
        if (state_.filter.shows(*record))
            insertRow(*record);
}

void CListViewModel::insertRow(const CHardware& record) {
    const int row = static_cast<int>(sortedPlace(rows_, record, state_, document_));
    beginInsertRows({}, row, row);
    rows_.insert(rows_.begin() + row, &record);
    recIDs_.insert(recIDs_.begin() + row, record.RecID);
    selected_.insert(selected_.begin() + row, record.Selected != 0 ? char{1} : char{0});
    selectedCount_ += record.Selected != 0 ? 1 : 0;
    placesStale_ = true;
    endInsertRows();
}

/// Rows that stand side by side are told together.
void CListViewModel::tellDirty() {
    std::vector<int> rows;
    rows.reserve(dirty_.size());
    for (const std::int32_t recID : std::exchange(dirty_, {}))
        rows.push_back(rowOfDevice(recID));
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t last = first;
        while (last + 1 < rows.size() && rows[last + 1] == rows[last] + 1)
            ++last;
        if (rows[first] >= 0)
            Q_EMIT dataChanged(index(rows[first], 0), index(rows[last], listColumnCount - 1));
        first = last + 1;
    }
}

} // namespace mirovane
