#include "model/floor/MarkedArea.h"

#include <climits>
#include <gtest/gtest.h>

namespace mirovane {

namespace {

TEST(MarkedAreaTest, TakesPairsOfNumbers) {
    using Points = std::vector<MapPoint>;
    EXPECT_EQ(parseMarkedArea("10,20,30,40,"), (Points{{10, 20}, {30, 40}}));
    EXPECT_EQ(parseMarkedArea("10,20,30"), (Points{{10, 20}}));
    EXPECT_EQ(parseMarkedArea(" -5 ,x7,,8z,"), (Points{{-5, 0}, {0, 8}}));
    EXPECT_EQ(parseMarkedArea("99999999999,-99999999999"), (Points{{INT_MAX, -INT_MAX}}));
    EXPECT_TRUE(parseMarkedArea("").empty());
}

TEST(MarkedAreaTest, NeedsCornersAllAround) {
    const std::vector<MapPoint> square = {{0, 0}, {100, 0}, {100, 100}, {0, 100}};
    EXPECT_EQ(markedAreaScore(square, {50, 20}, 100), 200);
    EXPECT_FALSE(markedAreaScore(square, {-1, 50}, 100));
    EXPECT_TRUE(markedAreaScore(square, {190, 190}, 200));
    EXPECT_FALSE(markedAreaScore(square, {100, 100}, 100))
        << "a corner's own place counts as right of and below it";
}

} // namespace

} // namespace mirovane
