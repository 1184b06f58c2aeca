#include "livestat/steps/Engine.h"

#include "tests/livestat/steps/ActionFixture.h"

namespace mirovane {

namespace {

using EngineTest = test::ActionFixture;

TEST_F(EngineTest, TheConditionSaysWhatAMatchMeans) {
    input.row = 0;
    for (const auto& [condition, match, noMatch] :
         {std::tuple("On", DeviceState::On, DeviceState::Off), {"Off", DeviceState::Off, DeviceState::On}}) {
        input.criteria.Condition = condition;
        const StepOutcome outcome = run(Action::Ping, "x");
        EXPECT_EQ(outcome.stateIfMatch, match);
        EXPECT_EQ(outcome.stateIfNoMatch, noMatch);
    }
}

TEST_F(EngineTest, FieldRulesRunOnlyInTheStateTheyAreFor) {
    struct Case {
        const char* condition;
        std::int32_t state;
        bool runs;
    };
    const Case cases[] = {{"On", 1, true},   {"On", 2, false},    {"On", 0, false},    {"Off", 2, true},
                          {"Off", 1, false}, {"On/Off", 0, true}, {"On/Off", 1, true}, {"On/Off", 2, true}};
    for (const Case& c : cases) {
        input.device.State = c.state;
        input.criteria.Condition = c.condition;
        EXPECT_EQ(run(Action::SetValue, "v").acted, c.runs) << c.condition << c.state;
        EXPECT_TRUE(run(Action::MatchToJack, "").acted) << "decides a state, so it always runs";
        input.row = 0;
        EXPECT_TRUE(run(Action::SetValue, "v").acted) << "so does what tests the state";
        input.row = 6;
    }
}

TEST_F(EngineTest, AValueThatNamesItsOwnFieldStopsGrowing) {
    input.device.Comment = "x";
    for (int pass = 0; pass < 20; ++pass)
        input.device.Comment = run(Action::SetValue, "$mvC $mvC").result;
    EXPECT_EQ(input.device.Comment.size(), 60'000U);
}

TEST_F(EngineTest, RowsThatCountHaveAnActionAndAFieldThatMayBeWritten) {
    CHardware device;
    device.ToJack = "J1>>";
    const auto counts = [&device](int row, std::string_view command) {
        CriteriaRow criteria;
        criteria.Command = command;
        return rowCounts(device, row, criteria);
    };
    EXPECT_FALSE(counts(5, Action::SetValue));
    EXPECT_TRUE(counts(6, Action::SetValue));
    for (const auto command : {Action::Ping, Action::NsLookup, Action::NsLookupReverse, Action::MatchToJack,
                               Action::SearchInTextFile, Action::SearchForFile, Action::Registry,
                               Action::SnmpGet, Action::WhosLogon})
        EXPECT_TRUE(counts(0, command)) << command;
    // Edited by hand: spelled exactly, or nothing is done.
    for (const char* unknown : {"", "Do Nothing", "ping", "Ping ", "Reboot"}) {
        EXPECT_FALSE(counts(0, unknown)) << unknown;
        EXPECT_EQ(shown(run(unknown, "x")), "nothing") << unknown;
    }
}

} // namespace

} // namespace mirovane
