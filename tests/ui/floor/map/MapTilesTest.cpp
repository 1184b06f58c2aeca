#include "ui/floor/map/MapTiles.h"

#include "tests/support/Paths.h"
#include "tests/support/TestFolder.h"
#include "tests/ui/floor/FloorFixture.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>

#include <cstring>

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
    map.loadNow(written("giant.bmp", bmpHeader(30000, 20000, 24)));
    ASSERT_EQ(failed.size(), 1);
    const std::string sentence = failed[0][0].toString().toStdString();
    EXPECT_NE(sentence.find("it has 30000 x 20000 pixels, the limit is 500 million"), std::string::npos)
        << sentence;
    failed.clear();
    for (const auto& [width, height] : {std::pair(INT32_MAX, INT32_MAX), std::pair(-5, 7), std::pair(0, 0)}) {
        map.loadNow(written("odd" + std::to_string(height) + ".bmp", bmpHeader(width, height, 32)));
        EXPECT_EQ(map.size(), QSize(0, 0));
    }
    EXPECT_EQ(failed.size(), 3);
}

TEST_F(FloorMapTest, LargeBitmapsAreReadIntoAFileWithoutAName) {
    qputenv("XDG_CACHE_HOME", QByteArray::fromStdString(folder.file("cache")));
    const auto write = [this](const char* name, int width, int height, std::int16_t depth) {
        std::string head = bmpHeader(width, height, depth);
        const std::size_t lineBytes =
            (static_cast<std::size_t>(width) * static_cast<std::size_t>(depth) + 31) / 32 * 4;
        if (depth <= 8)
            head +=
                std::string("\xFF\xFF\xFF\0\x10\x20\x30\0", 8) + std::string(4 * ((1 << depth) - 2), '\0');
        const auto offset = static_cast<std::uint32_t>(head.size());
        std::memcpy(head.data() + 10, &offset, sizeof offset);
        const QString path = written(name, head);
        EXPECT_TRUE(QFile(path).resize(
            static_cast<qint64>(head.size() + lineBytes * static_cast<std::size_t>(height))));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadWrite));
        file.seek(static_cast<qint64>(head.size()));
        file.write(depth == 24 ? "\x30\x20\x10" : depth == 8 ? "\x01" : "\x80");
        return path;
    };
    for (const auto& [size, depth] : {std::pair(QSize(20000, 20000), 1), std::pair(QSize(9000, 8000), 8),
                                      std::pair(QSize(4100, 4100), 24)}) {
        map.loadNow(write("large.bmp", size.width(), size.height(), static_cast<std::int16_t>(depth)));
        ASSERT_EQ(map.size(), size) << (failed.empty() ? "" : failed[0][0].toString().toStdString());
        const QImage& bitmap = map.tiles().picture()->bitmap();
        EXPECT_EQ(bitmap.pixelColor(0, size.height() - 1),
                  depth == 24 ? QColor(0x10, 0x20, 0x30) : QColor(0x30, 0x20, 0x10));
        EXPECT_EQ(bitmap.pixelColor(1, size.height() - 1),
                  depth == 24 ? QColor(Qt::black) : QColor(Qt::white));
    }
    EXPECT_TRUE(QDir(QString::fromStdString(folder.file("cache"))).isEmpty()) << "nothing stays behind";
    qunsetenv("XDG_CACHE_HOME");
}

TEST_F(FloorMapTest, PicturesOfEveryKindAreShown) {
    QImage half(300, 200, QImage::Format_ARGB32);
    half.fill(QColor(255, 0, 0, 128));
    for (const char* name : {"floor.png", "floor.jpg", "floor.bmp"}) {
        map.loadNow(saved(name, half));
        EXPECT_EQ(map.size(), QSize(300, 200)) << name;
    }
    map.loadNow(saved("floor.png", half));
    EXPECT_EQ(map.tiles().picture()->bitmap().pixelColor(5, 5), QColor(255, 127, 127)) << "on white paper";

    map.loadNow(written("floor.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='300' height='200'>"
                                     "<rect x='100' y='0' width='100' height='200'/></svg>"));
    ASSERT_EQ(map.size(), QSize(300, 200));
    const QImage large = drawn(map.tiles(), {40, 10}, {-380, 0}, 4.0);
    EXPECT_EQ(large.pixelColor(19, 5), QColor(Qt::white));
    EXPECT_EQ(large.pixelColor(20, 5), QColor(Qt::black)) << "an edge is an edge at every zoom";
    EXPECT_EQ(failed.size(), 0);
}

TEST_F(FloorMapTest, DamagedPicturesOfEveryKindAreNamed) {
    const QString photo = saved("floor.jpg", pattern(900, 700));
    QFile(photo).resize(QFileInfo(photo).size() / 2);
    const QString picture = saved("floor.png", pattern(900, 700));
    QFile(picture).resize(QFileInfo(picture).size() / 2);
    const QString drawing = written("floor.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='300'");
    const QString endless =
        written("huge.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='99999' height='5'/>");
    for (const QString& path : {photo, picture, drawing, endless}) {
        failed.clear();
        const QString problem = readMap({path, {}, {}}).problem;
        EXPECT_TRUE(problem.contains(QStringLiteral("cannot be shown: "))) << path.toStdString();
        EXPECT_TRUE(problem.contains(path));
    }
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
