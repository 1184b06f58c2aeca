#include "ui/floor/paint/FloorPainter.h"

#include "model/FloorMap.h"
#include "tests/ui/floor/FloorFixture.h"
#include "tests/ui/floor/paint/PlainPainter.h"

#include <QFontInfo>

#include <filesystem>
#include <random>

namespace mirovane {

namespace {

const QColor blue(0, 0, 255);

class FloorPainterTest : public testing::Test {
protected:
    test::Floor floor;
};

TEST_F(FloorPainterTest, LabelsUseTheFaceOfArialsWidthsAndTheirLineHeight) {
    const LabelFont font(12);
    EXPECT_TRUE(QStringList({QStringLiteral("Liberation Sans"), QStringLiteral("Arial")})
                    .contains(QFontInfo(font.plain).family()))
        << QFontInfo(font.plain).family().toStdString();
    for (const int height : {1, 4, 12, 13, 40}) {
        const LabelFont fitted(height);
        EXPECT_EQ(fitted.height, height);
        EXPECT_LE(fitted.metrics.height(), std::max(height, QFontMetrics(LabelFont(1).plain).height()));
    }
}

TEST_F(FloorPainterTest, SelectionShowsTheOtherStateInvertedOnBlue) {
    floor.add(DeviceType::Computer, {50, 60}, [](CHardware& d) {
        d.State = DeviceState::On;
        d.Selected = 1;
    });
    const QImage frame = floor.freshFrame();
    const QImage off = floor.icons.bitmap(DeviceType::Computer, DeviceState::Off);
    ASSERT_NE(off, floor.icons.bitmap(DeviceType::Computer, DeviceState::On));
    for (int y = 0; y < off.height(); ++y)
        for (int x = 0; x < off.width(); ++x)
            ASSERT_EQ(frame.pixel(50 + x, 60 + y), (qRgb(0, 0, 255) | ~off.pixel(x, y)) | 0xFF000000U);
}

TEST_F(FloorPainterTest, IconsAreScaledByTheDevicesZoomOnly) {
    floor.add(DeviceType::Jack, {100, 100});
    floor.state.view.zoom = {50, 200};
    const QImage icon = floor.icons.bitmap(DeviceType::Jack, DeviceState::Def);
    const QImage frame = floor.freshFrame();
    EXPECT_EQ(frame.copy(50, 50, icon.width() * 2, icon.height() * 2),
              floor.icons.source(DeviceType::Jack, DeviceState::Def, icon.size() * 2))
        << "drawn larger, not stretched";
    floor.state.view.zoom = {100, 110};
    EXPECT_EQ(floor.freshFrame().copy(100, 100, 35, 35),
              CIconSet::stretch(floor.icons.source(DeviceType::Jack, DeviceState::Def, {35, 35}), {35, 35}));
}

TEST_F(FloorPainterTest, LaterAndSelectedDevicesLieOnTop) {
    const CHardware& first = floor.add(DeviceType::Computer, {50, 50});
    floor.add(DeviceType::Printer, {50, 50});
    const QSize size = floor.icons.sizes().of(DeviceType::Computer);
    const auto shown = [&] {
        return floor.freshFrame().copy(QRect(QPoint(50, 50), size));
    };
    EXPECT_EQ(shown(), floor.icons.bitmap(DeviceType::Printer, DeviceState::Def));
    floor.doc.setShowAll(first, true);
    EXPECT_EQ(shown(), floor.icons.bitmap(DeviceType::Computer, DeviceState::Def));
    floor.doc.setShowAll(first, false);
    floor.doc.exchange(floor.doc.size() - 1, floor.doc.size() - 2);
    EXPECT_EQ(shown(), floor.icons.bitmap(DeviceType::Computer, DeviceState::Def));
}

TEST_F(FloorPainterTest, LabelBackgroundsTouchAndCarryTheirColours) {
    floor.display.PropertiesComputer = floor.display.PropertiesUsername = true;
    floor.state.ReminderPhase = true;
    const CHardware& device = floor.add(DeviceType::Computer, {50, 50}, [](CHardware& d) {
        d.State = DeviceState::On;
        d.Name = d.Username = "MMMM";
    });
    floor.doc.setReminderDue(device, true);
    const QImage frame = floor.freshFrame();
    const int bottom = 50 + floor.icons.sizes().of(DeviceType::Computer).height();
    const auto edge = [&](int y) {
        return frame.pixelColor(50, y);
    };
    EXPECT_EQ(edge(bottom), QColor(255, 0, 0));
    EXPECT_EQ(edge(bottom + 23), QColor(255, 0, 0)) << "the name under \"Due:\" stays red";
    EXPECT_EQ(edge(bottom + 24), QColor(255, 0, 255));
    EXPECT_EQ(edge(bottom + 35), QColor(255, 0, 255));
    EXPECT_EQ(edge(bottom + 36), QColor(Qt::white));
}

TEST_F(FloorPainterTest, GlyphsDrawnOnceEqualTextDrawnAsText) {
    QString text;
    for (char16_t c = 0x20; c < 0x250; ++c)
        text += QChar(c == 0xAD || (c >= 0x7F && c < 0xA0) ? u'-' : c);
    text += QStringLiteral(" AVATAR office jij \u0395\u03bb \u0416\u0434");
    ASSERT_TRUE(CGlyphAtlas::covers(text));
    EXPECT_FALSE(CGlyphAtlas::covers(QStringLiteral("e\u0301")));
    EXPECT_FALSE(CGlyphAtlas::covers(QStringLiteral("\u05d0")));
    for (const int height : {5, 11, 12, 13, 17, 40}) {
        const LabelFont font(height);
        CGlyphAtlas atlas(font);
        ASSERT_EQ(atlas.width(text), font.metrics.horizontalAdvance(text)) << height;
        for (const LabelBackground background : {LabelBackground::Canvas, LabelBackground::LoggedOn}) {
            QImage glyphs(atlas.width(text) + 40, height + 6, QImage::Format_RGB32);
            glyphs.fill(Qt::yellow);
            QImage plain = glyphs.copy();
            atlas.draw(glyphs, glyphs.rect(), {20, 3}, text, background);
            QPainter painter(&plain);
            drawLabel(painter, {20, 3}, {text, atlas.width(text), background, false, 0, false}, font,
                      plain.rect());
            painter.end();
            EXPECT_EQ(test::firstDifference(glyphs, plain), "") << height;
        }
    }
}

TEST_F(FloorPainterTest, TheHookOfALetterIsNotCutOff) {
    floor.display.PropertiesComputer = true;
    floor.state.view.LabelFontHeight = 60;
    floor.add(DeviceType::Computer, {50, 50}, [](CHardware& d) { d.Name = "j"; });
    const QImage left = floor.freshFrame().copy(40, 82, 10, 60);
    QImage empty(left.size(), left.format());
    empty.fill(Qt::white);
    EXPECT_NE(left, empty);
}

TEST_F(FloorPainterTest, LabelsOfTwoDevicesHaveAHairlineBetween) {
    floor.display.PropertiesComputer = true;
    const int height = floor.icons.sizes().of(DeviceType::Computer).height();
    floor.add(
        DeviceType::Computer, {50, 50}, [](CHardware& d) { d.Name = "MMMMMMMMMMMM"; });
    floor.add(DeviceType::Computer, {80, 56}, [](CHardware& d) { d.Name = "second"; });
    const QImage frame = floor.freshFrame();
    const QColor grey(128, 128, 128);
    EXPECT_EQ(frame.pixelColor(79, 56 + height + 2), grey) << "left of the upper label, on the lower one";
    EXPECT_NE(frame.pixelColor(79, 56 + height + 9), grey) << "below the lower one";
    EXPECT_EQ(frame.pixelColor(95, 56 + height + 12), QColor(Qt::white)) << "under the upper one alone";
}

TEST_F(FloorPainterTest, LinesAndRingAreBlueAndAsThickAsTheRuleSays) {
    DisplaySettings& display = floor.display;
    display.PropertiesSlashDraw = display.PropertiesBackslashDraw = display.PropertiesVertDraw = false;
    floor.add(DeviceType::Jack, {50, 50}, [](CHardware& d) { d.HorzDraw = d.SlashDraw = 1; });
    const int middle = 50 + floor.icons.sizes().of(DeviceType::Jack).height() / 2;
    QImage frame = floor.freshFrame();
    const auto thickness = [&](int x) {
        int count = 0;
        for (int y = middle - 6; y < middle + 6; ++y)
            count += frame.pixelColor(x, y) == blue ? 1 : 0;
        return count;
    };
    EXPECT_EQ(thickness(60), 4) << "one kind of line is on";
    display.PropertiesVertDraw = display.PropertiesBackslashDraw = true;
    frame = floor.freshFrame();
    EXPECT_EQ(thickness(60), 2) << "three kinds are on";

    display.PropertiesHorzDraw = false;
    floor.state.liveStatHolds = {1};
    frame = floor.freshFrame();
    EXPECT_EQ(frame.pixelColor(50, middle), blue) << "leftmost point of the ring";
    display.LSStatusDeviceShow = false;
    EXPECT_NE(floor.freshFrame().pixelColor(50, middle), blue);
}

TEST_F(FloorPainterTest, MarkedAreaIsAnOpenYellowPolylineEvenFarFromItsMarker) {
    const CHardware& marker = floor.add(DeviceType::LocationMarker, {5000, 5000}, [](CHardware& d) {
        d.ToJack = "20,20,120,20,120,90,";
        d.Selected = 1;
    });
    const QColor yellow(240, 240, 0);
    EXPECT_EQ(floor.freshFrame().pixelColor(70, 20), QColor(Qt::white));
    floor.state.SelectedMarker = marker.RecID;
    QImage frame = floor.freshFrame();
    for (int y = 18; y <= 22; ++y)
        EXPECT_EQ(frame.pixelColor(70, y), yellow);
    EXPECT_EQ(frame.pixelColor(120, 60), yellow);
    EXPECT_EQ(frame.pixelColor(70, 55), QColor(Qt::white)) << "not closed";
    floor.state.SelectedMarker = 0;
    floor.state.gesture.MarkingMarker = marker.RecID;
    floor.state.gesture.LastPoint = {20, 90};
    EXPECT_EQ(floor.freshFrame().pixelColor(70, 90), yellow) << "to the pointer while marking";
}

TEST_F(FloorPainterTest, AreaUnderThePointerIsShownWhenItsMarkerIsOutOfSight) {
    floor.state.SelectedMarker = floor
                                     .add(DeviceType::LocationMarker, {5000, 5000},
                                          [](CHardware& d) { d.ToJack = "20,20,120,20,120,90,"; })
                                     .RecID;
    EXPECT_EQ(floor.freshFrame().pixelColor(70, 20), QColor(240, 240, 0));
}

TEST_F(FloorPainterTest, MapReachesItsLastPixelAtEveryZoom) {
    QImage map(300, 200, QImage::Format_RGB32);
    map.fill(Qt::black);
    setFloorMap(floor.doc, {"map.bmp", {}});
    floor.map.tiles().setPicture(std::make_shared<const CMapPicture>(map));
    for (const int percent : {10, 29, 57, 58, 100, 113, 115, 205, 230, 255, 800}) {
        const QSize shown = scaled(map.size(), percent);
        floor.state.view.zoom.ZoomPercent = percent;
        floor.state.view.origin = {shown.width() - 20, shown.height() - 20};
        const QImage frame = floor.freshFrame();
        EXPECT_EQ(frame.pixelColor(19, 19), QColor(Qt::black)) << percent;
        EXPECT_EQ(frame.pixelColor(20, 19), QColor(Qt::white)) << percent;
        EXPECT_EQ(frame.pixelColor(19, 20), QColor(Qt::white)) << percent;
    }
}

TEST_F(FloorPainterTest, HiddenTypesAreShownOnlyForAReason) {
    const CHardware& device =
        floor.add(DeviceType::Computer, {50, 50}, [](CHardware& d) { d.State = DeviceState::On; });
    DisplaySettings& display = floor.display;
    display.VisibleTypes = ~(1 << (DeviceType::Computer - 1));
    const auto drawn = [&] {
        return floor.freshFrame().copy(50, 50, 32, 32) != QImage(floor.freshFrame().copy(300, 200, 32, 32));
    };
    EXPECT_FALSE(drawn());
    floor.doc.setReminderDue(device, true);
    EXPECT_TRUE(drawn());
    display.ReminderDeviceShow = false;
    EXPECT_FALSE(drawn());
    floor.doc.setSelected(device, true);
    EXPECT_FALSE(drawn()) << "nothing was found yet";
    floor.state.find.FindNothingFound = false;
    EXPECT_TRUE(drawn());
}

TEST_F(FloorPainterTest, PhotoStandsLeftOfTheHoveredDevice) {
    test::TestFolder folder;
    QImage photo(128, 160, QImage::Format_RGB32);
    photo.fill(Qt::green);
    ASSERT_TRUE(photo.save(QString::fromStdString(folder.file("ann.bmp"))));
    CHardware map;
    map.Type = SpecialType::FloorMapRecord;
    map.Username = folder.path();
    floor.doc.append(map);
    floor.photos.setFolder({QString::fromStdString(folder.path()), {}});
    const CHardware& device =
        floor.add(DeviceType::Computer, {200, 50}, [](CHardware& d) { d.Username = "[ann]"; });
    EXPECT_EQ(floor.freshFrame().pixelColor(180, 60), QColor(Qt::white));
    floor.doc.setShowAll(device, true);
    const QImage frame = floor.freshFrame();
    EXPECT_EQ(frame.pixelColor(72, 50), QColor(Qt::green));
    EXPECT_EQ(frame.pixelColor(199, 209), QColor(Qt::green));
    EXPECT_EQ(frame.pixelColor(71, 50), QColor(Qt::white));
}

TEST_F(FloorPainterTest, PhotoFilesAreFoundFromTheDatafileWhateverTheirCase) {
    test::TestFolder folder;
    test::writeBytes(folder.file("secret.bmp"), "x");
    std::filesystem::create_directory(folder.file("people"));
    test::writeBytes(folder.file("people/anna.bmp"), "x");
    const PhotoFolder people{QStringLiteral("people"), QString::fromStdString(folder.file("site.mv"))};
    const auto found = [&](const char* user) {
        return photoFile(people, QString::fromLatin1(user));
    };
    const QString anna = QString::fromStdString(folder.file("people/anna.bmp"));
    for (const char* user : {"anna", "ANNA", "[Anna]"})
        EXPECT_EQ(found(user), anna) << user;
    for (const char* user : {"ann", "[", "", "..\\secret", "../secret", "/anna/../../secret"})
        EXPECT_EQ(found(user), QString()) << user;
    EXPECT_EQ(photoFile({QStringLiteral("C:\\share\\people"), people.datafile}, QStringLiteral("anna")),
              anna);
}

TEST_F(FloorPainterTest, TwiceThePixelsShowTheSameGeometry) {
    floor.add(DeviceType::Jack, {50, 50}, [](CHardware& d) { d.VertDraw = 1; });
    const QImage frame = floor.freshFrame(2);
    EXPECT_EQ(frame.size(), QSize(800, 600));
    const QSize size = floor.icons.sizes().of(DeviceType::Jack);
    const int middle = (50 + size.width() / 2) * 2;
    EXPECT_EQ(frame.pixelColor(middle - 2, 120), blue);
    EXPECT_EQ(frame.pixelColor(middle + 1, 120), blue);
    EXPECT_NE(frame.pixelColor(middle + 2, 120), blue);
    floor.state.gesture.box = MapBox{{200, 20}, {150, 200}};
    const QImage boxed = floor.freshFrame();
    for (const QPoint p :
         {QPoint(150, 20), QPoint(200, 20), QPoint(150, 200), QPoint(200, 200), QPoint(175, 200)})
        EXPECT_EQ(boxed.pixelColor(p), QColor(Qt::black));
}

TEST_F(FloorPainterTest, TextsOfAnyLengthAndBytesAreSurvived) {
    floor.display.PropertiesComputer = floor.display.PropertiesComment = true;
    floor.add(
        DeviceType::Computer, {10, 10},
        [](CHardware& d) {
            d.Name = std::string(10000, 'W');
            d.Comment = std::string(100000, '\r');
        });
    floor.add(
        14, {60, 60}, [](CHardware& d) { d.Name = "caf\xE9\x01\n"; });
    floor.add(DeviceType::Computer, {90, 90}, [](CHardware& d) { d.State = 77; });
    EXPECT_FALSE(floor.freshFrame().isNull());
    EXPECT_EQ(shownText("one\ntwo\tthree"), QStringLiteral("one two three"));
    EXPECT_EQ(shownText("caf\xE9\x01\n"), QStringLiteral("caf\u00e9  "));
}

/// Random devices of all kinds and conditions, crowded so that they overlap.
void fillAtRandom(test::Floor& floor, std::mt19937& random, int count) {
    const auto below = [&random](int limit) {
        return static_cast<int>(random() % static_cast<unsigned>(limit));
    };
    const std::string texts[] = {"",          "server-a1",   "[gone]",      "AVAjfg_|",
                                 "127.0.0.9", "line\rtwo\r", "\xC3\xA4\xE9"};
    const auto text = [&] {
        return texts[below(7)];
    };
    for (int i = 0; i < count; ++i) {
        const bool marker = below(8) == 0;
        const CHardware& device =
            floor.add(marker ? 13 : 1 + below(12), {below(700) - 250, below(600) - 250}, [&](CHardware& d) {
                d.State = below(4);
                d.Name = text();
                d.IPAddress = text();
                d.Username = text();
                d.Comment = text();
                d.ToJack = marker ? "10,10,300,40,200,250," : text();
                d.SlashDraw = below(3) == 0;
                d.VertDraw = below(3) == 0;
                d.BackslashDraw = below(3) == 0;
                d.ToDo = "to do";
                d.ReminderOn = below(2);
            });
        floor.doc.setSelected(device, below(5) == 0);
        floor.doc.setShowAll(device, below(9) == 0);
        floor.doc.setReminderDue(device, below(6) == 0);
    }
}

void chooseAtRandom(test::Floor& floor, std::mt19937& random) {
    const auto coin = [&random] {
        return random() % 2 == 0;
    };
    DisplaySettings& display = floor.display;
    display.PropertiesComputer = coin();
    display.PropertiesIPAddress = coin();
    display.PropertiesUsername = coin();
    display.PropertiesComment = coin();
    display.PropertiesSlashDraw = coin();
    display.PropertiesVertDraw = coin();
    display.VisibleTypes = coin() ? -1 : static_cast<std::int32_t>(random());
    floor.state.view.zoom = {coin() ? 100 : 70 + static_cast<std::int32_t>(random() % 60),
                             coin() ? 100 : 60 + static_cast<std::int32_t>(random() % 90)};
    floor.state.view.origin = coin() ? QPoint(0, 0) : QPoint(37, 21);
    floor.state.ReminderPhase = coin();
    floor.state.gesture.LabelsShown = coin();
    floor.state.find.FindHitCount = coin() ? 0 : 12;
    floor.state.find.FindReminderMode = coin();
    floor.state.find.FindNothingFound = coin();
    floor.state.SelectedMarker = coin() ? 0 : 3;
    floor.state.gesture.MarkingMarker = coin() ? 0 : 5;
    floor.state.liveStatHolds = {4, 8, 12, 40, 44};
}

TEST_F(FloorPainterTest, KeptFramesEqualPlainlyDrawnOnes) {
    test::TestFolder folder;
    std::mt19937 random(20240501);
    fillAtRandom(floor, random, 120);
    CFloorFrame frame(floor.sources());
    QImage map(260, 190, QImage::Format_RGB32);
    map.fill(QColor(220, 235, 250)); // of one colour: how it is scaled is not what is compared here
    setFloorMap(floor.doc, {"map.bmp", folder.path()});
    floor.map.tiles().setPicture(std::make_shared<const CMapPicture>(map));
    floor.photos.setFolder({QString::fromStdString(folder.path()), {}});
    test::PlainPainter plain(floor.doc, floor.display, floor.icons, map);
    plain.photos["server-a1"] = QImage(20, 30, QImage::Format_RGB32);
    plain.photos["server-a1"].fill(Qt::green);
    ASSERT_TRUE(plain.photos["server-a1"].save(QString::fromStdString(folder.file("server-a1.bmp"))));
    QImage expected(floor.state.view.client, QImage::Format_RGB32);
    for (int round = 0; round < 60; ++round) {
        chooseAtRandom(floor, random);
        plain.draw(expected, floor.state);
        frame.setState(floor.state);
        frame.invalidateAll();
        ASSERT_EQ(test::firstDifference(frame.image(), expected), "") << "round " << round;
    }
}

/// The view's wiring in small: every change of the document makes its surroundings stale.
class FrameObserver final : public DocumentObserver {
public:
    FrameObserver(CMirovaneDoc& document, CFloorFrame& frame) : document_(document), frame_(frame) {
        document_.addObserver(*this);
    }
    ~FrameObserver() override { document_.removeObserver(*this); }
    void recordAdded(const CHardware& record) override { frame_.invalidate(record); }
    void recordChanged(const CHardware&, const CHardware& after) override { frame_.invalidate(after); }
    void flagsChanged(const CHardware& record) override { frame_.invalidate(record); }
    void recordRemoved(const CHardware& record) override { frame_.forget(record); }
    void orderChanged() override { frame_.invalidateAll(); }

private:
    CMirovaneDoc& document_;
    CFloorFrame& frame_;
};

void editAtRandom(test::Floor& floor, std::mt19937& random) {
    const auto below = [&random](std::size_t limit) {
        return random() % limit;
    };
    const CHardware& device = floor.doc.at(below(floor.doc.size()));
    const auto place = [&] {
        return MapPoint{static_cast<int>(below(700)) - 250, static_cast<int>(below(600)) - 250};
    };
    switch (below(8)) {
    case 0:
        return floor.doc.edit(device, [&](CHardware& d) { d.Position = place(); });
    case 1:
        return floor.doc.edit(device, [&](CHardware& d) { d.Name = std::string(below(12), 'W'); });
    case 2:
        return floor.doc.edit(device,
                              [&](CHardware& d) { d.Type = d.Type > 1000 ? d.Type - 1000 : d.Type + 1000; });
    case 3:
        return floor.doc.setSelected(device, !device.Selected);
    case 4:
        return floor.doc.setShowAll(device, !device.ShowAll);
    case 5:
        return floor.doc.remove(device);
    case 6:
        floor.add(1 + static_cast<int>(below(13)), place(), [](CHardware& d) { d.Name = "new"; });
        return;
    default:
        return floor.doc.exchange(below(floor.doc.size()), below(floor.doc.size()));
    }
}

TEST_F(FloorPainterTest, IncrementalFramesEqualWholeOnes) {
    std::mt19937 random(77);
    fillAtRandom(floor, random, 60);
    for (const qreal ratio : {1.0, 1.5, 2.0}) {
        CFloorFrame frame(floor.sources());
        const FrameObserver observer(floor.doc, frame);
        for (int round = 0; round < 150; ++round) {
            if (round % 50 == 0) {
                chooseAtRandom(floor, random);
                floor.state.view.ratio = ratio;
                frame.setState(floor.state);
                frame.invalidateAll();
            }
            for (std::size_t edits = 1 + random() % 3; edits > 0; --edits)
                editAtRandom(floor, random);
            ASSERT_EQ(test::firstDifference(frame.image(), floor.freshFrame(ratio)), "")
                << "round " << round << " at ratio " << ratio;
        }
        for (int round = 0; round < 40; ++round) {
            const auto step = [&] {
                return static_cast<int>(random() % 121) - 60;
            };
            floor.state.view.origin += QPoint(step(), step()) * (round % 2 + 1);
            editAtRandom(floor, random);
            frame.setState(floor.state);
            if (round % 3 == 0)
                editAtRandom(floor, random);
            ASSERT_EQ(test::firstDifference(frame.image(), floor.freshFrame(ratio)), "")
                << "scroll " << round << " at ratio " << ratio;
        }
        QRect redrawn(1, 1, 1, 1);
        frame.image(&redrawn);
        EXPECT_TRUE(redrawn.isNull()) << "nothing changed, nothing is drawn";
    }
}

} // namespace

} // namespace mirovane
