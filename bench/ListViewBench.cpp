// T1 and T2: a click on a text column's title until the List View is painted again, and what each further
// change of Live Stat costs while the window is open.

#include "bench/support/BigFloor.h"
#include "bench/support/PairedRounds.h"
#include "model/records/Text.h"
#include "model/rows/ListRows.h"
#include "platform/files/PosixFiles.h"
#include "ui/list/ListTable.h"
#include "ui/list/ListViewModel.h"

#include <QAbstractTableModel>
#include <QApplication>
#include <QHeaderView>
#include <QTableView>

#include <algorithm>
#include <memory>
#include <random>

namespace {

using namespace mirovane;

constexpr std::int32_t allDevices = 65'000;
constexpr QSize windowSize(1280, 720);

/// A document of its own with so many devices, in no order of their names.
struct Floor {
    explicit Floor(std::int32_t devices) {
        bench::fillBigFloor(doc, devices);
        std::mt19937 random(1);
        for (std::int32_t recID = 1; recID <= devices; ++recID)
            doc.edit(*doc.findDevice(recID), [&random](CHardware& device) {
                device.Name = "ws-" + std::to_string(random() % 1'000'000'000) + "-hq";
            });
    }

    CPosixFiles files;
    CSystemClock clock;
    CMessageLog log{clock};
    CMemorySettingsStore store;
    CSettings settings{store};
    CMirovaneDoc doc{clock, log, {"host", "user"}};
    CSelection selection{doc};
};

/// The program's own list.
struct OurList {
    explicit OurList(Floor& floor) : rows(floor.doc, floor.selection, state), table(rows) {
        rows.setLive(true);
        table.resize(windowSize);
        table.show();
        click();
    }

    /// Titles are clicked in turn, so that each round sorts by another column than the one before.
    void click() {
        table.sortBy(byName ? ListColumn::Name : ListColumn::Comment);
        byName = !byName;
        table.grab();
    }

    ListViewState state;
    CListViewModel rows;
    CListTable table;
    bool byName = true;
};

/// The least that any such list must do: keys made once, a stable sort, a model that is reset, a grab.
class PlainModel : public QAbstractTableModel {
public:
    explicit PlainModel(const CMirovaneDoc& doc) : doc_(doc) {}

    void sortBy(ListColumn column) {
        struct Entry {
            std::string key;
            const CHardware* row;
        };
        std::vector<Entry> entries;
        entries.reserve(doc_.size());
        for (std::size_t i = 0; i < doc_.size(); ++i)
            if (doc_.at(i).isDevice())
                entries.push_back({keyOf(doc_.at(i), column), &doc_.at(i)});
        std::stable_sort(entries.begin(), entries.end(),
                         [](const Entry& a, const Entry& b) { return a.key < b.key; });
        beginResetModel();
        rows_.clear();
        for (const Entry& entry : entries)
            rows_.push_back(entry.row);
        endResetModel();
    }

    int rowCount(const QModelIndex&) const override { return static_cast<int>(rows_.size()); }
    int columnCount(const QModelIndex&) const override { return listColumnCount; }
    QVariant data(const QModelIndex& index, int role) const override {
        if (role != Qt::DisplayRole)
            return {};
        const CHardware& device = *rows_[static_cast<std::size_t>(index.row())];
        return QString::fromStdString(
            displayText(listCellText(device, static_cast<ListColumn>(index.column()))));
    }

private:
    static std::string keyOf(const CHardware& device, ListColumn column) {
        std::string key = listCellText(device, column);
        std::transform(key.begin(), key.end(), key.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        return key;
    }

    const CMirovaneDoc& doc_;
    std::vector<const CHardware*> rows_;
};

struct PlainList {
    PlainList(const CMirovaneDoc& doc, const OurList& like) : model(doc) {
        table.setModel(&model);
        table.setWordWrap(false);
        table.setShowGrid(false);
        table.setSelectionBehavior(QAbstractItemView::SelectRows);
        table.verticalHeader()->hide();
        table.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        table.verticalHeader()->setDefaultSectionSize(like.table.verticalHeader()->defaultSectionSize());
        table.resize(windowSize);
        table.show();
        click();
    }

    void click() {
        model.sortBy(byName ? ListColumn::Name : ListColumn::Comment);
        byName = !byName;
        table.grab();
    }

    PlainModel model;
    QTableView table;
    bool byName = true;
};

/// One Live Stat run: a thousand devices change their state, told to the window together.
void runOfChanges(Floor& floor, std::int32_t& next) {
    for (int i = 0; i < 1000; ++i) {
        next = next % allDevices + 1;
        floor.doc.edit(*floor.doc.findDevice(next), [](CHardware& device) {
            device.State = 3 - std::max(1, device.State);
            device.Modified += 1;
        });
    }
}

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    Floor big(allDevices);
    Floor quarter(allDevices / 4);
    bench::printHeader();
    {
        OurList ours(big);
        PlainList plain(big.doc, ours);
        bench::printRow("T1", "title clicked until painted, 65,000 rows",
                        bench::measurePaired([&] { ours.click(); }, [&] { plain.click(); }), 1.3);
        OurList small(quarter);
        bench::printRow("T2", "the same, 65,000 against 16,250 rows",
                        bench::measurePaired([&] { ours.click(); }, [&] { small.click(); }), 5.0);
        // A refill against the click: it must not cost more than the sort that it is.
        bench::printRow("", "refill after 1,000 changes against a click",
                        bench::measurePaired(
                            [&, next = 0]() mutable {
                                runOfChanges(big, next);
                                ours.rows.settleOrder();
                                ours.table.grab();
                            },
                            [&] { ours.click(); }),
                        1.5);
    }
    // However much a run of Live Stat changes, the open window pays for one repaint.
    OurList watching(big);
    bench::printRow("", "1,000 changes shown against a repaint",
                    bench::measurePaired(
                        [&, next = 0]() mutable {
                            runOfChanges(big, next);
                            watching.rows.flush();
                            watching.table.grab();
                        },
                        [&] { watching.table.grab(); }),
                    1.5);
    return 0;
}
