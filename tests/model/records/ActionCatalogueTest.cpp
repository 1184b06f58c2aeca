#include "model/records/ActionCatalogue.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace mirovane {
namespace {

/// Every action that a row offers is explained for that kind of row, and no other one is.
TEST(ActionCatalogueTest, ExplainsExactlyWhatTheRowsOffer) {
    for (const ActionEntry& entry : actionCatalogue()) {
        const auto offeredIn = [&entry](int row) {
            const auto actions = actionsForRow(DeviceType::Jack, row);
            return std::ranges::find(actions, entry.name) != actions.end();
        };
        const bool explained = entry.name != Action::DoNothing;
        EXPECT_EQ(!entry.testExample.empty(), offeredIn(0) && explained) << entry.name;
        EXPECT_EQ(!entry.fieldExample.empty(), offeredIn(1) && explained) << entry.name;
        EXPECT_EQ(!entry.argumentSyntax.empty(), entry.inputs.Argument) << entry.name;
        EXPECT_EQ(entry.inputs.Condition, explained) << entry.name;
    }
    EXPECT_EQ(actionEntry("an action of tomorrow").name, Action::DoNothing);
}

TEST(ActionCatalogueTest, AJackChoosesActionsForThreeRowsOnly) {
    std::string jack, computer;
    for (int row = 0; row < criteriaRowCount; ++row) {
        jack += actionChoosable(1001, row) ? 'x' : '-';
        computer += actionChoosable(DeviceType::Computer, row) ? 'x' : '-';
    }
    EXPECT_EQ(jack, "x----xx-----");
    EXPECT_EQ(computer, "xxxxxxxxxxxx");
    EXPECT_EQ(conditionsForRow(0).back(), "Off");
    EXPECT_EQ(conditionsForRow(1).back(), "On/Off");
}

} // namespace
} // namespace mirovane
