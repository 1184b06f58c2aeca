#include "ui/floor/geometry/PrintPlan.h"

#include <gtest/gtest.h>

namespace mirovane {

namespace {

TEST(PrintPlanTest, FactorFollowsTheLargerSideOfThePage) {
    for (const auto& [page, factor] :
         {std::pair(QSize(2480, 3508), 3), std::pair(QSize(7016, 4961), 7), std::pair(QSize(999, 999), 1)})
        EXPECT_EQ(printFactor(page), factor) << page.width();
}

TEST(PrintPlanTest, ZoomsAndLabelsGrowWithTheFactor) {
    const ZoomState screen{100, 50, 2, 12, true, true};
    const ZoomState small = printZoom(screen, {2480, 3508});
    EXPECT_EQ(small.ZoomPercent, 300);
    EXPECT_EQ(small.ZoomDevicesPercent, 150);
    EXPECT_EQ(small.LabelFontHeight, 2 + 3 * 5 + 16);
    const ZoomState large = printZoom(screen, {4961, 8016});
    EXPECT_EQ(large.ZoomPercent, 800);
    EXPECT_EQ(large.LabelFontHeight, 2 + 8 * 7 + 32);
}

TEST(PrintPlanTest, PagesAreTilesFromLeftToRightAndTopToBottom) {
    const ZoomState zoom{300, 300, 0, 30, true, true};
    const PrintPlan plan = planPrint(zoom, {1000, 1400}, {2500, 1500}, std::nullopt);
    EXPECT_EQ(plan.pages(), 6);
    EXPECT_EQ(plan.view(4).origin, QPoint(1000, 1400));
    EXPECT_EQ(plan.view(4).client, QSize(1000, 100)) << "the last row ends with the floor";
    EXPECT_EQ(plan.view(2).client, QSize(500, 1400));
    EXPECT_TRUE(plan.view(0).shows({-5000, 9999})) << "its labels may reach in";
    EXPECT_EQ(planPrint(zoom, {1000, 1500}, {1000, 1500}, std::nullopt).pages(), 1);
    EXPECT_EQ(planPrint(zoom, {1000, 1500}, {0, 0}, std::nullopt).pages(), 1) << "an empty floor";
}

TEST(PrintPlanTest, BoxStartsAtThePagesCornerAndLimitsTheDevices) {
    const ZoomState zoom{300, 300, 0, 30, true, true};
    const PrintPlan plan = planPrint(zoom, {1000, 1000}, {9000, 9000}, MapBox{{500, 150}, {100, 50}});
    EXPECT_EQ(plan.pages(), 2);
    EXPECT_EQ(plan.view(0).origin, QPoint(300, 150));
    EXPECT_EQ(plan.view(1).client, QSize(200, 300));
    EXPECT_TRUE(plan.view(1).shows({101, 149}));
    EXPECT_FALSE(plan.view(1).shows({100, 100})) << "on the edge is not inside";
}

} // namespace

} // namespace mirovane
