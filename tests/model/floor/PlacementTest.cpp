#include "model/floor/Placement.h"

#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane {

namespace {

using testing::ElementsAre;

TEST(PlacementTest, NewDevicesComeIntoTheMiddleOfWhatIsSeen) {
    struct Case {
        const char* what;
        FloorWindow window;
        MapPoint place;
    };
    const Case cases[] = {
        {"all of the map is in view", {{0, 0}, {800, 600}, {500, 401}, 100}, {250, 200}},
        {"exactly", {{0, 0}, {800, 600}, {800, 600}, 100}, {400, 300}},
        {"a part across, all along", {{300, 0}, {801, 600}, {2000, 500}, 100}, {700, 250}},
        {"zoomed in", {{301, 100}, {800, 600}, {500, 400}, 200}, {350, 200}},
        {"zoomed out", {{0, 0}, {800, 600}, {3000, 900}, 25}, {1500, 450}},
        {"no map", {{40, 0}, {800, 600}, {0, 0}, 100}, {440, 300}},
        {"hostile",
         {{INT_MAX, INT_MIN}, {800, 600}, {9000, 9000}, 100},
         {coordinateLimit, 300 - coordinateLimit}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(newDevicePlace(c.window), c.place) << c.what;
}

TEST(PlacementTest, ManyAtOnceLieInAGridAroundTheMiddle) {
    EXPECT_THAT(gridAround({100, 80}, 1, {40, 30}), ElementsAre(MapPoint{100, 80}));
    EXPECT_THAT(gridAround({100, 80}, 3, {40, 30}),
                ElementsAre(MapPoint{80, 65}, MapPoint{120, 65}, MapPoint{80, 95}));
    EXPECT_THAT(gridAround({5, 5}, 2, {40, 30}), ElementsAre(MapPoint{0, 5}, MapPoint{40, 5}))
        << "none comes to lie left of the floor";
    EXPECT_TRUE(gridAround({5, 5}, 0, {40, 30}).empty());
}

TEST(PlacementTest, ADraggedDeviceStaysOnTheFloor) {
    struct Case {
        const char* what;
        MapPoint place;
        FloorBounds bounds;
        MapPoint stays;
    };
    // The icon is 30 by 20.
    const Case cases[] = {
        {"inside", {10, 20}, {{1000, 800}, 100, 100}, {10, 20}},
        {"left and above", {-1, -5000}, {{1000, 800}, 100, 100}, {0, 0}},
        {"up to the edge", {970, 780}, {{1000, 800}, 100, 100}, {970, 780}},
        {"beyond it", {971, 5000}, {{1000, 800}, 100, 100}, {970, 780}},
        {"large icons end earlier", {941, 761}, {{1000, 800}, 100, 200}, {970, 780}},
        {"zoomed in", {486, 390}, {{1000, 800}, 200, 100}, {470, 390}},
        {"no floor at all", {7, 7}, {{0, 0}, 100, 100}, {0, 0}},
        {"hostile", {INT_MAX, INT_MIN}, {{1000, 800}, 100, 100}, {970, 0}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(onFloor(c.place, {30, 20}, c.bounds), c.stays) << c.what;
}

} // namespace

} // namespace mirovane
