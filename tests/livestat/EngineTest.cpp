#include "livestat/Engine.h"

#include "livestat/Actions.h"
#include "probes/HostAddress.h"
#include "tests/support/ScriptedProbes.h"

#include <gtest/gtest.h>

namespace mirovane {

namespace {

using Tokens = std::vector<std::string>;

class EngineTest : public testing::Test {
protected:
    test::ScriptedProbes probes;
    StepInput input;

    StepOutcome run(std::string_view command, const std::string& argument, int row = 0,
                    const std::string& condition = "On") {
        input.row = row;
        input.criteria.Command = command;
        input.criteria.Argument = argument;
        input.criteria.Condition = condition;
        return runStep(input, probes);
    }
};

TEST(ArgumentTokensTest, BlanksSplitAndQuotesGroup) {
    EXPECT_EQ(argumentTokens(" pc1  10.0.0.5 "), (Tokens{"pc1", "10.0.0.5"}));
    EXPECT_EQ(argumentTokens("\"a b\" c\"d e\"f \"\" \"open end"), (Tokens{"a b", "cd ef", "open end"}));
    EXPECT_EQ(argumentTokens(""), Tokens{});
}

TEST_F(EngineTest, PingTriesTheHostsInOrderUntilOneAnswers) {
    input.device.IPAddress = "127.0.0.5";
    probes.answer("127.0.0.5");
    probes.answer("third");
    EXPECT_FALSE(run(Action::Ping, "$mvN $mvI").failed);
    EXPECT_EQ(probes.pinged(), Tokens{"127.0.0.5"});

    input.device.Name = "pc1";
    const StepOutcome outcome = run(Action::Ping, "$mvN $mvI third");
    EXPECT_TRUE(outcome.acted);
    EXPECT_FALSE(outcome.failed);
    EXPECT_EQ(probes.pinged(), (Tokens{"127.0.0.5", "pc1", "127.0.0.5"}));
}

TEST_F(EngineTest, SilentHostsAndAnEmptyArgumentAreOrdinaryFailures) {
    for (const char* argument : {"", "nobody", "a b"}) {
        const StepOutcome outcome = run(Action::Ping, argument);
        EXPECT_TRUE(outcome.acted && outcome.failed && !outcome.cancelled) << argument;
    }
}

TEST_F(EngineTest, ConditionSaysWhatAMatchMeans) {
    EXPECT_EQ(run(Action::Ping, "x").stateIfMatch, DeviceState::On);
    EXPECT_EQ(run(Action::Ping, "x").stateIfNoMatch, DeviceState::Off);
    EXPECT_EQ(run(Action::Ping, "x", 0, "Off").stateIfMatch, DeviceState::Off);
    EXPECT_EQ(run(Action::Ping, "x", 0, "Off").stateIfNoMatch, DeviceState::On);
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
        EXPECT_EQ(run(Action::SetValue, "v", 6, c.condition).acted, c.runs) << c.condition << c.state;
    }
    input.device.State = DeviceState::Off;
    EXPECT_TRUE(run(Action::MatchToJack, "", 6, "On").acted); // decides a state: always runs
}

TEST_F(EngineTest, LookUpsProcessEveryTokenAndTheLastDecides) {
    probes.name("pc1", *parseDottedAddress("127.0.0.7"));
    probes.reverse("127.0.0.7", "pc1.example");
    input.device.IPAddress = "kept";
    input.device.State = DeviceState::On;

    EXPECT_EQ(run(Action::NsLookup, "nobody pc1", 2).result, "127.0.0.7");
    EXPECT_TRUE(run(Action::NsLookup, "pc1 nobody", 2).failed);
    EXPECT_EQ(run(Action::NsLookup, "pc1 nobody", 2).result, "");
    EXPECT_TRUE(run(Action::NsLookup, "127.0.0.7", 2).failed); // an address is not looked up forward
    EXPECT_EQ(run(Action::NsLookup, "", 2).result, "kept");
    EXPECT_FALSE(run(Action::NsLookup, "", 2).failed);

    EXPECT_EQ(run(Action::NsLookupReverse, "127.0.0.7", 1).result, "pc1.example");
    EXPECT_TRUE(run(Action::NsLookupReverse, "pc1", 1).failed);
    EXPECT_TRUE(run(Action::NsLookupReverse, "127.0.0.8", 1).failed);
}

TEST_F(EngineTest, AValueThatNamesItsOwnFieldStopsGrowing) {
    input.device.Comment = "x";
    for (int pass = 0; pass < 20; ++pass)
        input.device.Comment = run(Action::SetValue, "$mvC $mvC", 6, "On/Off").result;
    EXPECT_EQ(input.device.Comment.size(), 60'000U);
}

TEST_F(EngineTest, AJackShowsTheStateOfWhatIsPluggedIn) {
    input.matchedState = DeviceState::Off;
    EXPECT_EQ(run(Action::MatchToJack, "").stateIfMatch, DeviceState::Off);
    EXPECT_FALSE(run(Action::MatchToJack, "").failed);
    input.matchedState.reset();
    EXPECT_TRUE(run(Action::MatchToJack, "").failed);
    EXPECT_EQ(run(Action::MatchToJack, "").stateIfNoMatch, DeviceState::Def);
}

TEST_F(EngineTest, WhatIsNoActionDoesNothing) {
    input.device.State = DeviceState::On;
    for (const char* command : {"", "Do Nothing", "set value", "Reboot"})
        EXPECT_FALSE(run(command, "x", 1).acted) << command;
}

TEST_F(EngineTest, AStoppedStepSaysThatItKnowsNothing) {
    std::stop_source stop;
    input.stop = stop.get_token();
    stop.request_stop();
    probes.answer("pc1");
    const StepOutcome outcome = run(Action::Ping, "pc1");
    EXPECT_TRUE(outcome.cancelled);
    EXPECT_FALSE(outcome.acted);
    EXPECT_TRUE(probes.pinged().empty());
}

TEST_F(EngineTest, RowsThatCountHaveAnActionAndAFieldThatMayBeWritten) {
    CHardware device;
    device.ToJack = "J1>>";
    const auto counts = [&device](int row, std::string_view command) {
        CriteriaRow criteria;
        criteria.Command = command;
        return rowCounts(device, row, criteria);
    };
    EXPECT_TRUE(counts(0, Action::Ping));
    EXPECT_FALSE(counts(0, Action::DoNothing));
    EXPECT_FALSE(counts(5, Action::SetValue));
    EXPECT_TRUE(counts(6, Action::SetValue));
    for (const auto command : {Action::SearchInTextFile, Action::SearchForFile, Action::Registry,
                               Action::SnmpGet, Action::WhosLogon})
        EXPECT_TRUE(counts(0, command)) << command;
    for (const char* unknown :
         {"", "ping", "Ping ", "Format C:"}) // edited by hand; spelled exactly or nothing
        EXPECT_FALSE(counts(0, unknown)) << unknown;
}

} // namespace

} // namespace mirovane
