// Q1: one key of the quick find among 65,000 devices, against one memmem pass over the same bytes that stops
// once at each device that the text is in. Q2: Group by proximity with 10,000 devices, against the plain
// rule.

#include "bench/support/BigFloor.h"
#include "bench/support/PairedRounds.h"
#include "model/find/Proximity.h"
#include "model/find/QuickFind.h"

#include <cstdlib>
#include <cstring>
#include <random>

namespace {

using namespace mirovane;

constexpr std::int32_t allDevices = 65'000;
constexpr std::int32_t groupedDevices = 10'000;
constexpr std::size_t shownResults = 50;
constexpr double mostMilliseconds = 30;
constexpr double mostPasses = 2;
constexpr double mostGroupingSeconds = 2;

struct Floor {
    explicit Floor(std::int32_t devices) { bench::fillBigFloor(doc, devices); }

    CSystemClock clock;
    CMessageLog log{clock};
    CMirovaneDoc doc{clock, log, {"host", "user"}};
};

/// The least that any search must do: every byte is looked at, and in a device that was hit no further.
std::size_t plainPass(std::string_view block, std::string_view word) {
    std::size_t hits = 0;
    for (std::size_t at = findBytes(block, word); at != std::string_view::npos; ++hits) {
        const std::size_t end = findBytes(block, "\n\n", at);
        at = end == std::string_view::npos ? end : findBytes(block, word, end + 1);
    }
    return hits;
}

/// False when the two sides disagree about how many devices there are.
bool quickFindRow(CQuickFind& finder, const char* what, const char* typed, const std::string& word) {
    std::size_t ours = 0;
    std::size_t plain = 0;
    const auto result = bench::measurePaired([&] { ours = finder.find(typed, shownResults).total; },
                                             [&] { plain = plainPass(finder.block(), word); });
    bench::printRow("Q1", std::string(what) + " \"" + typed + "\": " + std::to_string(ours), result,
                    mostPasses);
    if (result.oursMs > mostMilliseconds)
        std::printf("Q1   | MISSED: more than %.0f ms\n", mostMilliseconds);
    return ours == plain;
}

/// Group by proximity as its rule is worded, on positions alone.
void plainGrouping(std::vector<MapPoint> points) {
    for (std::size_t i = 0; i + 2 < points.size(); ++i) {
        std::int64_t best = -1;
        for (std::size_t j = i + 1; j < points.size(); ++j) {
            const std::int64_t found = (std::abs(std::int64_t{points[i].x} - points[j].x) +
                                        std::abs(std::int64_t{points[i].y} - points[j].y)) /
                                       2;
            if (best >= 0 && found >= best)
                continue;
            best = found;
            std::swap(points[i + 1], points[j]);
        }
    }
}

void groupingRow() {
    Floor floor(groupedDevices);
    std::mt19937 random(5);
    std::vector<MapPoint> points;
    for (std::int32_t recID = 1; recID <= groupedDevices; ++recID) {
        points.push_back(
            {static_cast<std::int32_t>(random() % 4000), static_cast<std::int32_t>(random() % 2500)});
        floor.doc.edit(*floor.doc.findDevice(recID),
                       [&](CHardware& device) { device.Position = points.back(); });
    }
    // Once: what is grouped already is another question.
    const double whole = bench::millisecondsOf([&] { groupByProximity(floor.doc); });
    std::printf("Q2   | whole list of %d devices in the document: %.1f ms, goal %.0f ms: %s\n",
                groupedDevices, whole, 1000 * mostGroupingSeconds,
                whole <= 1000 * mostGroupingSeconds ? "ok" : "MISSED");
    std::vector<ProximityRecord> records;
    for (const MapPoint point : points)
        records.push_back({DeviceType::Computer, point});
    const auto result =
        bench::measurePaired([&] { proximityOrder(records); }, [&] { plainGrouping(points); });
    bench::printRow("Q2", "order of 10,000 against the rule on bare points", result, 1);
}

} // namespace

int main() {
    bench::printHeader();
    Floor floor(allDevices);
    CQuickFind finder(floor.doc);
    const double prepared = bench::millisecondsOf([&] { finder.prepare(); });
    std::printf("Q1   | texts of %d devices (%.1f MB) made once: %.1f ms\n", allDevices,
                static_cast<double>(finder.block().size()) / 1e6, prepared);
    bool same = quickFindRow(finder, "one device", "ws-54321-hq", "WS-54321-HQ");
    same = quickFindRow(finder, "part of a user", "user2345", "USER2345") && same;
    same = quickFindRow(finder, "in no device", "nowhere", "NOWHERE") && same;
    same = quickFindRow(finder, "in every device", "w", "W") && same;
    same = quickFindRow(finder, "in many devices", "12", "12") && same;
    quickFindRow(finder, "MAC address", "02-00-00-03-4", "020000034");
    groupingRow();
    if (!same)
        std::puts("Q1   | the two sides found different numbers of devices");
    return same ? EXIT_SUCCESS : EXIT_FAILURE;
}
