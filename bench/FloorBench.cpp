// Rows D1 to D5 and G1: frames of 1920 x 1080 drawn into an image, against a painter that keeps nothing.
// Equal pixels are checked before time is taken. Painting waits for nothing: its time is the processor's.
// usage: FloorBench [later|first|map|elsewhere|drag|zoom|hover|select]

#include "bench/support/PairedRounds.h"
#include "model/Document.h"
#include "model/Selection.h"
#include "model/floor/SelectionCommands.h"
#include "platform/files/PosixFiles.h"
#include "tests/ui/floor/paint/PlainPainter.h"
#include "ui/floor/FloorHover.h"
#include "ui/floor/geometry/FloorIndex.h"
#include "ui/floor/map/MapTiles.h"
#include "ui/floor/paint/FloorFrame.h"
#include "ui/floor/paint/IconSet.h"
#include "ui/floor/paint/PhotoStore.h"

#include <QGuiApplication>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <type_traits>

namespace {

using namespace mirovane;

constexpr QSize window(1920, 1080);
constexpr QSize mapSize(2600, 1700);

QImage drawnMap() {
    QImage map(mapSize, QImage::Format_RGB32);
    map.fill(Qt::white);
    QPainter painter(&map);
    painter.setPen(QPen(Qt::darkGray, 3));
    for (int x = 40; x < map.width(); x += 170)
        for (int y = 40; y < map.height(); y += 130)
            painter.drawRect(x, y, 150, 110);
    return map;
}

void require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "FloorBench: %s\n", what);
    std::exit(1);
}

/// A side may return its own measure.
template <typename Side>
double painted(Side& side) {
    if constexpr (std::is_same_v<decltype(side()), double>)
        return side();
    else
        return bench::processorMillisecondsOf(side);
}

template <typename Ours, typename Other>
bench::RatioResult painting(Ours&& ours, Other&& other, std::size_t rounds) {
    return bench::measurePaired([&ours] { return painted(ours); }, [&other] { return painted(other); },
                                rounds);
}

/// `seen` devices spread over the map, `elsewhere` more far beside it.
struct Site {
    Site(int seen, int elsewhere) {
        icons.loadWithFallback(QStringLiteral("/nowhere"));
        require(!icons.bitmap(1, 0).isNull(), "no icons");
        CHardware mapRecord;
        mapRecord.Type = SpecialType::FloorMapRecord;
        mapRecord.Name = "map.bmp";
        doc.append(mapRecord);
        std::mt19937 random(1);
        const auto below = [&random](int limit) {
            return static_cast<int>(random() % static_cast<unsigned>(limit));
        };
        for (int i = 0; i < seen + elsewhere; ++i) {
            const bool visible = i < seen;
            doc.addDevice(1 + below(12), [&](CHardware& d) {
                d.Position = visible ? MapPoint{below(window.width() - 80), below(window.height() - 80)}
                                     : MapPoint{10000 + below(40000), below(40000)};
                d.State = below(3);
                d.Name = "workstation-" + std::to_string(i);
                d.IPAddress = "10.0." + std::to_string(i / 250) + "." + std::to_string(i % 250);
            });
        }
        display.PropertiesComputer = display.PropertiesIPAddress = true;
        display.PropertiesUsername = false;
        tiles.setPicture(picture);
        state.view.client = window;
    }

    FloorSources sources() { return {doc, display, index, icons, tiles, photos}; }

    void zoom(std::int32_t percent) { state.view.zoom = {percent, percent}; }

    CSystemClock clock;
    CPosixFiles files;
    CMessageLog log{clock};
    CMemorySettingsStore store;
    CSettings settings{store};
    DisplaySettings display;
    CMirovaneDoc doc{clock, log, {"bench", "bench"}};
    CFloorIndex index{doc};
    CIconSet icons;
    QImage map = drawnMap();
    std::shared_ptr<const CMapPicture> picture = std::make_shared<const CMapPicture>(map);
    CMapTiles tiles;
    CPhotoStore photos{CPhotoStore::Reading::Now};
    FloorViewState state;
};

void scrollTo(Site& site, int step) {
    site.state.view.origin = QPoint(step % 37, (step * 7) % 23);
}

void benchLaterFrames(int devices, double goal) {
    Site site(devices, 0);
    CFloorFrame frame(site.sources());
    test::PlainPainter plain(site.doc, site.display, site.icons, site.map);
    QImage canvas(window, QImage::Format_RGB32);
    frame.setState(site.state);
    frame.image();
    for (int step = 0; step < 3; ++step) {
        scrollTo(site, step);
        frame.setState(site.state);
        plain.draw(canvas, site.state);
        require(frame.image() == canvas, "kept and plain frames differ");
    }
    int step = 0;
    const auto ours = [&] {
        scrollTo(site, ++step);
        frame.setState(site.state);
        frame.image();
    };
    plain.seams = false;
    const auto other = [&] {
        scrollTo(site, ++step);
        plain.draw(canvas, site.state);
    };
    const std::string what = std::to_string(devices) + " devices, ";
    bench::printRow("D1", what + "scroll", painting(ours, other, 11), goal);

    std::size_t place = 1;
    const auto hover = [&] {
        site.doc.setShowAll(site.doc.at(place), false);
        place = 1 + place % static_cast<std::size_t>(devices);
        site.doc.setShowAll(site.doc.at(place), true);
        frame.invalidate(site.doc.at(place));
        frame.invalidate(site.doc.at(place == 1 ? static_cast<std::size_t>(devices) : place - 1));
        frame.image();
    };
    bench::printRow("D1", what + "hover", painting(hover, other, 11), goal);
    const auto drag = [&] {
        const CHardware& device = site.doc.at(5);
        frame.invalidate(device);
        site.doc.edit(device, [](CHardware& d) { d.Position.x = (d.Position.x + 9) % 1800; });
        frame.invalidate(device);
        frame.image();
    };
    bench::printRow("D1", what + "drag", painting(drag, other, 11), goal);
    site.doc.setShowAll(site.doc.at(place), false);
    const auto unchanged = [&] {
        QPainter painter(&canvas);
        painter.drawImage(0, 0, frame.image());
    };
    bench::printRow("D3", what + "nothing changed", painting(unchanged, other, 11), 0.10);
}

/// Nothing is kept from the frame before: other glyphs, other icons, another map.
void benchFirstFrame(int devices, std::int32_t percent) {
    Site site(devices, 0);
    site.zoom(percent);
    test::PlainPainter plain(site.doc, site.display, site.icons, site.map);
    QImage canvas(window, QImage::Format_RGB32);
    if (percent == 100) {
        CFloorFrame frame(site.sources());
        frame.setState(site.state);
        plain.draw(canvas, site.state);
        require(frame.image() == canvas, "first and plain frames differ");
    }
    plain.seams = false;
    CFloorFrame frame(site.sources());
    FloorViewState before = site.state; // the window is there already, with another zoom
    before.view.zoom = {percent + 10, percent + 10};
    ++before.view.LabelFontHeight;
    const auto ours = [&] {
        frame.setState(before);
        frame.image();
        site.tiles.setPicture(site.picture);
        site.icons.loadWithFallback(QStringLiteral("/nowhere"));
        return bench::processorMillisecondsOf([&] {
            frame.setState(site.state);
            frame.image();
        });
    };
    const auto other = [&] {
        plain.draw(canvas, site.state);
    };
    bench::printRow("D2", std::to_string(devices) + " devices, " + std::to_string(percent) + " %",
                    painting(ours, other, 11), devices > 1000 ? 0.5 : 0.9);
}

void benchMap(std::int32_t percent) {
    CMapTiles tiles;
    tiles.setPicture(std::make_shared<const CMapPicture>(drawnMap()));
    QImage canvas(window, QImage::Format_RGB32);
    QImage copy(window, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    int step = 0;
    const auto ours = [&] {
        ++step;
        const QPoint origin(-(step % 40), -(step % 30));
        QPainter painter(&canvas);
        tiles.draw(painter, canvas.rect(), {origin, mapSize * (percent / 100.0), percent / 100.0});
    };
    // A smaller zoom covers less than the frame; it is measured against the whole frame's copy all the same.
    const auto other = [&] {
        std::memcpy(copy.bits(), std::as_const(canvas).constBits(),
                    static_cast<std::size_t>(canvas.sizeInBytes()));
    };
    for (int round = 0; round < 40; ++round)
        ours();
    bench::printRow("D4", "map at " + std::to_string(percent) + " %, scroll", painting(ours, other, 21), 2.5);
}

void benchManyElsewhere() {
    Site large(1000, 64000);
    Site small(1000, 0);
    CFloorFrame largeFrame(large.sources());
    CFloorFrame smallFrame(small.sources());
    int step = 0;
    const auto frameOf = [&step](Site& site, CFloorFrame& frame) {
        scrollTo(site, ++step);
        frame.setState(site.state);
        frame.image();
    };
    step = 0;
    frameOf(large, largeFrame);
    step = 0;
    frameOf(small, smallFrame);
    require(largeFrame.image() == smallFrame.image(), "devices elsewhere change the frame");
    bench::printRow("D5", "1000 seen of 65000, scroll",
                    painting([&] { frameOf(large, largeFrame); }, [&] { frameOf(small, smallFrame); }, 21),
                    1.35);
}

/// The other side of a row whose limit is a time: what the eye allows.
auto limit(double milliseconds) {
    return [milliseconds] {
        return milliseconds;
    };
}

void benchDrag() {
    Site site(10000, 0);
    for (int i = 1; i <= 1000; ++i)
        site.doc.setSelected(site.doc.at(static_cast<std::size_t>(i * 10)), true);
    site.state.gesture.LabelsShown = false;
    CFloorFrame frame(site.sources());
    frame.setState(site.state);
    frame.image();
    int by = 1;
    const auto drag = [&] {
        by = -by;
        for (int i = 1; i <= 1000; ++i) {
            const CHardware& device = site.doc.at(static_cast<std::size_t>(i * 10));
            frame.invalidate(device);
            site.doc.edit(device, [by](CHardware& d) { d.Position.x += 5 * by; });
        }
        frame.image();
    };
    double slowest = 0;
    const auto noted = [&] {
        const double time = painted(drag);
        slowest = std::max(slowest, time);
        return time;
    };
    bench::printRow("G1", "drag 1000 of 10000", painting(noted, limit(16), 41), 1.0);
    bench::printRow("G1", "drag 1000 of 10000, slowest of 42 frames", {slowest, 50, slowest / 50}, 1.0);
}

void benchZoomStep() {
    Site site(1000, 0);
    site.tiles.setPicture(std::make_shared<const CMapPicture>(drawnMap().scaled(4000, 3000)));
    CFloorFrame frame(site.sources());
    std::int32_t percent = 40;
    const auto zoom = [&] {
        percent = percent >= 240 ? 40 : percent + 10;
        site.zoom(percent);
        frame.setState(site.state);
        frame.image();
    };
    bench::printRow("G1", "zoom step, map 4000 x 3000", painting(zoom, limit(33), 41), 1.0);
}

void benchHoverTest() {
    Site site(65000, 0);
    CSelection selection(site.doc);
    const CFloorHover hover(selection, site.index, site.icons.sizes(), site.display, site.state.view);
    int at = 0;
    const auto hundred = [&] {
        for (int i = 0; i < 100; ++i) {
            at = (at + 37) % 1000;
            require(hover.hitsAt({at, at}).size() < 65000, "everything is hit");
        }
    };
    bench::printRow("G1", "100 hover tests of 65000", painting(hundred, limit(10), 21), 1.0);
}

/// As the floor's view does.
class Following final : public DocumentObserver {
public:
    Following(CMirovaneDoc& document, CFloorFrame& frame) : document_(document), frame_(frame) {
        document_.addObserver(*this);
    }
    ~Following() override { document_.removeObserver(*this); }
    void flagsChanged(const CHardware& record) override { frame_.invalidate(record); }

private:
    CMirovaneDoc& document_;
    CFloorFrame& frame_;
};

void benchSelectAll() {
    Site site(1000, 64000);
    CFloorFrame frame(site.sources());
    const Following following(site.doc, frame);
    CSelection selection(site.doc);
    const SelectionScene scene{site.doc, site.display, std::nullopt, 0, false};
    frame.setState(site.state);
    const auto all = [&] {
        selection.none(CSelection::Scope::Floor);
        frame.image();
        return bench::processorMillisecondsOf([&] {
            const SelectionOutcome outcome = select({}, false, selection, scene);
            require(outcome.count == 65000, "not all are selected");
            frame.image();
        });
    };
    bench::printRow("G1", "Select All of 65000, with its frame", painting(all, limit(50), 21), 1.0);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    bench::printHeader();
    const std::string only = argc > 1 ? argv[1] : "";
    const auto wanted = [&only](const char* rows) {
        return only.empty() || only == rows;
    };
    if (wanted("later")) {
        benchLaterFrames(1000, 0.15);
        benchLaterFrames(10000, 0.08);
    }
    if (wanted("first")) {
        for (const std::int32_t percent : {100, 50, 150, 300})
            benchFirstFrame(1000, percent);
        benchFirstFrame(10000, 100);
    }
    if (wanted("map"))
        for (const std::int32_t percent : {33, 75, 100, 110, 150, 300, 1000})
            benchMap(percent);
    if (wanted("elsewhere"))
        benchManyElsewhere();
    if (wanted("drag"))
        benchDrag();
    if (wanted("zoom"))
        benchZoomStep();
    if (wanted("hover"))
        benchHoverTest();
    if (wanted("select"))
        benchSelectAll();
    return 0;
}
