#include "model/floor/Arrange.h"

#include <climits>
#include <gtest/gtest.h>
#include <map>

namespace mirovane {

namespace {

PlacedDevice device(std::int32_t id, MapPoint at, PixelSize size) {
    return {{id, 0}, at, size};
}

std::map<std::int32_t, std::int32_t> byID(const std::vector<DeviceMove>& moves, bool x) {
    std::map<std::int32_t, std::int32_t> places;
    for (const DeviceMove& move : moves)
        places[move.device.recID] = x ? move.to.x : move.to.y;
    return places;
}

TEST(ArrangeTest, EdgesCentresAndGapsComeInLine) {
    using Places = std::map<std::int32_t, std::int32_t>;
    const std::vector<PlacedDevice> devices = {device(1, {10, 100}, {20, 10}), device(2, {60, 20}, {40, 40}),
                                               device(3, {40, 70}, {20, 10})};
    struct Case {
        Arrangement arrangement;
        bool x;
        Places places; ///< of those that move
    };
    const Case cases[] = {
        {Arrangement::AlignLeft, true, {{2, 10}, {3, 10}}},
        {Arrangement::AlignRight, true, {{1, 80}, {3, 80}}},
        {Arrangement::AlignCentre, true, {{1, 45}, {2, 35}, {3, 45}}},
        {Arrangement::AlignTop, false, {{1, 20}, {3, 20}}},
        {Arrangement::AlignBottom, false, {{2, 70}, {3, 100}}},
        {Arrangement::AlignMiddle, false, {{1, 60}, {2, 45}, {3, 60}}},
        {Arrangement::DistributeHorizontally, true, {}},
        {Arrangement::DistributeVertically, false, {{3, 68}}},
    };
    for (const Case& c : cases) {
        const auto moves = arrange(c.arrangement, devices);
        EXPECT_EQ(byID(moves, c.x), c.places) << static_cast<int>(c.arrangement);
        for (const DeviceMove& move : moves) {
            const MapPoint before = devices[static_cast<std::size_t>(move.device.recID - 1)].at;
            EXPECT_EQ(c.x ? move.to.y : move.to.x, c.x ? before.y : before.x) << "the other axis";
        }
    }
    const std::vector<PlacedDevice> two(devices.begin(), devices.begin() + 2);
    EXPECT_TRUE(arrange(Arrangement::DistributeVertically, two).empty());
    const std::vector<PlacedDevice> far = {device(1, {INT_MIN, INT_MIN}, {20, 20}),
                                           device(2, {INT_MAX, INT_MAX}, {20, 20})};
    EXPECT_EQ(byID(arrange(Arrangement::AlignLeft, far), true)[2], -coordinateLimit);
}

TEST(ArrangeTest, ADraggedDeviceSnapsToTheNearestEdgeOrCentre) {
    const std::vector<PlacedDevice> neighbours = {device(1, {100, 100}, {40, 40}),
                                                  device(2, {300, 203}, {20, 20})};
    const Snap left = snap(device(9, {101, 200}, {30, 20}), neighbours, 4);
    EXPECT_EQ(left.by, (MapPoint{-1, 3})) << "the left edge of one, the top of the other";
    EXPECT_EQ(left.vertical, (AlignmentLine{{100, 100}, {100, 223}}));
    EXPECT_EQ(left.horizontal, (AlignmentLine{{100, 203}, {320, 203}}));

    const Snap centre = snap(device(9, {107, 10}, {30, 20}), neighbours, 4);
    EXPECT_EQ(centre.by, (MapPoint{-2, 0}))
        << "centre to centre, or right edge to right edge at the same way";
    EXPECT_FALSE(centre.horizontal);

    const Snap none = snap(device(9, {149, 149}, {30, 20}), neighbours, 4);
    EXPECT_EQ(none.by, MapPoint()) << "five pixels are too far";
    EXPECT_FALSE(none.vertical || none.horizontal);
    EXPECT_TRUE(snap(device(9, {100, 300}, {40, 40}), neighbours, 4).vertical)
        << "already there: the line shows it";
}

TEST(ArrangeTest, ReadingGoesRowByRow) {
    const auto order = inReadingOrder({device(1, {200, 12}, {32, 32}), device(2, {10, 400}, {32, 32}),
                                       device(3, {90, 0}, {32, 32}), device(4, {10, 8}, {32, 32}),
                                       device(5, {0, 16}, {32, 32})});
    std::vector<std::int32_t> ids;
    for (const PlacedDevice& placed : order)
        ids.push_back(placed.device.recID);
    EXPECT_EQ(ids, (std::vector<std::int32_t>{4, 3, 1, 5, 2})) << "half an icon lower begins the next row";
}

} // namespace

} // namespace mirovane
