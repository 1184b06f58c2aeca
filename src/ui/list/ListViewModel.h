#pragma once

#include "model/Document.h"
#include "model/RecordIndex.h"
#include "model/Selection.h"
#include "model/rows/ListRows.h"

#include <QAbstractTableModel>
#include <QTimer>

#include <cstdint>
#include <string>
#include <unordered_set>
#include <vector>

namespace mirovane {

/// The rows of the List View as a Qt model: pointers to the document's records in the order of the station's
/// ListViewState, and no copy of any text. Main thread only; document, selection and state
/// outlive it.
///
/// A device that comes is put at its sorted place and one that goes is dropped, both within one turn of the
/// event loop however many they are. A row whose cells change is told again where it stands, many changes
/// together, because Live Stat changes devices a thousand times a second; rows are put in order again by
/// `settleOrder` and `refill` only, or they would run away under the reader's eyes.
///
/// Which rows are selected is up to the station's selection, which the list shares with the floor.
class CListViewModel final : public QAbstractTableModel, private DocumentObserver {
    Q_OBJECT

public:
    CListViewModel(const CMirovaneDoc& document, CSelection& selection, ListViewState& state,
                   QObject* parent = nullptr);
    ~CListViewModel() override;

    /// A model that is not live has no rows and costs the document nothing. Starts so.
    void setLive(bool live);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// Null when the device went a moment ago.
    const CHardware* recordAt(int row) const;

    /// Also after the device went.
    std::int32_t recIDAt(int row) const { return recIDs_[static_cast<std::size_t>(row)]; }

    /// -1 when the device has no row.
    int rowOfDevice(std::int32_t recID) const;

    const ListViewState& state() const { return state_; }
    const CMirovaneDoc& document() const { return document_; }

    /// A click on a title: sorts by that column and turns the direction round.
    void sortBy(ListColumn column);

    void setAddressOrder(AddressOrder order);

    /// Takes another filter and fills the rows anew.
    void setFilter(const ListFilter& filter);

    /// Fills the rows anew, sorted by the current column in the current direction.
    void refill();

    /// The same result with the least movement: nothing when all rows stand right, one row moved when only
    /// one device was edited.
    void settleOrder();

    /// Tells the view at once what waits to be told.
    void flush();

    // ---- selection

    bool isSelected(int row) const { return selected_[static_cast<std::size_t>(row)] != 0; }
    int selectedCount() const { return selectedCount_; }

    /// One byte per row.
    const std::vector<char>& selectedRows() const { return selected_; }

    /// Makes the rows' selection this one. `onlyThese`: devices without a row are deselected as well.
    void setSelectedRows(const std::vector<char>& wanted, bool onlyThese);

Q_SIGNALS:
    /// Around every change of the rows themselves. Between the two, recIDAt still answers for what was.
    void aboutToRearrange();
    void rearranged();

    void sortChanged();

    /// Rows, cells or the selection changed, and the view was told.
    void updated();

private:
    // DocumentObserver
    void recordAdded(const CHardware& record) override;
    void recordChanged(const CHardware& before, const CHardware& after) override;
    void flagsChanged(const CHardware& record) override;
    void recordRemoved(const CHardware& record) override;
    void orderChanged() override;
    void documentReplaced() override;

    int rowOf(const CHardware* record, std::int32_t recID) const;
    void replaceRows(std::vector<const CHardware*> rows);
    void forgetPending();
    void markGone(int row);
    void noteSelection(int row);
    void schedule(std::chrono::milliseconds delay);
    void dropGone();
    void insertAdded();
    void insertRow(const CHardware& record);
    void tellDirty();
    void replaceOne(int row);

    const CMirovaneDoc& document_;
    CSelection& selection_;
    ListViewState& state_;
    bool live_ = false;

    std::vector<const CHardware*> rows_; ///< null: the device went, the row will follow
    std::vector<std::int32_t> recIDs_;   ///< of each row, valid also when the records are gone
    std::vector<char> selected_;
    int selectedCount_ = 0;
    mutable CFirstPlaceTable places_; ///< from record ID to row
    mutable bool placesStale_ = false;

    std::size_t goneCount_ = 0;
    std::unordered_set<const CHardware*> added_;
    std::vector<std::int32_t> dirty_;        ///< cells or selection changed since the view was told
    std::unordered_set<std::int32_t> stale_; ///< may stand at a wrong place since their key changed
    bool orderStale_ = false;                ///< rows with equal keys may have to trade places
    QTimer soon_;
};

/// A cell as one line of text for the screen: line breaks become blanks, and of a text of many pages the
/// beginning is enough.
QString listCellLine(const CHardware& device, ListColumn column);

} // namespace mirovane
