#include "ui/list/ListViewModel.h"

#include "tests/station/StationFixture.h"
#include "ui/list/ListSearch.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include <gmock/gmock.h>
#include <numeric>
#include <random>

namespace mirovane {
namespace {

using testing::ElementsAre;

class ListViewModelTest : public testing::Test {
protected:
    ListViewModelTest() {
        site.station->newDatafile();
        state().column = ListColumn::Name;
        rows.setLive(true);
    }

    ListViewState& state() { return site.station->listExport().listView(); }

    std::int32_t add(const std::string& name, std::int32_t type = DeviceType::Computer) {
        return site.doc()
            .addDevice(
                type, [&name](CHardware& device) { device.Name = name; })
            ->RecID;
    }
    void rename(std::int32_t recID, const std::string& name) {
        site.doc().edit(
            site.device(recID), [&name](CHardware& device) { device.Name = name; });
    }

    std::vector<std::int32_t> shown() {
        rows.flush();
        std::vector<std::int32_t> ids;
        for (int row = 0; row < rows.rowCount(); ++row)
            ids.push_back(rows.recordAt(row)->RecID);
        return ids;
    }
    std::string cell(int row, ListColumn column) {
        return rows.data(rows.index(row, static_cast<int>(column)), Qt::DisplayRole).toString().toStdString();
    }

    test::FakeClock clock;
    test::FakeTimers timers{clock};
    test::Site site{clock, timers, {"HOST", "user"}, false};
    CListViewModel rows{site.doc(), site.station->selection(), site.station->listExport().listView()};
    QAbstractItemModelTester tester{&rows};
};

TEST_F(ListViewModelTest, RowsComeAndGoAtTheirPlaces) {
    const auto b = add("b");
    const auto a = add("a");
    const auto c = add("C", DeviceType::Phone + 1000);
    EXPECT_THAT(shown(), ElementsAre(a, b, c));
    EXPECT_EQ(cell(2, ListColumn::Device), "Phone");

    const auto early = add("A");
    EXPECT_THAT(shown(), ElementsAre(a, early, b, c)) << "equal names keep the order of the list";
    site.doc().removeDevices(std::array{DeviceKey{a}, DeviceKey{c}});
    EXPECT_EQ(rows.recordAt(0), nullptr) << "the row is still there, its device is not";
    EXPECT_EQ(cell(0, ListColumn::Name), "");
    EXPECT_THAT(shown(), ElementsAre(early, b));

    site.doc().edit(site.device(b), [](CHardware& device) { device.Type += 1000; });
    state().filter.discovered = false;
    rows.refill();
    EXPECT_THAT(shown(), ElementsAre(early));
    site.doc().edit(site.device(b), [](CHardware& device) { device.Type -= 1000; });
    EXPECT_THAT(shown(), ElementsAre(early, b)) << "it was moved to the floor";
    site.doc().edit(site.device(early), [](CHardware& device) { device.Type += 1000; });
    EXPECT_THAT(shown(), ElementsAre(b));
}

TEST_F(ListViewModelTest, ChangedRowsStayWhereTheyStandUntilOrderIsSettled) {
    const auto a = add("a");
    const auto b = add("b");
    const auto c = add("c");
    shown();
    QSignalSpy changed(&rows, &QAbstractItemModel::dataChanged);
    QSignalSpy moved(&rows, &QAbstractItemModel::rowsMoved);
    QSignalSpy reset(&rows, &QAbstractItemModel::modelReset);
    rename(a, "z");
    EXPECT_THAT(shown(), ElementsAre(a, b, c));
    EXPECT_EQ(cell(0, ListColumn::Name), "z");
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0][1].toModelIndex(), rows.index(0, 16));

    rows.settleOrder();
    EXPECT_THAT(shown(), ElementsAre(b, c, a));
    EXPECT_EQ(moved.size(), 1);
    rename(a, "bb");
    rows.settleOrder();
    EXPECT_THAT(shown(), ElementsAre(b, a, c));
    rename(a, "bbb");
    rows.settleOrder();
    EXPECT_EQ(moved.size(), 2) << "it stood right";
    EXPECT_EQ(reset.size(), 0);

    rename(b, "y");
    rename(c, "x");
    rows.settleOrder();
    EXPECT_THAT(shown(), ElementsAre(a, c, b));
    EXPECT_EQ(reset.size(), 1);
}

/// Whatever happens to the document, after settling the list is what a fill from scratch would give.
TEST_F(ListViewModelTest, AlwaysEndsAsAFreshFillWould) {
    std::mt19937 random(7);
    const auto below = [&random](std::size_t end) {
        return random() % end;
    };
    for (int i = 0; i < 20; ++i)
        add("x");
    for (int round = 0; round < 400; ++round) {
        bool renumbered = false;
        for (std::size_t edits = below(4); edits > 0; --edits) {
            const std::string name(1, static_cast<char>('a' + below(6)));
            if (site.doc().deviceCount() < 20 || below(4) == 0)
                add(name, static_cast<std::int32_t>(1 + below(13) + 1000 * below(2)));
            const CHardware& device = site.doc().at(site.doc().size() - 1 - below(10));
            switch (below(5)) {
            case 0:
                site.doc().removeDevices(std::array{DeviceKey{device.RecID}});
                break;
            case 1:
                if (!std::exchange(renumbered, true))
                    site.doc().edit(device, [round](CHardware& held) { held.RecID = 1000 + round; });
                break;
            case 2:
                site.doc().setSelected(device, below(2) == 0);
                break;
            default:
                rename(device.RecID, name);
            }
        }
        if (below(20) == 0)
            site.doc().exchange(site.doc().size() - 1, site.doc().size() - 5);
        if (below(15) == 0)
            rows.sortBy(below(2) == 0 ? ListColumn::Name : ListColumn::Device);
        if (below(15) == 0)
            rows.setFilter({below(3) != 0, below(3) != 0, static_cast<std::uint32_t>(below(8))});
        if (below(3) == 0)
            rows.flush();
        rows.settleOrder();

        const auto expected = listViewRows(site.doc(), state());
        ASSERT_EQ(rows.rowCount(), static_cast<int>(expected.size())) << round;
        int selected = 0;
        for (int row = 0; row < rows.rowCount(); ++row) {
            const CHardware* device = expected[static_cast<std::size_t>(row)];
            ASSERT_EQ(rows.recordAt(row), device) << round;
            ASSERT_EQ(rows.recIDAt(row), device->RecID) << round;
            ASSERT_EQ(rows.isSelected(row), device->Selected != 0) << round;
            selected += device->Selected;
        }
        ASSERT_EQ(rows.selectedCount(), selected) << round;
    }
}

TEST_F(ListViewModelTest, ManyChangesAtOnceAreOneRefill) {
    for (int i = 0; i < 500; ++i)
        add("pc");
    QSignalSpy inserted(&rows, &QAbstractItemModel::rowsInserted);
    QSignalSpy reset(&rows, &QAbstractItemModel::modelReset);
    EXPECT_EQ(shown().size(), 500U);
    std::vector<std::int32_t> gone(400);
    std::iota(gone.begin(), gone.end(), 1);
    site.doc().removeDevices(test::keys(gone));
    EXPECT_EQ(shown().size(), 100U);
    EXPECT_EQ(inserted.size(), 0);
    EXPECT_EQ(reset.size(), 2);
}

TEST_F(ListViewModelTest, DevicesThatShareARecordIDKeepTheirOwnRows) {
    const auto first = add("a");
    const auto second = add("b");
    site.doc().edit(site.device(second), [first](CHardware& device) { device.RecID = first; });
    rows.refill();
    const CHardware& twin = *rows.recordAt(1);
    EXPECT_EQ(twin.Name, "b");
    site.doc().setSelected(twin, true);
    rows.flush();
    EXPECT_FALSE(rows.isSelected(0));
    EXPECT_TRUE(rows.isSelected(1));
    site.doc().remove(twin);
    rows.flush();
    ASSERT_EQ(rows.rowCount(), 1);
    EXPECT_EQ(cell(0, ListColumn::Name), "a");
}

TEST_F(ListViewModelTest, HasNothingAndHearsNothingUntilItIsLive) {
    add("a");
    rows.setLive(false);
    EXPECT_EQ(rows.rowCount(), 0);
    QSignalSpy told(&rows, &CListViewModel::updated);
    add("b");
    site.station->newDatafile();
    add("c");
    rows.flush();
    rows.settleOrder();
    EXPECT_EQ(told.size(), 0);
    rows.setLive(true);
    ASSERT_EQ(rows.rowCount(), 1);
    EXPECT_EQ(cell(0, ListColumn::Name), "c");
}

TEST_F(ListViewModelTest, ACellIsOneLineOfReadableText) {
    const auto device = add("one\r\ntwo\tthree\nfour \xE9");
    rows.flush();
    EXPECT_EQ(cell(0, ListColumn::Name), "one two three four \xC3\xA9");
    rename(device, std::string(100'000, 'x'));
    EXPECT_EQ(cell(0, ListColumn::Name).size(), 500U);
}

TEST_F(ListViewModelTest, TypedTextFindsABeginningFirstAndGoesRoundTheEnd) {
    for (const char* name : {"alpha", "Beta-1", "beta-2", "gamma", "zulu-beta", "\xC3\x84ra"})
        add(name);
    shown();
    const auto find = [this](const char* text, int start, SearchDirection direction = SearchDirection::Down) {
        return findListRow(rows, QString::fromUtf8(text), start, direction).value_or(-1);
    };
    EXPECT_EQ(find("BETA", 0), 1);
    EXPECT_EQ(find("beta", 2), 2);
    EXPECT_EQ(find("beta", 3), 1) << "round the end";
    EXPECT_EQ(find("beta", 0, SearchDirection::Up), 2);
    EXPECT_EQ(find("ulu", 0), 4) << "nothing begins so";
    EXPECT_EQ(find("\xC3\xA4R", 0), 5);
    EXPECT_EQ(find("delta", 0), -1);
    rows.sortBy(ListColumn::Device);
    EXPECT_EQ(find("beta", 0), -1) << "only the column that is sorted";
    EXPECT_EQ(find("comp", 0), 0);
}

} // namespace
} // namespace mirovane
