#include "ui/list/ListViewWindow.h"

#include "tests/station/StationFixture.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gmock/gmock.h>

namespace mirovane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ListViewWindowTest : public testing::Test {
protected:
    ListViewWindowTest() { site.station->newDatafile(); }

    void open(int devices) {
        for (int i = 0; i < devices; ++i)
            add("pc-" + std::to_string(1000 + i));
        window.emplace(*site.station, site.settings);
        window->present();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&*window));
        window->table().sortBy(ListColumn::Name);
        window->table().sortBy(ListColumn::Name); // smallest first
        settle();
    }
    std::int32_t add(const std::string& name, std::int32_t type = DeviceType::Computer) {
        return site.doc()
            .addDevice(
                type, [&name](CHardware& device) { device.Name = name; })
            ->RecID;
    }
    void settle() {
        window->rows().flush();
        QApplication::processEvents();
    }

    CListTable& table() { return window->table(); }
    QPoint middleOf(int row, int column = 7) {
        return table().visualRect(window->rows().index(row, column)).center();
    }
    void click(int row, Qt::KeyboardModifiers modifiers = {}, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseClick(table().viewport(), button, modifiers, middleOf(row));
    }
    void clickTitle(ListColumn column) {
        QHeaderView* titles = table().horizontalHeader();
        QTest::mouseClick(titles->viewport(), Qt::LeftButton, {},
                          {titles->sectionViewportPosition(static_cast<int>(column)) + 7, 5});
    }
    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (int row = 0; row < window->rows().rowCount(); ++row)
            found.push_back(window->rows().recordAt(row)->Name);
        return found;
    }
    std::vector<std::int32_t> selectedDevices() {
        std::vector<std::int32_t> found;
        for (std::size_t i = 0; i < site.doc().size(); ++i)
            if (site.doc().at(i).Selected != 0)
                found.push_back(site.doc().at(i).RecID);
        return found;
    }
    QAction* action(const char* menu, const char* text) {
        for (QAction* entry : window->findChild<QMenu*>(QLatin1String(menu))->actions())
            if (entry->text() == QLatin1String(text))
                return entry;
        ADD_FAILURE() << menu << " has no " << text;
        return nullptr;
    }
    std::string status() {
        return window->findChild<QLabel*>(QStringLiteral("listStatus"))->text().toStdString();
    }

    test::FakeClock clock;
    test::FakeTimers timers{clock};
    test::Site site{clock, timers, {"HOST", "user"}, false};
    std::optional<CListViewWindow> window;
};

TEST_F(ListViewWindowTest, AClickOnATitleSortsAndTheNextOneTurnsItRound) {
    open(0);
    const auto a = add("a", DeviceType::Switch);
    add("b", DeviceType::Jack);
    settle();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    clickTitle(ListColumn::Device);
    EXPECT_THAT(names(), ElementsAre("a", "b")) << "greatest first";
    EXPECT_EQ(table().horizontalHeader()->sortIndicatorSection(), 6);
    EXPECT_EQ(table().horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    clickTitle(ListColumn::Device);
    EXPECT_THAT(names(), ElementsAre("b", "a"));
    EXPECT_EQ(table().horizontalHeader()->sortIndicatorOrder(), Qt::AscendingOrder);

    // What refills keeps the direction; the entry of the Sort menu is a click on the title.
    action("listMenuView", "&Refresh")->trigger();
    EXPECT_THAT(names(), ElementsAre("b", "a"));
    action("listMenuSort", "Device")->trigger();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    EXPECT_TRUE(action("listMenuSort", "Device")->isChecked());
    EXPECT_FALSE(action("listMenuSort", "Name")->isChecked());

    // The station's own moments settle the order.
    site.doc().edit(site.device(a), [](CHardware& device) { device.Type = DeviceType::Camera; });
    settle();
    EXPECT_THAT(names(), ElementsAre("a", "b"));
    test::updateDevices(*site.station, std::vector{a}, [](CHardware& device) { device.Type = 2; });
    EXPECT_THAT(names(), ElementsAre("b", "a"));
}

TEST_F(ListViewWindowTest, HideMenuSaysWhatItHides) {
    open(1);
    add("jack", DeviceType::Jack);
    add("waiting", DeviceType::Computer + 1000);
    settle();
    QStringList texts;
    for (const QAction* entry : window->findChild<QMenu*>(QStringLiteral("listMenuHide"))->actions())
        texts << entry->text();
    texts.removeAll(QString());
    EXPECT_EQ(texts.join(u'|').toStdString(),
              "Location Mar&ker|&Jacks|&Computers|&Printers|Lap&tops|&Routers|&Switches|P&hones|Ca&mera|"
              "Car&d Module|&UPS|Wir&eless|Unknown|&None|&All");

    QAction* computers = action("listMenuHide", "&Computers");
    computers->trigger();
    EXPECT_TRUE(computers->isChecked());
    EXPECT_THAT(names(), ElementsAre("jack"));
    EXPECT_EQ(status(), "1 of 3 devices");
    computers->trigger();
    EXPECT_FALSE(computers->isChecked());
    action("listMenuHide", "&All")->trigger();
    EXPECT_THAT(names(), IsEmpty());
    EXPECT_TRUE(action("listMenuHide", "Unknown")->isChecked());
    action("listMenuHide", "&None")->trigger();
    EXPECT_EQ(status(), "3 devices");

    QAction* onFloor = action("listMenuView", "Main Floor Devices");
    EXPECT_TRUE(onFloor->isChecked());
    onFloor->trigger();
    EXPECT_THAT(names(), ElementsAre("waiting"));
    action("listMenuView", "&Discovered/Misc Device")->trigger();
    EXPECT_THAT(names(), IsEmpty());
    onFloor->trigger();
    EXPECT_THAT(names(), ElementsAre("jack", "pc-1000"));
}

TEST_F(ListViewWindowTest, RowsAndFloorHaveOneSelection) {
    open(20);
    const auto hidden = add("waiting", DeviceType::Computer + 1000);
    action("listMenuView", "&Discovered/Misc Device")->trigger();
    site.doc().setSelected(site.device(hidden), true);
    site.doc().setSelected(site.device(15), true);
    settle();
    EXPECT_EQ(status(), "20 of 21 devices, 1 selected");

    click(2);
    EXPECT_THAT(selectedDevices(), ElementsAre(3)) << "a plain click leaves nothing else selected anywhere";
    click(4, Qt::ControlModifier);
    click(6, Qt::ControlModifier);
    click(4, Qt::ControlModifier);
    EXPECT_THAT(selectedDevices(), ElementsAre(3, 7));
    click(9, Qt::ShiftModifier);
    EXPECT_THAT(selectedDevices(), ElementsAre(5, 6, 7, 8, 9, 10)) << "from the last row clicked";
    click(6, Qt::ShiftModifier);
    EXPECT_THAT(selectedDevices(), ElementsAre(5, 6, 7));
    click(5, {}, Qt::RightButton);
    EXPECT_THAT(selectedDevices(), ElementsAre(5, 6, 7)) << "its menu is for all of them";
    click(8, {}, Qt::RightButton);
    EXPECT_THAT(selectedDevices(), ElementsAre(9));

    QTest::keyClick(&table(), Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&table(), Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_THAT(selectedDevices(), ElementsAre(9, 10, 11));
    QTest::keyClick(&table(), Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_THAT(selectedDevices(), ElementsAre(9, 10));
    QTest::keyClick(&table(), Qt::Key_Home);
    EXPECT_THAT(selectedDevices(), ElementsAre(1));
    QTest::keyClick(&table(), Qt::Key_Down, Qt::ControlModifier);
    QTest::keyClick(&table(), Qt::Key_Down, Qt::ControlModifier);
    QTest::keyClick(&table(), Qt::Key_Space, Qt::ControlModifier);
    EXPECT_THAT(selectedDevices(), ElementsAre(1, 3));

    clickTitle(ListColumn::Name);
    EXPECT_THAT(selectedDevices(), ElementsAre(1, 3));
    EXPECT_TRUE(window->rows().isSelected(19));
    QTest::keyClick(&table(), Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(selectedDevices().size(), 20U);
}

TEST_F(ListViewWindowTest, TheUsersPlaceSurvivesRefills) {
    open(300);
    table().scrollTo(window->rows().index(100, 0), QAbstractItemView::PositionAtTop);
    click(103);
    ASSERT_EQ(table().topRow(), 100);
    for (int i = 0; i < 100; ++i) // too many to be inserted one by one
        add("a" + std::to_string(i));
    settle();
    EXPECT_EQ(table().currentDevice(), 104);
    EXPECT_EQ(table().topRow(), 200);
    test::deleteDevices(*site.station, std::vector<std::int32_t>{1, 2, 3});
    settle();
    EXPECT_EQ(table().currentDevice(), 104);
    EXPECT_EQ(table().topRow(), 197);

    // The current row out of view: the top row stays. At the very top the list stays at the top.
    table().verticalScrollBar()->setValue(300);
    const std::int32_t top = window->rows().recIDAt(300);
    add("b");
    settle();
    EXPECT_EQ(window->rows().recIDAt(table().topRow()), top);
    table().verticalScrollBar()->setValue(0);
    add("0");
    settle();
    EXPECT_EQ(table().topRow(), 0);

    // Another station's save, and a window that was closed for a while.
    table().scrollTo(window->rows().index(150, 0), QAbstractItemView::PositionAtTop);
    click(151);
    const std::int32_t current = table().currentDevice();
    window->hide();
    EXPECT_EQ(window->rows().rowCount(), 0);
    window->present();
    settle();
    EXPECT_EQ(table().currentDevice(), current);
    EXPECT_EQ(table().topRow(), 150);
    site.station->newDatafile();
    settle();
    EXPECT_EQ(table().currentDevice(), 0);
}

TEST_F(ListViewWindowTest, TypingFindsRowsInTheSortedColumn) {
    open(5);
    add("printer one");
    add("printer two");
    settle();
    QSignalSpy shown(&*window, &CListViewWindow::showOnFloor);
    QTest::keyClicks(&table(), QStringLiteral("printer t"));
    EXPECT_EQ(table().currentDevice(), 7);
    EXPECT_THAT(selectedDevices(), ElementsAre(7));
    EXPECT_NE(status().find("printer t"), std::string::npos) << status();
    QTest::keyClicks(&table(), QStringLiteral("x"));
    EXPECT_NE(status().find("not found"), std::string::npos) << status();
    EXPECT_EQ(table().currentDevice(), 7);
    QTest::keyClick(&table(), Qt::Key_Backspace);
    QTest::keyClick(&table(), Qt::Key_Backspace);
    action("listMenuEdit", "Find Typed Text &Again")->trigger();
    EXPECT_EQ(table().currentDevice(), 6);
    action("listMenuEdit", "Find Typed Text &Before")->trigger();
    EXPECT_EQ(table().currentDevice(), 7);
    QTest::keyClick(&table(), Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_THAT(selectedDevices(), ElementsAre(6, 7)) << "a range begins at the row that was found";
    QTest::keyClick(&table(), Qt::Key_Down);

    QTest::keyClick(&table(), Qt::Key_Return);
    click(0);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, middleOf(0));
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[0][0].toInt(), 7);
    EXPECT_EQ(shown[1][0].toInt(), 1);
    site.doc().edit(site.device(1), [](CHardware& device) { device.Type += 1000; });
    QTest::keyClick(&table(), Qt::Key_Return);
    EXPECT_EQ(shown.size(), 2);
    EXPECT_NE(status().find("Discovered/Misc"), std::string::npos) << status();
}

TEST_F(ListViewWindowTest, EscapeEndsTheTypingBeforeItClosesTheWindow) {
    open(20);
    QTest::keyClicks(&table(), QStringLiteral("pc-1012"));
    EXPECT_EQ(table().currentIndex().row(), 12);
    QTest::keyClick(&table(), Qt::Key_Escape);
    EXPECT_TRUE(window->isVisible());
    EXPECT_FALSE(window->findChild<QLabel*>(QStringLiteral("listStatus"))->text().contains(u'\u201c'));
    QTest::keyClick(&table(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ListViewWindowTest, TheRowOfTheDeviceSelectedOnTheFloorIsTheCurrentOne) {
    open(200);
    const std::int32_t chosen = window->rows().recIDAt(150);
    site.station->selection().only(*site.doc().findDevice(chosen));
    settle();
    EXPECT_EQ(table().currentDevice(), chosen);
    EXPECT_TRUE(table().viewport()->rect().contains(middleOf(150)));
    QSignalSpy shown(&table(), &CListTable::rowActivated);
    QTest::keyClick(&table(), Qt::Key_Return);
    EXPECT_EQ(shown.value(0).value(0).toInt(), chosen);
    QTest::keyClick(&table(), Qt::Key_Down);
    EXPECT_EQ(table().currentIndex().row(), 151);
    EXPECT_EQ(window->rows().selectedCount(), 1);
    QTest::keyClick(&table(), Qt::Key_Down, Qt::ControlModifier); // walks on, selects nothing
    settle();
    EXPECT_EQ(table().currentIndex().row(), 152);
}

TEST_F(ListViewWindowTest, AddressesSortAsNumbersOnRequestAndTheNextTime) {
    open(3);
    for (int row = 0; row < 3; ++row)
        site.doc().edit(*window->rows().recordAt(row), [row](CHardware& device) {
            device.IPAddress = row == 0 ? "10.0.0.10" : row == 1 ? "10.0.0.9" : "printer";
        });
    table().sortBy(ListColumn::IPAddress);
    table().sortBy(ListColumn::IPAddress);
    const bool down = window->rows().state().greatestFirst;
    if (down)
        table().sortBy(ListColumn::IPAddress);
    EXPECT_EQ(names(), (std::vector<std::string>{"pc-1000", "pc-1001", "pc-1002"}));
    window->findChild<QAction*>(QStringLiteral("listAddressesAsNumbers"))->trigger();
    EXPECT_EQ(names(), (std::vector<std::string>{"pc-1001", "pc-1000", "pc-1002"}));
    site.station->listExport().listView().addresses = AddressOrder::Text;
    window.emplace(*site.station, site.settings);
    EXPECT_EQ(window->rows().state().addresses, AddressOrder::Number);
}

TEST_F(ListViewWindowTest, CopiesTheSelectedRowsAsTheyStand) {
    open(3);
    QApplication::clipboard()->setText(QStringLiteral("before"));
    table().clearFocus();
    QAction* copy = action("listMenuEdit", "&Copy");
    EXPECT_FALSE(copy->isEnabled());
    QTest::keyClick(&table(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("before"));
    clickTitle(ListColumn::Name);
    click(0);
    click(2, Qt::ControlModifier);
    settle();
    ASSERT_TRUE(copy->isEnabled());
    copy->trigger();
    const QStringList lines = QApplication::clipboard()->text().split(QStringLiteral("\r\n"));
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0].section(u'\t', 5, 5), QStringLiteral("pc-1002"));
    EXPECT_EQ(lines[1].section(u'\t', 5, 5), QStringLiteral("pc-1000"));
    EXPECT_EQ(lines[1].count(u'\t'), 18);
}

TEST_F(ListViewWindowTest, ALongNumberGetsTheRoomItNeeds) {
    open(2000);
    const QHeaderView* titles = table().horizontalHeader();
    EXPECT_GE(titles->sectionSize(0), table().fontMetrics().horizontalAdvance(QStringLiteral("2000")) + 6);
}

TEST_F(ListViewWindowTest, AWidthFittedToAnotherDatafileGrowsOneMadeNarrowStays) {
    site.store.writeInteger("ListViewWidth0", 31);
    open(2000);
    EXPECT_GT(table().horizontalHeader()->sectionSize(0), 31);
    table().horizontalHeader()->resizeSection(0, 20);
    window->close();
    window->present();
    EXPECT_EQ(table().horizontalHeader()->sectionSize(0), 20);
}

TEST_F(ListViewWindowTest, PlaceAndWidthsAreRemembered) {
    for (const auto& [name, value] :
         {std::pair{"WindowLVTopX", 40}, {"WindowLVTopY", 50}, {"WindowLVBotX", 620}})
        site.store.writeInteger(name, value);
    open(1);
    EXPECT_NE(window->width(), 620) << "the height is missing";
    const QHeaderView* titles = table().horizontalHeader();
    EXPECT_EQ(titles->sectionSize(16), 110) << "nothing in it needs more";
    EXPECT_GE(titles->sectionSize(3), titles->fontMetrics().horizontalAdvance(QStringLiteral("Priority")));
    table().horizontalHeader()->resizeSection(3, 90);
    window->resize(700, 400);
    EXPECT_EQ(table().geometry().bottomRight(), window->rect().bottomRight() - QPoint(10, 10));
    window->close();
    EXPECT_EQ(site.settings.read("WindowLVBotX", 0), 700);
    EXPECT_EQ(site.settings.read("WindowLVBotY", 0), 400);

    window.emplace(*site.station, site.settings);
    window->present();
    EXPECT_EQ(window->size(), QSize(700, 400));
    EXPECT_EQ(table().horizontalHeader()->sectionSize(3), 90);
    action("listMenuView", "Reset Column &Widths")->trigger();
    window->close();
    EXPECT_EQ(site.settings.read("ListViewWidth3", 0), 0) << "what was never changed is not kept";
}

} // namespace
} // namespace mirovane
