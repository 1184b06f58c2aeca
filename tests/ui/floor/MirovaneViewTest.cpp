#include "ui/floor/MirovaneView.h"

#include "model/FloorMap.h"
#include "tests/station/StationFixture.h"
#include "tests/ui/floor/FloorFixture.h"
#include "ui/floor/FloorToolTip.h"
#include "ui/floor/FloorZooming.h"

#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>

namespace mirovane {

namespace {

class MirovaneViewTest : public testing::Test {
protected:
    MirovaneViewTest() {
        site.station->newDatafile();
        site.station->display().PropertiesUsername = false;
        view.resize(500, 400);
        view.show();
    }

    const CHardware& add(std::int32_t type, MapPoint at, const std::string& name = {}) {
        return *site.doc().addDevice(
            type,
            [&](CHardware& d) {
                d.Position = at;
                d.Name = name;
            });
    }

    void settle() {
        ASSERT_TRUE(QTest::qWaitFor([this] { return view.settled(); }, 10000));
    }

    /// What the user sees, without scroll bars.
    QImage shown() {
        settle();
        return view.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }

    /// The same drawn at once, with nothing kept.
    QImage expected() {
        CFloorMap map;
        const CMirovaneDoc& doc = site.doc();
        map.loadNow(QString::fromStdString(floorMapOf(doc).mapPath),
                    QString::fromStdString(site.station->datafile().path()));
        CPhotoStore photos(CPhotoStore::Reading::Now);
        CFloorFrame frame({doc, site.station->display(), view.drawing().index(), view.drawing().icons(),
                           map.tiles(), photos});
        frame.setState(view.state());
        return frame.image().copy();
    }

    /// Between the screen and what it should show; empty when equal.
    std::string difference() {
        const QImage screen = shown();
        return test::firstDifference(screen, expected());
    }

    void moveTo(QPoint at) {
        QMouseEvent move(QEvent::MouseMove, at, view.viewport()->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                         {});
        QCoreApplication::sendEvent(view.viewport(), &move);
    }

    std::string saveMap(int width, int height) {
        QImage map(width, height, QImage::Format_RGB32);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                map.setPixel(x, y, qRgb(200 + x % 50, 200 + y % 50, 220));
        EXPECT_TRUE(map.save(QString::fromStdString(folder.file("map.bmp"))));
        return folder.file("map.bmp");
    }

    test::TestFolder folder;
    test::FakeClock clock;
    test::FakeTimers timers{clock};
    test::Site site{clock, timers, {"HOST", "user"}, false};
    CMirovaneView view{*site.station, site.log};
};

TEST_F(MirovaneViewTest, ShowsEveryChangeOfTheDocument) {
    const CHardware& a = add(DeviceType::Computer, {40, 50}, "a");
    const CHardware& b = add(DeviceType::Printer, {60, 60}, "b");
    EXPECT_EQ(difference(), "");
    site.doc().edit(a, [](CHardware& d) {
        d.Position = {200, 100};
        d.State = DeviceState::On;
    });
    EXPECT_EQ(difference(), "");
    site.station->display().PropertiesComputer = true;
    view.viewport()->update();
    EXPECT_EQ(difference(), "") << "a toggle needs no more than an update";
    site.doc().remove(b);
    EXPECT_EQ(difference(), "");
    site.station->display().ZoomPercent = site.station->display().ZoomDevicesPercent = 150;
    view.viewport()->update();
    EXPECT_EQ(difference(), "");
    site.station->newDatafile();
    settle();
    EXPECT_EQ(view.drawing().index().size(), 0U);
}

TEST_F(MirovaneViewTest, MapGivesTheScrollRangeAndDevicesWidenIt) {
    setFloorMap(site.doc(), {saveMap(1200, 900), {}});
    settle();
    EXPECT_EQ(view.drawing().extent(100), QSize(1200, 900));
    EXPECT_EQ(view.horizontalScrollBar()->maximum(), 1200 - view.viewport()->width());
    EXPECT_EQ(difference(), "");
    add(DeviceType::Computer, {1300, 100});
    settle();
    const int icon = view.drawing().icons().sizes().of(DeviceType::Computer).width();
    EXPECT_EQ(view.drawing().extent(100), QSize(1300 + icon, 900));
    view.horizontalScrollBar()->setValue(700);
    view.verticalScrollBar()->setValue(123);
    EXPECT_EQ(difference(), "");
    EXPECT_EQ(view.state().view.origin, QPoint(700, 123));
}

TEST_F(MirovaneViewTest, WheelAndKeysScroll) {
    setFloorMap(site.doc(), {saveMap(1200, 900), {}});
    settle();
    const QPoint middle(100, 100);
    const auto wheel = [&](Qt::KeyboardModifiers held) {
        QWheelEvent event(middle, view.viewport()->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, held,
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view.viewport(), &event);
    };
    wheel(Qt::NoModifier);
    EXPECT_GT(view.verticalScrollBar()->value(), 0);
    wheel(Qt::ShiftModifier);
    EXPECT_GT(view.horizontalScrollBar()->value(), 0);
    QTest::keyClick(&view, Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(view.verticalScrollBar()->value(), view.verticalScrollBar()->maximum());
    QTest::keyClick(&view, Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(view.state().view.origin, QPoint(0, 0));
    QTest::keyClick(&view, Qt::Key_Right);
    EXPECT_EQ(view.horizontalScrollBar()->value(), 20);
}

TEST_F(MirovaneViewTest, CtrlWheelZoomsAtThePointerAndFingersToo) {
    CSettings& settings = site.settings;
    CFloorZooming zooming(view, site.station->display(), settings);
    setFloorMap(site.doc(), {saveMap(1200, 900), {}});
    add(DeviceType::Computer, {400, 300}, "pc");
    settle();
    view.horizontalScrollBar()->setValue(200);
    view.verticalScrollBar()->setValue(100);
    const QPoint pointer(150, 120);
    const auto under = [&] {
        return ToMap(pointer, view.scaledPoint({0, 0}), site.station->display().ZoomPercent);
    };
    const MapPoint before = under();
    for (const int turned : {120, 60, 60}) {
        QWheelEvent event(pointer, view.viewport()->mapToGlobal(pointer), {}, {0, turned}, Qt::NoButton,
                          Qt::ControlModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view.viewport(), &event);
    }
    EXPECT_EQ(site.station->display().ZoomPercent, 120);
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, pointer);
    zooming.run(ZoomCommand::In);
    EXPECT_EQ(site.station->display().ZoomPercent, 120) << "what is dragged would leave the pointer";
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, pointer);
    EXPECT_EQ(settings.read("ZoomDevicesPercent", 0), 120);
    EXPECT_EQ(view.state().view.LabelFontHeight, 13);
    EXPECT_NEAR(under().x, before.x, 1);
    EXPECT_NEAR(under().y, before.y, 1);
    EXPECT_EQ(difference(), "");

    const QPointingDevice* pad = QPointingDevice::primaryPointingDevice();
    for (const auto& [type, value] :
         {std::pair(Qt::BeginNativeGesture, 0.0), std::pair(Qt::ZoomNativeGesture, 0.3),
          std::pair(Qt::ZoomNativeGesture, 0.002), std::pair(Qt::EndNativeGesture, 0.0)}) {
        QNativeGestureEvent event(type, pad, 2, pointer, pointer, view.viewport()->mapToGlobal(pointer),
                                  value, {});
        QCoreApplication::sendEvent(view.viewport(), &event);
    }
    EXPECT_EQ(settings.read("ZoomPercent", 0), 156);
    EXPECT_NEAR(under().x, before.x, 2);
    EXPECT_EQ(difference(), "");
}

TEST_F(MirovaneViewTest, ASmallFloorZoomsInAtItsOwnMiddle) {
    CFloorZooming zooming(view, site.station->display(), site.settings);
    setFloorMap(site.doc(), {saveMap(800, 600), {}});
    settle();
    zooming.run(ZoomCommand::To25);
    zooming.run(ZoomCommand::To300);
    const MapPoint middle = ToMap(view.viewport()->rect().center(), view.scaledPoint({0, 0}), 300);
    EXPECT_NEAR(middle.x, 400, 4);
    EXPECT_NEAR(middle.y, 300, 4);
}

TEST_F(MirovaneViewTest, PointerShowsAllOfADeviceAndLeavingHidesIt) {
    const CHardware& device = add(DeviceType::Computer, {40, 50}, "pc");
    moveTo({50, 60});
    EXPECT_EQ(device.ShowAll, 1);
    EXPECT_EQ(difference(), "");
    moveTo({300, 60});
    EXPECT_EQ(device.ShowAll, 0);
    moveTo({50, 60});
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(view.viewport(), &leave);
    EXPECT_EQ(device.ShowAll, 0);
    EXPECT_EQ(difference(), "");
}

TEST_F(MirovaneViewTest, ToolTipTellsTheFieldsAsPlainText) {
    CHardware device;
    device.Type = DeviceType::Computer;
    device.Name = "<b>pc</b>";
    device.Comment = "one\r\ntwo";
    device.ToDo = "not set";
    EXPECT_EQ(toolTipText(device),
              QStringLiteral("Type: Computer\nComputer name: <b>pc</b>\nComment: one two"));
    add(DeviceType::Computer, {40, 50}, "<b>pc</b>");
    moveTo({50, 60});
    ASSERT_TRUE(QTest::qWaitFor([] { return QToolTip::isVisible(); }, 5000));
    EXPECT_TRUE(QToolTip::text().contains(QStringLiteral("&lt;b&gt;pc"))) << QToolTip::text().toStdString();
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, {300, 300});
    EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 5000));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, {300, 300});
}

TEST_F(MirovaneViewTest, ScrollingShowsWhatComesUnderAPointerThatRests) {
    const CHardware& device = add(DeviceType::Computer, {40, 50}, "pc");
    const CHardware& below = add(DeviceType::Computer, {40, 250}, "pc below");
    add(DeviceType::Computer, {2000, 2000});
    settle();
    moveTo({50, 60});
    view.verticalScrollBar()->setValue(200);
    EXPECT_EQ((std::vector{device.ShowAll, below.ShowAll}), (std::vector{0, 1}));
    EXPECT_EQ(difference(), "");
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(view.viewport(), &leave);
    view.verticalScrollBar()->setValue(0);
    EXPECT_EQ(device.ShowAll, 0);
}

TEST_F(MirovaneViewTest, DeviceIsBroughtIntoViewWithAllItsLabels) {
    add(DeviceType::Computer, {4000, 4000});
    const CHardware& far = add(DeviceType::Printer, {3000, 2500});
    view.showDevice(far);
    settle();
    const QPoint at = QPoint(3000, 2500) - view.scaledPoint({0, 0});
    EXPECT_TRUE(view.viewport()->rect().adjusted(0, 0, -20, -20).contains(at)) << at.x() << ' ' << at.y();
    EXPECT_EQ(far.ShowAll, 1);
    EXPECT_EQ(far.Selected, 0);
    const int before = view.horizontalScrollBar()->value();
    view.showDevice(*site.doc().addDevice(DeviceType::Computer + 1000, nullptr));
    EXPECT_EQ(view.horizontalScrollBar()->value(), before) << "it has no place on the floor";
}

TEST_F(MirovaneViewTest, PointerInAMarkedAreaShowsIt) {
    const CHardware& marker = add(DeviceType::LocationMarker, {300, 300});
    site.doc().edit(marker, [](CHardware& d) { d.ToJack = "50,50,200,50,200,200,50,200,"; });
    QSignalSpy changes(&view, &CMirovaneView::selectedMarkerChanged);
    moveTo({100, 100});
    EXPECT_EQ(view.SelectedMarker(), marker.RecID);
    EXPECT_EQ(shown().pixelColor(120, 50), QColor(240, 240, 0));
    moveTo({400, 100});
    EXPECT_EQ(view.SelectedMarker(), 0);
    EXPECT_NE(shown().pixelColor(120, 50), QColor(240, 240, 0));
    EXPECT_EQ(changes.size(), 2);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, {310, 310});
    EXPECT_EQ(view.SelectedMarker(), marker.RecID) << "a click on the marker shows its area, too";
    EXPECT_EQ(difference(), "");
}

TEST_F(MirovaneViewTest, ClickSelectsTheTopmostDeviceAndCtrlClickAddsToIt) {
    const CHardware& a = add(DeviceType::Computer, {40, 50}, "a");
    const CHardware& b = add(DeviceType::Computer, {45, 55}, "b");
    const CHardware& c = add(DeviceType::Computer, {200, 50}, "c");
    const CHardware& misc = add(DeviceType::Computer + DeviceType::discoveredOffset, {});
    site.station->selection().add(misc);
    site.station->selection().add(c);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, {60, 70});
    EXPECT_EQ((std::vector{a.Selected, b.Selected, c.Selected}), (std::vector{0, 1, 0}));
    EXPECT_EQ(misc.Selected, 1) << "the floor leaves the other window's selection alone";
    QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::ControlModifier, {210, 60});
    EXPECT_EQ((std::vector{a.Selected, b.Selected, c.Selected}), (std::vector{0, 1, 1}));
    EXPECT_EQ(difference(), "");
    site.station->display().PropertiesComputer = true;
    const QImage labelled = shown();
    QTest::mousePress(view.viewport(), Qt::LeftButton, Qt::ControlModifier, {75, 85});
    EXPECT_EQ(b.Selected, 1);
    EXPECT_NE(test::firstDifference(shown(), labelled), "") << "no labels while the button is down";
    EXPECT_EQ(difference(), "");
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, Qt::ControlModifier, {75, 85});
    EXPECT_EQ((std::vector{b.Selected, c.Selected}), (std::vector{0, 1})) << "the click took it back";
    EXPECT_EQ(difference(), "");
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, {400, 300});
    EXPECT_TRUE(site.station->selection().empty(CSelection::Scope::Floor));
}

TEST_F(MirovaneViewTest, AClickRunsLiveStatNowOnTheSelectionIfTheUserWantsIt) {
    const CHardware& device = add(DeviceType::Computer, {40, 50});
    const auto click = [&](QPoint at) {
        site.doc().setLSNowMark(device, false);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, at);
        return device.LSNowMark != 0;
    };
    EXPECT_FALSE(click({300, 300}));
    EXPECT_TRUE(click({50, 60}));
    LiveStatSettings settings = site.station->features().liveStat().settings();
    settings.LSAutoPerform = false;
    site.station->features().liveStat().setSettings(settings);
    EXPECT_FALSE(click({50, 60}));
}

TEST_F(MirovaneViewTest, AButtonThatWentUpUnseenIsUp) {
    const CHardware& device = add(DeviceType::Computer, {40, 50}, "a");
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, {50, 60});
    settle();
    EXPECT_FALSE(view.state().gesture.LabelsShown);
    moveTo({52, 60});
    EXPECT_EQ(difference(), "");
    EXPECT_TRUE(view.state().gesture.LabelsShown);
    EXPECT_EQ(device.Selected, 1);
}

TEST_F(MirovaneViewTest, ADragBesideTheDevicesLeavesABoxUntilTheNextClick) {
    add(DeviceType::Computer, {40, 50}, "a");
    add(DeviceType::Computer, {2000, 2000});
    settle();
    const auto dragTo = [this](QPoint at) {
        QMouseEvent move(QEvent::MouseMove, at, view.viewport()->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, {});
        QCoreApplication::sendEvent(view.viewport(), &move);
    };
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, {300, 200});
    dragTo({250, 100});
    EXPECT_EQ(shown().pixelColor(275, 100), QColor(Qt::black));
    dragTo({250, -1});
    dragTo({view.viewport()->width(), 100});
    EXPECT_EQ(view.state().view.origin, QPoint(0, 0)) << "what is scrolled to is drawn in the next frame";
    settle();
    EXPECT_EQ(view.state().view.origin, QPoint(15, 0)) << "beyond the edge the floor comes along";
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, {100, 100});
    settle();
    const int right = view.viewport()->width();
    EXPECT_EQ(view.state().gesture.box, (MapBox{{300, 100}, {right, 200}}));
    EXPECT_EQ(difference(), "");
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, {400, 300});
    settle();
    EXPECT_FALSE(view.state().gesture.box);
    EXPECT_EQ(difference(), "");
}

TEST_F(MirovaneViewTest, RingsStayWhereTheyAreUntilLiveStatTellsOfOthers) {
    add(DeviceType::Computer, {40, 50}, "a");
    add(DeviceType::Computer, {70, 50}, "b");
    site.station->features().liveStat().toggle();
    for (int i = 0; i < 5000 && !site.liveStat().holdsDevice(2); ++i) {
        QCoreApplication::processEvents(); // what the last tick asked for is drawn before the next one
        timers.advance(std::chrono::milliseconds(1));
    }
    ASSERT_TRUE(site.liveStat().holdsDevice(2)) << "Live Stat never got to the device";
    const QColor blue(0, 0, 255);
    site.doc().setShowAll(*site.doc().findDevice(2), true);
    settle();
    EXPECT_NE(shown().pixelColor(70, 66), blue);
    view.refreshRings();
    EXPECT_EQ(shown().pixelColor(70, 66), blue);
}

TEST_F(MirovaneViewTest, MissingMapIsToldOnceAndADamagedOneIsLogged) {
    QSignalSpy failed(&view, &CMirovaneView::floorMapFailed);
    setFloorMap(site.doc(), {folder.file("none.bmp"), {}});
    ASSERT_TRUE(QTest::qWaitFor([&] { return failed.size() == 1; }, 10000));
    EXPECT_EQ(failed[0][0].toString().toStdString(),
              "Floor map file " + folder.file("none.bmp") + " does not exist!");
    EXPECT_TRUE(failed[0][1].toBool());
    test::writeBytes(folder.file("text.bmp"), "text");
    setFloorMap(site.doc(), {folder.file("text.bmp"), {}});
    ASSERT_TRUE(QTest::qWaitFor([&] { return failed.size() == 2; }, 10000));
    EXPECT_NE(site.log.lines().back().text.find("cannot be shown"), std::string::npos);
}

TEST_F(MirovaneViewTest, EmptyFloorTellsHowToBegin) {
    EXPECT_NE(difference(), "") << "a hint that is on the screen only";
    add(DeviceType::Jack, {10, 10});
    EXPECT_EQ(difference(), "");
}

} // namespace

} // namespace mirovane
