#include "ui/floor/map/MapTiles.h"

#include "tests/support/Paths.h"
#include "tests/support/TestFolder.h"
#include "tests/ui/floor/FloorFixture.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>

namespace mirovane {

namespace {

QImage pattern(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x % 256, y % 256, (x * 7 + y * 13) % 256));
    return image;
}

QImage drawn(CMapTiles& tiles, QSize client, QPoint origin, double factor) {
    QImage canvas(client, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    const QSize size = tiles.picture()->size();
    tiles.draw(painter, canvas.rect(),
               {origin,
                {static_cast<int>(size.width() * factor), static_cast<int>(size.height() * factor)},
                factor});
    return canvas;
}

std::shared_ptr<const CMapPicture> picture(const QImage& image) {
    return std::make_shared<const CMapPicture>(image);
}

TEST(MapTilesTest, HundredPercentIsTheBitmapItself) {
    const QImage map = pattern(900, 700);
    CMapTiles tiles;
    tiles.setPicture(picture(map));
    const QImage canvas = drawn(tiles, {400, 300}, {-600, -500}, 1.0);
    EXPECT_EQ(canvas.copy(0, 0, 300, 200), map.copy(600, 500, 300, 200));
    EXPECT_EQ(canvas.pixelColor(300, 199), QColor(Qt::white)) << "beside the map nothing is drawn";
    EXPECT_EQ(canvas.pixelColor(299, 200), QColor(Qt::white));
}

TEST(MapTilesTest, HalfSizeAveragesAndDoubleSizeInterpolates) {
    QImage map(600, 600, QImage::Format_RGB32);
    map.fill(Qt::white);
    map.setPixel(10, 10, qRgb(0, 0, 0));
    CMapTiles tiles;
    tiles.setPicture(picture(map));
    EXPECT_NEAR(drawn(tiles, {300, 300}, {0, 0}, 0.5).pixelColor(5, 5).red(), 191, 1)
        << "a quarter of the square";
    const QImage doubled = drawn(tiles, {300, 300}, {0, 0}, 2.0);
    EXPECT_NEAR(doubled.pixelColor(20, 20).red(), 112, 2);
    EXPECT_NEAR(doubled.pixelColor(19, 20).red(), 207, 2);
    EXPECT_EQ(doubled.pixelColor(23, 20), QColor(Qt::white));
}

TEST(MapTilesTest, PiecesMeetWithoutSeamsAtAnyZoomAndScroll) {
    const QImage map = pattern(1500, 1200);
    const auto shared = picture(map);
    for (const double factor : {0.05, 0.33, 0.5, 0.77, 1.1, 1.5, 3.0, 8.0}) {
        CMapTiles tiles;
        tiles.setPicture(shared);
        const QSize whole(static_cast<int>(map.width() * factor), static_cast<int>(map.height() * factor));
        for (const QPoint scroll :
             {QPoint(0, 0), QPoint(300, 411), QPoint(whole.width() - 200, whole.height() - 100)}) {
            const QRect shown = QRect(scroll, QSize(700, 600)) & QRect(QPoint(0, 0), whole);
            if (shown.isEmpty())
                continue;
            const QImage canvas = drawn(tiles, {700, 600}, -scroll, factor);
            EXPECT_EQ(test::firstDifference(canvas.copy(shown.translated(-scroll)),
                                            resampled(*shared, shown, factor)),
                      "")
                << factor << " at " << scroll.x() << "," << scroll.y();
        }
    }
}

TEST(MapTilesTest, FewColouredBitmapsAreShownLikeOthers) {
    QImage mono(2000, 1000, QImage::Format_Mono);
    mono.setColorTable({qRgb(255, 255, 255), qRgb(0, 0, 0)});
    mono.fill(0);
    for (int x = 0; x < 1000; ++x)
        mono.setPixel(x, 500, 1);
    CMapTiles tiles;
    tiles.setPicture(picture(mono));
    EXPECT_EQ(tiles.picture()->bitmap().depth(), 1) << "kept as small as the file";
    const QImage canvas = drawn(tiles, {100, 100}, {-950, -450}, 1.0);
    EXPECT_EQ(canvas.pixelColor(49, 50), QColor(Qt::black));
    EXPECT_EQ(canvas.pixelColor(50, 50), QColor(Qt::white));
}

class FloorMapTest : public testing::Test {
protected:
    QString saved(const std::string& name, const QImage& image) {
        const QString path = QString::fromStdString(folder.file(name));
        EXPECT_TRUE(image.save(path));
        return path;
    }
    QString written(const std::string& name, std::string_view bytes) {
        test::writeBytes(folder.file(name), bytes);
        return QString::fromStdString(folder.file(name));
    }

    test::TestFolder folder;
    CFloorMap map;
    QSignalSpy changed{&map, &CFloorMap::changed};
    QSignalSpy failed{&map, &CFloorMap::failed};
};

TEST_F(FloorMapTest, LoadsInTheBackgroundAndSwapsIn) {
    const QString path = saved("floor.bmp", pattern(300, 200));
    map.load(path, QString());
    EXPECT_TRUE(map.loading());
    ASSERT_TRUE(changed.wait(10000));
    EXPECT_EQ(map.size(), QSize(300, 200));
    map.load(path, QString());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !map.loading(); }, 10000));
    EXPECT_EQ(changed.size(), 1) << "the same file, unchanged, is not read again";
    map.load(QString(), QString());
    EXPECT_EQ(map.size(), QSize(0, 0));
}

TEST_F(FloorMapTest, MissingAndDamagedFilesAreNamed) {
    map.loadNow(QStringLiteral("/nowhere/floor.bmp"));
    ASSERT_EQ(failed.size(), 1);
    EXPECT_EQ(failed[0][0].toString(), QStringLiteral("Floor map file /nowhere/floor.bmp does not exist!"));
    EXPECT_TRUE(failed[0][1].toBool());
    map.loadNow(written("text.bmp", "no picture at all"));
    ASSERT_EQ(failed.size(), 2);
    EXPECT_FALSE(failed[1][1].toBool());
    EXPECT_TRUE(failed[1][0].toString().contains(QStringLiteral("cannot be shown: ")));
}

TEST_F(FloorMapTest, ADamagedFileKeepsTheMapThatWasShown) {
    const QString path = saved("floor.bmp", pattern(300, 200));
    map.loadNow(path);
    written("floor.bmp", "overwritten by something else");
    map.loadNow(path);
    EXPECT_EQ(failed.size(), 1);
    EXPECT_EQ(map.size(), QSize(300, 200));
    saved("floor.bmp", pattern(400, 400));
    QFile(path).resize(5000);
    map.loadNow(path);
    EXPECT_EQ(failed.size(), 2) << "half a map";
    EXPECT_EQ(map.size(), QSize(300, 200));
    map.loadNow(written("chosen.bmp", "no picture"));
    EXPECT_EQ(map.size(), QSize(300, 200)) << "a bad choice of the user";
    map.loadNow(written("foreign.bmp", "no picture"), QStringLiteral("/other/site.mv"));
    EXPECT_EQ(map.size(), QSize(0, 0)) << "another site's map is not this one's";
    saved("floor.bmp", pattern(300, 200));
    map.loadNow(path);
    ASSERT_EQ(map.size(), QSize(300, 200));
    map.loadNow(QStringLiteral("/nowhere/other.bmp"));
    EXPECT_EQ(map.size(), QSize(0, 0)) << "a map that is not there";
}

/// A BMP file header for a picture of this size, with no pixels behind it.
std::string bmpHeader(std::int32_t width, std::int32_t height, std::int16_t depth) {
    std::string bytes("BM\0\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0", 18);
    const auto put = [&bytes](auto value) {
        bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
    };
    put(width);
    put(height);
    put(std::int16_t{1});
    put(depth);
    for (int i = 0; i < 6; ++i)
        put(std::int32_t{0});
    return bytes;
}

TEST_F(FloorMapTest, GiantBitmapsAreRefusedBeforeTheyTakeMemory) {
    const std::pair<int, const char*> tooLarge[] = {
        {20000, "it has 20000 x 20000 pixels, the limit is 268 million"},
        {16000, "it has 16000 x 16000 pixels, which take 976 MB of memory, the limit is 512 MB"}};
    for (const auto& [side, text] : tooLarge) {
        failed.clear();
        map.loadNow(written("giant" + std::to_string(side) + ".bmp", bmpHeader(side, side, 24)));
        ASSERT_EQ(failed.size(), 1);
        const std::string sentence = failed[0][0].toString().toStdString();
        EXPECT_NE(sentence.find(text), std::string::npos) << sentence;
    }
    failed.clear();
    for (const auto& [width, height] : {std::pair(INT32_MAX, INT32_MAX), std::pair(-5, 7), std::pair(0, 0)}) {
        map.loadNow(written("odd" + std::to_string(height) + ".bmp", bmpHeader(width, height, 32)));
        EXPECT_EQ(map.size(), QSize(0, 0));
    }
    EXPECT_EQ(failed.size(), 3);
}

TEST_F(FloorMapTest, MapIsFoundBesideTheDatafile) {
    saved("plan.bmp", pattern(10, 10));
    const QString datafile = QString::fromStdString(folder.file("site.mv"));
    const QString expected = QDir::cleanPath(QString::fromStdString(folder.file("plan.bmp")));
    EXPECT_EQ(locateMap(QStringLiteral("plan.bmp"), datafile), expected);
    EXPECT_EQ(locateMap(QStringLiteral("C:\\floors\\plan.bmp"), datafile), expected);
    EXPECT_EQ(locateMap(QStringLiteral("/elsewhere/plan.bmp"), datafile), expected);
    EXPECT_EQ(locateMap(QStringLiteral("/elsewhere/none.bmp"), datafile),
              QStringLiteral("/elsewhere/none.bmp"));
    EXPECT_EQ(locateMap(QString(), datafile), QString());
}

TEST_F(FloorMapTest, IconsThatCannotBeReadKeepTheirSlots) {
    CIconSet icons;
    EXPECT_EQ(icons.LoadIcons(QString::fromStdString(test::sourceFile("assets/icons"))), 37);
    const QImage before = icons.bitmap(DeviceType::Computer, DeviceState::On);
    QImage own(40, 20, QImage::Format_RGB32);
    own.fill(Qt::red);
    saved("RJ45Def.bmp", own);
    saved("LocationMarker.bmp", own);
    written("PCOn.bmp", "damaged");
    saved("PrinterOn.bmp", own);
    const QImage printer = icons.bitmap(DeviceType::Printer, DeviceState::On);
    QFile(QString::fromStdString(folder.file("PrinterOn.bmp"))).resize(200); // the copy was interrupted
    EXPECT_EQ(icons.LoadIcons(QString::fromStdString(folder.path())), 2);
    EXPECT_EQ(icons.sizes().of(DeviceType::Jack), QSize(40, 20));
    EXPECT_EQ(icons.sizes().of(DeviceType::LocationMarker), QSize(40, 20));
    EXPECT_EQ(icons.bitmap(DeviceType::Computer, DeviceState::On), before);
    EXPECT_EQ(icons.bitmap(DeviceType::Printer, DeviceState::On), printer);
    EXPECT_EQ(icons.stretched(DeviceType::Jack, DeviceState::Def, {80, 40}).pixelColor(3, 3),
              QColor(Qt::red));
    EXPECT_TRUE(icons.bitmap(14, 0).isNull());
    EXPECT_TRUE(icons.bitmap(DeviceType::Computer, 3).isNull());
    CIconSet fallback;
    EXPECT_EQ(fallback.loadWithFallback(QStringLiteral("/nowhere")), 0);
    EXPECT_FALSE(fallback.bitmap(DeviceType::Wireless, DeviceState::Off).isNull()) << "the project's own set";
}

} // namespace

} // namespace mirovane
