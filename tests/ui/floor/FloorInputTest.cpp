#include "ui/floor/FloorInput.h"

#include "model/FloorMap.h"
#include "model/floor/FloorEdits.h"
#include "tests/station/StationFixture.h"
#include "ui/floor/MirovaneView.h"

#include <QContextMenuEvent>
#include <QImage>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <filesystem>

namespace mirovane {

namespace {

/// A view on the screen with a map of 1000 by 800 pixels, and a user with a mouse and keys.
class FloorInputTest : public testing::Test {
protected:
    FloorInputTest() {
        site.station->newDatafile();
        LiveStatSettings settings = site.station->features().liveStat().settings();
        settings.LSAutoPerform = false;
        site.station->features().liveStat().setSettings(settings);
        QImage(1000, 800, QImage::Format_RGB32).save(QString::fromStdString(folder.file("map.bmp")));
        setFloorMap(site.doc(), {folder.file("map.bmp"), {}});
        site.station->saveDatafileAs(folder.file("floor.mv"));
        view.resize(500, 400);
        view.show();
        settle();
        icon = view.drawing().icons().sizes().of(DeviceType::Computer);
    }

    const CHardware& add(std::int32_t type, MapPoint at) {
        return *site.doc().addDevice(
            type, [at](CHardware& device) { device.Position = at; });
    }

    void settle() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return view.settled(); }, 10000));
    }

    /// Events as the window system sends them, also beyond the window's edge.
    void send(QEvent::Type type, QPoint at, Qt::MouseButton button, Qt::KeyboardModifiers held = {}) {
        const bool down = type != QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, view.viewport()->mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : button,
                          down ? Qt::MouseButtons(button) : Qt::MouseButtons(), held);
        QCoreApplication::sendEvent(view.viewport(), &event);
    }
    void press(QPoint at, Qt::KeyboardModifiers held = {}, Qt::MouseButton button = Qt::LeftButton) {
        send(QEvent::MouseButtonPress, at, button, held);
    }
    void move(QPoint at, Qt::KeyboardModifiers held = {}, Qt::MouseButton button = Qt::LeftButton) {
        send(QEvent::MouseMove, at, button, held);
    }
    void release(QPoint at, Qt::KeyboardModifiers held = {}, Qt::MouseButton button = Qt::LeftButton) {
        send(QEvent::MouseButtonRelease, at, button, held);
    }
    void click(QPoint at, Qt::KeyboardModifiers held = {}) {
        press(at, held);
        release(at, held);
    }
    void dragTo(QPoint from, QPoint to, Qt::KeyboardModifiers held = Qt::AltModifier) {
        press(from, held);
        move(to, held);
        release(to, held);
    }

    std::vector<std::int32_t> selected() {
        std::vector<std::int32_t> ids;
        for (const CHardware* device : site.station->selection().members())
            ids.push_back(device->RecID);
        return ids;
    }
    const std::deque<EditStep>& steps() { return site.station->edits().history().steps(); }
    QScrollBar& across() { return *view.horizontalScrollBar(); }
    QScrollBar& down() { return *view.verticalScrollBar(); }

    using IDs = std::vector<std::int32_t>;
    test::TestFolder folder;
    test::FakeClock clock;
    test::FakeTimers timers{clock};
    test::Site site{clock, timers, {"HOST", "user"}, false};
    CMirovaneView view{*site.station, site.log};
    QSize icon;
};

TEST_F(FloorInputTest, ClicksSelectAndBringToTheFront) {
    const CHardware& under = add(DeviceType::Computer, {100, 100});
    const CHardware& over = add(DeviceType::Computer, {110, 110});
    const CHardware& far = add(DeviceType::Printer, {300, 200});
    click({115, 115});
    EXPECT_EQ(selected(), IDs{over.RecID});
    click({102, 102});
    EXPECT_EQ(selected(), IDs{under.RecID});
    EXPECT_EQ(&site.doc().at(site.doc().size() - 1), &under) << "drawn over the others";
    click({305, 205}, Qt::ControlModifier);
    EXPECT_EQ(site.station->selection().count(), 2U);
    click({305, 205}, Qt::ControlModifier);
    EXPECT_EQ(selected(), IDs{under.RecID}) << "again with Ctrl takes it out";
    dragTo({102, 102}, {112, 102}, Qt::ControlModifier | Qt::AltModifier);
    EXPECT_EQ(selected(), IDs{under.RecID}) << "but not when it is dragged";
    EXPECT_EQ(under.Position, (MapPoint{110, 100}));
    EXPECT_EQ(far.Position, (MapPoint{300, 200}));
    click({400, 20});
    EXPECT_EQ(selected(), IDs());
}

TEST_F(FloorInputTest, ADragIsOneEditAndStopsAtEveryEdge) {
    const CHardware& device = add(DeviceType::Computer, {100, 100});
    press({105, 105}, Qt::AltModifier);
    move({115, 125}, Qt::AltModifier);
    EXPECT_EQ(device.Position, (MapPoint{110, 120})) << "it follows";
    EXPECT_FALSE(view.input().gesture().shown().LabelsShown);
    EXPECT_TRUE(steps().empty());
    move({120, 130}, Qt::AltModifier);
    release({120, 130});
    EXPECT_EQ(device.Position, (MapPoint{115, 125}));
    ASSERT_EQ(steps().size(), 1U);
    EXPECT_EQ(steps().back().name, "Move 1 device");
    EXPECT_EQ(steps().back().records.front().before->Position, (MapPoint{100, 100}));

    dragTo({120, 130}, {-500, -500});
    EXPECT_EQ(device.Position, MapPoint());
    const MapPoint corner{1000 - icon.width(), 800 - icon.height()};
    dragTo({2, 2}, {2000, 2000}); // the floor scrolls along
    EXPECT_EQ(device.Position, corner);
    EXPECT_GT(across().value(), 0);
    EXPECT_GT(down().value(), 0);
}

TEST_F(FloorInputTest, TheFloorComesAlongUnderAPointerThatRestsOutside) {
    const CHardware& device = add(DeviceType::Computer, {400, 300});
    press({405, 305}, Qt::AltModifier);
    move({510, 305}, Qt::AltModifier);
    const std::int32_t before = device.Position.x;
    EXPECT_EQ(across().value(), 15);
    ASSERT_TRUE(QTest::qWaitFor([this] { return across().value() >= 60; }));
    EXPECT_GE(device.Position.x, before + 30) << "and the device stays under it";
    move({300, 305}, Qt::AltModifier);
    release({300, 305});
    const int rests = across().value();
    QTest::qWait(120);
    EXPECT_EQ(across().value(), rests);
}

TEST_F(FloorInputTest, EscapeGivesUpADragAndThenTheBox) {
    const CHardware& device = add(DeviceType::Computer, {100, 100});
    press({105, 105});
    move({200, 200});
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_EQ(device.Position, (MapPoint{100, 100}));
    move({300, 300});
    release({300, 300});
    EXPECT_EQ(device.Position, (MapPoint{100, 100}));
    EXPECT_TRUE(steps().empty());
    dragTo({50, 50}, {90, 95});
    EXPECT_TRUE(view.input().gesture().shown().box);
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_FALSE(view.input().gesture().shown().box);
}

TEST_F(FloorInputTest, ABoxIsTheSameFromEveryCorner) {
    const MapBox box{{40, 30}, {90, 95}};
    const std::pair<QPoint, QPoint> corners[] = {
        {{40, 30}, {90, 95}}, {{90, 95}, {40, 30}}, {{40, 95}, {90, 30}}, {{90, 30}, {40, 95}}};
    for (const auto& [from, to] : corners) {
        dragTo(from, to);
        EXPECT_EQ(view.input().gesture().shown().box, box);
    }
    dragTo({200, 200}, {300, 300}, Qt::ControlModifier);
    EXPECT_EQ(view.input().gesture().shown().box, box) << "with Ctrl none is drawn";
    click({200, 200});
    EXPECT_FALSE(view.input().gesture().shown().box);
}

TEST_F(FloorInputTest, EdgesSnapToThoseOfANeighbour) {
    add(DeviceType::Printer, {300, 100});
    const CHardware& device = add(DeviceType::Printer, {100, 200});
    press({102, 202});
    move({202, 105});
    EXPECT_EQ(device.Position, (MapPoint{200, 100})) << "three pixels off the other's edges";
    EXPECT_EQ(view.input().hand().lines().size(), 1U);
    move({202, 105}, Qt::AltModifier);
    EXPECT_EQ(device.Position, (MapPoint{200, 103}));
    EXPECT_TRUE(view.input().hand().lines().empty());
    move({202, 104});
    release({202, 104});
    EXPECT_EQ(device.Position, (MapPoint{200, 100}));
    EXPECT_TRUE(view.input().hand().lines().empty());
}

TEST_F(FloorInputTest, AnAreaIsMarkedPointByPoint) {
    const CHardware& marker = add(DeviceType::LocationMarker, {300, 300});
    site.doc().edit(marker, [](CHardware& held) { held.ToJack = "1,1,"; });
    view.input().startMarking(marker.RecID);
    click({10, 20});
    click({60, 20}, Qt::ControlModifier);
    EXPECT_EQ(marker.ToJack, "10,20,60,20,");
    EXPECT_EQ(steps().size(), 2U);
    press({70, 70}, {}, Qt::RightButton);
    QContextMenuEvent menu(QContextMenuEvent::Mouse, {70, 70}, view.viewport()->mapToGlobal(QPoint(70, 70)));
    view.setContextMenuPolicy(Qt::CustomContextMenu);
    QSignalSpy menus(&view, &QWidget::customContextMenuRequested);
    QCoreApplication::sendEvent(view.viewport(), &menu);
    EXPECT_EQ(menus.size(), 0) << "this click only ended the marking";
    EXPECT_EQ(view.SelectedMarker(), marker.RecID);
    click({200, 200});
    EXPECT_EQ(marker.ToJack, "10,20,60,20,");
    QCoreApplication::sendEvent(view.viewport(), &menu);
    EXPECT_EQ(menus.size(), 1);
}

TEST_F(FloorInputTest, MarkingEndsWithItsMarkerAndSparesWhoGetsItsNumber) {
    const std::int32_t marker = add(DeviceType::LocationMarker, {300, 300}).RecID;
    view.input().startMarking(marker);
    const FloorEdit late = addMarkerPoint(marker, {10, 20}, true);
    site.doc().removeDevices(std::vector<DeviceKey>{{marker, 0}});
    EXPECT_EQ(view.input().gesture().shown().MarkingMarker, 0) << "clicks select again";
    const CHardware& heir = add(DeviceType::Computer, {300, 300});
    ASSERT_EQ(heir.RecID, marker);
    site.doc().edit(heir, [](CHardware& held) { held.ToJack = "A-7"; });
    site.station->edit(late.request, late.change);
    EXPECT_EQ(heir.ToJack, "A-7");
}

TEST_F(FloorInputTest, TheRightButtonSelectsWhatIsUnderIt) {
    const CHardware& a = add(DeviceType::Computer, {100, 100});
    const CHardware& b = add(DeviceType::Computer, {200, 100});
    const CHardware& c = add(DeviceType::Computer, {300, 100});
    const auto rightClick = [this](QPoint at, Qt::KeyboardModifiers held = {}) {
        press(at, held, Qt::RightButton);
        release(at, held, Qt::RightButton);
    };
    rightClick({105, 105});
    EXPECT_EQ(selected(), IDs{a.RecID});
    rightClick({205, 105}, Qt::ControlModifier);
    rightClick({105, 105});
    EXPECT_EQ(selected(), (IDs{a.RecID, b.RecID})) << "it is one of those selected";
    rightClick({400, 300});
    EXPECT_EQ(selected(), (IDs{a.RecID, b.RecID})) << "nothing is under it";
    rightClick({305, 105});
    EXPECT_EQ(selected(), IDs{c.RecID});
}

TEST_F(FloorInputTest, ArrowsNudgeWhatIsSelectedAndSaveOnce) {
    const CHardware& device = add(DeviceType::Computer, {100, 100});
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_EQ(device.Position, (MapPoint{100, 100}));
    across().setValue(0);
    click({105, 105});
    QTest::keyPress(&view, Qt::Key_Right);
    QTest::keyPress(&view, Qt::Key_Right);
    QTest::keyPress(&view, Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(device.Position, (MapPoint{102, 110}));
    EXPECT_TRUE(steps().empty());
    QTest::keyRelease(&view, Qt::Key_Right);
    EXPECT_EQ(steps().size(), 1U);
    for (int i = 0; i < 12; ++i)
        QTest::keyClick(&view, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(device.Position.x, 0);
    EXPECT_EQ(across().value(), 0) << "the floor stays";
}

TEST_F(FloorInputTest, TabWalksTheDevicesAsOneReads) {
    const CHardware& third = add(DeviceType::Computer, {20, 300});
    const CHardware& second = add(DeviceType::Computer, {300, 22});
    const CHardware& first = add(DeviceType::Computer, {20, 25});
    add(DeviceType::Jack, {100, 25});
    site.station->display().VisibleTypes = ~1;
    for (const CHardware* device : {&first, &second, &third, &first}) {
        QTest::keyClick(&view, Qt::Key_Tab);
        EXPECT_EQ(selected(), IDs{device->RecID});
    }
    QTest::keyClick(&view, Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(selected(), IDs{third.RecID});
}

TEST_F(FloorInputTest, MiddleButtonAndSpaceDragTheFloor) {
    const CHardware& device = add(DeviceType::Computer, {100, 100});
    press({300, 300}, {}, Qt::MiddleButton);
    move({250, 280}, {}, Qt::MiddleButton);
    release({250, 280}, {}, Qt::MiddleButton);
    EXPECT_EQ(view.scaledPoint({0, 0}), QPoint(50, 20));
    QTest::keyPress(&view, Qt::Key_Space);
    press({60, 90});
    move({110, 110});
    release({110, 110});
    QTest::keyRelease(&view, Qt::Key_Space);
    EXPECT_EQ(view.scaledPoint({0, 0}), QPoint(0, 0));
    EXPECT_EQ(device.Position, (MapPoint{100, 100}));
    EXPECT_EQ(selected(), IDs());
}

TEST_F(FloorInputTest, ThePointerIsNamedInMapCoordinatesAndADoubleClickAsksForProperties) {
    std::vector<std::string> places;
    QObject::connect(&view.input(), &CFloorInput::pointerMoved, &view, [&](std::optional<MapPoint> at) {
        places.push_back(at ? std::to_string(at->x) + "," + std::to_string(at->y) : "gone");
    });
    site.station->display().ZoomPercent = 50;
    view.setZoom(12, {0, 0});
    QMouseEvent hover(QEvent::MouseMove, QPointF(30, 40), QPointF(30, 40), Qt::NoButton, Qt::NoButton, {});
    QCoreApplication::sendEvent(view.viewport(), &hover);
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(view.viewport(), &leave);
    EXPECT_EQ(places, (std::vector<std::string>{"60,80", "gone"}));
    QSignalSpy wanted(&view.input(), &CFloorInput::propertiesWanted);
    QTest::mouseDClick(view.viewport(), Qt::LeftButton, {}, {30, 40});
    EXPECT_EQ(wanted.size(), 1);
}

TEST_F(FloorInputTest, NothingIsReadAgainBetweenPressAndRelease) {
    const CHardware& device = add(DeviceType::Computer, {100, 100});
    site.station->saveDatafile();
    test::Site other{clock, timers, {"OTHER", "user"}, false};
    ASSERT_FALSE(other.station->openDatafile(folder.file("floor.mv")));
    press({105, 105}, Qt::AltModifier);
    other.doc().editByUser(*other.doc().findDevice(device.RecID),
                           [](CHardware& held) { held.Name = "by another"; });
    ASSERT_TRUE(other.station->saveDatafile().saved());
    timers.advance(std::chrono::seconds(10));
    EXPECT_EQ(device.Name, "");
    move({115, 105}, Qt::AltModifier);
    release({115, 105});
    const CHardware& now = *site.doc().findDevice(1);
    EXPECT_EQ(now.Name, "by another");
    EXPECT_EQ(now.Position, (MapPoint{110, 100}));
}

TEST_F(FloorInputTest, ADragThatCannotBeSavedIsKeptAndSavedLater) {
    add(DeviceType::Computer, {100, 100});
    ASSERT_TRUE(site.station->saveDatafile().saved());
    const std::string away = folder.file("away.mv");
    std::filesystem::rename(folder.file("floor.mv"), away);
    std::filesystem::create_directory(folder.file("floor.mv"));
    dragTo({105, 105}, {155, 125});
    EXPECT_TRUE(site.station->watch().lastError());
    EXPECT_EQ(site.device(1).Position, (MapPoint{150, 120}));
    ASSERT_EQ(steps().size(), 1U);
    site.station->undo();
    EXPECT_EQ(site.device(1).Position, (MapPoint{100, 100}));
    site.station->redo();
    std::filesystem::remove(folder.file("floor.mv"));
    std::filesystem::rename(away, folder.file("floor.mv"));
    timers.advance(std::chrono::seconds(10));
    test::Site other{clock, timers, {"OTHER", "user"}, false};
    ASSERT_FALSE(other.station->openDatafile(folder.file("floor.mv")));
    EXPECT_EQ(other.device(1).Position, (MapPoint{150, 120}));
}

} // namespace

} // namespace mirovane
