#include "livestat/steps/HostActions.h"

#include "probes/names/HostAddress.h"
#include "tests/livestat/steps/ActionFixture.h"

#include <thread>

namespace mirovane {

namespace {

using Tokens = std::vector<std::string>;
using HostActionsTest = test::ActionFixture;

TEST_F(HostActionsTest, BlanksSplitAnArgumentAndQuotesGroup) {
    EXPECT_EQ(argumentTokens(" pc1  10.0.0.5 "), (Tokens{"pc1", "10.0.0.5"}));
    EXPECT_EQ(argumentTokens("\"a b\" c\"d e\"f \"\" \"open end"), (Tokens{"a b", "cd ef", "open end"}));
    EXPECT_EQ(argumentTokens(""), Tokens{});
}

TEST_F(HostActionsTest, PingTriesTheHostsInOrderUntilOneAnswers) {
    input.device.IPAddress = "127.0.0.5";
    probes.answer("127.0.0.5");
    probes.answer("third");
    EXPECT_EQ(shown(run(Action::Ping, "$mvN $mvI")), "done:kept") << "a ping writes no text";
    EXPECT_EQ(probes.pinged(), Tokens{"127.0.0.5"});
    input.device.Name = "pc1";
    EXPECT_EQ(shown(run(Action::Ping, "$mvN $mvI third")), "done:kept");
    EXPECT_EQ(probes.pinged(), (Tokens{"127.0.0.5", "pc1", "127.0.0.5"}));
    for (const char* silent : {"", "nobody", "a b"})
        EXPECT_EQ(shown(run(Action::Ping, silent)), "failed:kept") << silent;
}

TEST_F(HostActionsTest, LookUpsProcessEveryTokenAndTheLastDecides) {
    probes.name("pc1", *parseDottedAddress("127.0.0.7"));
    probes.reverse("127.0.0.7", "pc1.example");
    EXPECT_EQ(shown(run(Action::NsLookup, "nobody pc1")), "done:127.0.0.7");
    EXPECT_EQ(shown(run(Action::NsLookup, "pc1 nobody")), "failed:");
    EXPECT_EQ(shown(run(Action::NsLookup, "127.0.0.7")), "failed:") << "an address is not looked up forward";
    EXPECT_EQ(shown(run(Action::NsLookup, "")), "done:kept");

    EXPECT_EQ(shown(run(Action::NsLookupReverse, "127.0.0.7")), "done:pc1.example");
    EXPECT_EQ(shown(run(Action::NsLookupReverse, "pc1")), "failed:");
    EXPECT_EQ(shown(run(Action::NsLookupReverse, "127.0.0.8")), "failed:");
    EXPECT_EQ(answer, "127.0.0.8: no name is known for this address");
}

TEST_F(HostActionsTest, WhatCouldNotBeAskedIsNeitherYesNorNo) {
    probes.answer("127.0.0.5");
    probes.name("pc1", *parseDottedAddress("127.0.0.7"));
    probes.cannotAsk("pc9", AskedThrough::NameService, "the name server does not answer");
    EXPECT_EQ(shown(run(Action::Ping, "pc9 127.0.0.5")), "done:kept") << "one that answers is enough";
    EXPECT_EQ(shown(run(Action::Ping, "pc9 127.0.0.6")), "nothing") << "pc9 may have another address by now";
    EXPECT_EQ(shown(run(Action::NsLookup, "pc9")), "nothing");
    EXPECT_EQ(answer, "pc9: the name server does not answer");
    EXPECT_EQ(shown(run(Action::NsLookup, "pc9 pc1")), "done:127.0.0.7") << "the last one decides";
    EXPECT_EQ(shown(run(Action::SnmpGet, "pc9 public 1.3")), "nothing");
    for (const char* host : {R"(\\pc9)", R"(\\pc9\HKEY_USERS\x)"})
        probes.cannotAsk(host, AskedThrough::Registry, "the user name or password was refused");
    EXPECT_EQ(shown(run(Action::Registry, R"(\\pc9\HKEY_USERS\x)")), "nothing");
    input.device.Name = "pc9";
    const StepOutcome logon = run(Action::WhosLogon, "");
    ASSERT_TRUE(logon.notAsked);
    EXPECT_EQ(logon.notAsked->about, R"(\\pc9)");
}

TEST_F(HostActionsTest, AKeptFieldIsACleanValue) {
    input.device.Name = "pc1 >>";
    input.device.Username = "[eve]  >>";
    input.device.IPAddress = ">>";
    probes.answer("pc1");
    probes.loggedOn(R"(\\pc1)", {"eve", 1, true});
    EXPECT_EQ(shown(run(Action::Ping, "$mvI $mvN")), "done:kept");
    EXPECT_EQ(probes.pinged(), Tokens{"pc1"});
    EXPECT_EQ(shown(run(Action::WhosLogon, "")), "done:eve");
    EXPECT_EQ(shown(run(Action::SetValue, "$mvU on $mvN")), "done:eve on pc1");
    probes.agent("pc1", "public", "1.3", {SNMPAnswer::Kind::Value, "it is pc1", 0});
    EXPECT_EQ(shown(run(Action::SnmpGet, "$mvN public 1.3", "is $mvN$")), "done:it is pc1");
}

TEST_F(HostActionsTest, AStoppedStepSaysThatItKnowsNothing) {
    probes.answer("pc1");
    std::stop_source before;
    before.request_stop();
    input.stop = before.get_token();
    EXPECT_EQ(shown(run(Action::Ping, "pc1")), "cancelled");
    EXPECT_TRUE(probes.pinged().empty());

    probes.hang("silent");
    std::stop_source during;
    input.stop = during.get_token();
    std::thread user([&] {
        probes.waitUntilHanging(1);
        during.request_stop();
    });
    EXPECT_EQ(shown(run(Action::Ping, "silent pc1")), "cancelled");
    user.join();
    EXPECT_EQ(probes.pinged(), Tokens{"silent"}) << "the next host is not asked any more";
}

} // namespace

} // namespace mirovane
