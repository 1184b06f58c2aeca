#include "tests/ui/frame/FrameFixture.h"
#include "ui/discovered/DiscoveredDrag.h"
#include "ui/floor/MirovaneView.h"

#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>

namespace mirovane {
namespace {

using Scope = CSelection::Scope;

class DiscoveredCommandsTest : public test::ShownFrame {
protected:
    void SetUp() override {
        ShownFrame::SetUp();
        for (int i = 1; i <= 30; ++i)
            document().addDevice(DeviceType::Unknown + DeviceType::discoveredOffset, [i](CHardware& device) {
                device.Name = "host-" + std::to_string(i);
                device.IPAddress = "127.0.0." + std::to_string(41 - i);
            });
        frame->actions().action("viewDiscoverMisc")->trigger();
        window = frame->discovered().shown();
        window->resize(300, 420);
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
        QCoreApplication::processEvents();
    }

    CDiscoveredView& view() { return window->view(); }
    const CHardware& device(std::int32_t recID) { return *document().findDevice(recID); }
    std::vector<std::int32_t> selected() {
        std::vector<std::int32_t> ids;
        for (const CHardware* each : station->selection().members(Scope::DiscoveredMisc))
            ids.push_back(each->RecID);
        return ids;
    }
    QPoint cell(int place) { return {place % 3 * 80 + 10, place / 3 * 120 + 10}; }
    void click(int place, Qt::KeyboardModifiers keys = {}) {
        QTest::mouseClick(view().viewport(), Qt::LeftButton, keys, cell(place));
    }
    void key(int code, Qt::KeyboardModifiers keys = {}) { QTest::keyClick(&view(), Qt::Key(code), keys); }
    void choose(const char* name) {
        QCoreApplication::processEvents(); // commands follow the selection
        window->findChild<QAction*>(QLatin1String(name))->trigger();
    }

    CDiscoveredWindow* window = nullptr;
};

using IDs = std::vector<std::int32_t>;

TEST_F(DiscoveredCommandsTest, TheMouseSelects) {
    click(1);
    EXPECT_EQ(selected(), (IDs{2}));
    click(4, Qt::ControlModifier);
    EXPECT_EQ(selected(), (IDs{2, 5}));
    click(1, Qt::ControlModifier);
    EXPECT_EQ(selected(), (IDs{5}));
    QTest::mouseClick(view().viewport(), Qt::LeftButton, {}, QPoint(75, 100)); // beside the icons
    EXPECT_EQ(selected(), IDs{});
    QTest::mousePress(view().viewport(), Qt::LeftButton, {}, QPoint(75, 100));
    QTest::mouseMove(view().viewport(), QPoint(150, 150));
    EXPECT_EQ(selected(), (IDs{5})) << "the band";
    QTest::mouseRelease(view().viewport(), Qt::LeftButton, {}, QPoint(150, 150));
}

TEST_F(DiscoveredCommandsTest, PropertiesGoesByWhatIsSeen) {
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    choose("discoveredSort"); // the last address is the first device
    click(0);
    QCoreApplication::processEvents();
    key(Qt::Key_Return, Qt::AltModifier);
    const auto* dialog = window->findChild<QDialog*>(QStringLiteral("propertiesDialog"));
    ASSERT_NE(dialog, nullptr);
    EXPECT_FALSE(dialog->findChild<QWidget*>(QStringLiteral("propertiesPrevious"))->isEnabled());
    dialog->findChild<QAbstractButton*>(QStringLiteral("propertiesNext"))->click();
    EXPECT_EQ(selected(), (IDs{29}));
}

TEST_F(DiscoveredCommandsTest, AnIconIsWhereItIsClicked) {
    const QSize icon = floor->drawing().icons().sizes().of(DeviceType::Unknown);
    ASSERT_FALSE(icon.isEmpty());
    const QImage shown = view().viewport()->grab(QRect(QPoint(5, 5), icon)).toImage();
    const QImage drawn = floor->drawing().icons().bitmap(DeviceType::Unknown, DeviceState::Def);
    EXPECT_EQ(shown.convertToFormat(QImage::Format_RGB32), drawn.convertToFormat(QImage::Format_RGB32));
}

TEST_F(DiscoveredCommandsTest, KeysSelectAndScroll) {
    click(0);
    key(Qt::Key_Down);
    EXPECT_EQ(selected(), (IDs{4}));
    key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(selected(), (IDs{4, 5}));
    key(Qt::Key_End);
    EXPECT_EQ(selected(), (IDs{30}));
    EXPECT_EQ(view().verticalScrollBar()->value(), view().verticalScrollBar()->maximum());
    choose("discoveredSelectAll");
    EXPECT_EQ(selected().size(), 30U);
}

TEST_F(DiscoveredCommandsTest, DevicesMoveToTheFloorWhenTheUserSaysYes) {
    click(0);
    click(1, Qt::ControlModifier);
    dialogs.answers = {false, true};
    choose("discoveredMoveTo");
    EXPECT_TRUE(device(1).inDiscovered());
    choose("discoveredMoveTo");
    EXPECT_EQ(dialogs.questions.back(), "Do you want to move 2 device(s) to the floor?");
    EXPECT_EQ(device(1).Type, DeviceType::Unknown);
    EXPECT_EQ(device(1).Position, device(2).Position);
    EXPECT_TRUE(logged("Moved 2 device(s) to the floor"));
    EXPECT_EQ(view().devices().size(), 28U);
    station->selection().none();
    choose("discoveredMoveTo"); // asks nothing
    EXPECT_EQ(dialogs.questions.size(), 2U);
}

TEST_F(DiscoveredCommandsTest, DroppedDevicesStayWhereTheyWereDropped) {
    const auto data = draggedDevices(std::vector<DeviceKey>{{3, 0}, {4, 0}});
    QDragEnterEvent enter(QPoint(100, 90), Qt::MoveAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(floor->viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(100, 90), Qt::MoveAction, data.get(), Qt::LeftButton, {});
    QApplication::sendEvent(floor->viewport(), &drop);
    EXPECT_EQ(device(3).Position, (MapPoint{100, 90}));
    EXPECT_GT(device(4).Position.x, 130);
    EXPECT_TRUE(dialogs.questions.empty());

    QMimeData file;
    file.setUrls({QUrl::fromLocalFile(QStringLiteral("/office.mv"))});
    EXPECT_TRUE(draggedDevices(&file).empty()) << "a datafile is not a device";
}

TEST_F(DiscoveredCommandsTest, DevicesDraggedOffTheFloorMoveHereAfterTheQuestion) {
    const CHardware& moved = *document().addDevice(
        DeviceType::Computer,
        [](CHardware& each) {
            each.Position = {40, 30};
        });
    ASSERT_TRUE(QTest::qWaitFor([this] { return floor->settled(); }));
    window->move(floor->viewport()->mapToGlobal(QPoint(400, 200)));
    const auto drag = [&](bool toWindow) {
        const QPoint from = floor->iconRect(moved).center();
        const QPoint to = toWindow ? QPoint(500, 300) : QPoint(300, 150);
        QTest::mousePress(floor->viewport(), Qt::LeftButton, {}, from);
        frame->refresh(); // commands follow the selection when the program is idle
        QMouseEvent move(QEvent::MouseMove, to, floor->viewport()->mapToGlobal(to), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(floor->viewport(), &move);
        QTest::mouseRelease(floor->viewport(), Qt::LeftButton, {}, to);
        QCoreApplication::processEvents();
    };
    dialogs.answers = {false, true};
    drag(true);
    EXPECT_EQ(moved.Position, (MapPoint{40, 30})) << "No leaves the device where it was";
    drag(false);
    EXPECT_GT(moved.Position.x, 200);
    drag(true);
    EXPECT_TRUE(moved.inDiscovered());
    EXPECT_EQ(dialogs.questions.size(), 2U);
    EXPECT_EQ(station->edits().history().next(CEditHistory::Way::Undo)->name,
              "Move 1 device to Discovered/Misc");
}

TEST_F(DiscoveredCommandsTest, SortingTypesAndDeleting) {
    choose("discoveredSort");
    EXPECT_EQ(view().devices().front()->RecID, 30);
    choose("discoveredSort");
    EXPECT_EQ(view().devices().front()->RecID, 1);
    click(0);
    click(2, Qt::ControlModifier);
    choose("discoveredType3");
    EXPECT_EQ(device(3).Type, DeviceType::Printer + DeviceType::discoveredOffset);
    dialogs.answers = {true};
    choose("discoveredDelete");
    EXPECT_EQ(dialogs.questions.back(),
              "Do you want to delete the 2 selected item(s) in Discover/Misc window?");
    EXPECT_EQ(view().devices().size(), 28U);
}

TEST_F(DiscoveredCommandsTest, AFoundDeviceOpensTheWindowAndComesIntoView) {
    window->close();
    ASSERT_TRUE(frame->finding().showBest("host-30"));
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(selected(), (IDs{30}));
    view().grab();
    EXPECT_GT(view().verticalScrollBar()->value(), 0);
    EXPECT_FALSE(frame->finding().showBest("host-31"));
}

} // namespace
} // namespace mirovane
