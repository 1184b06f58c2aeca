// Against a real agent: every kind of value that it can serve, refusals, and how requests end.

#include "probes/Resolver.h"
#include "probes/SNMPException.h"
#include "probes/SNMPRemoteAgent.h"
#include "probes/SNMPRequest.h"
#include "probes/SnmpProbe.h"
#include "probes/SnmpUdpTransport.h"
#include "tests/support/SnmpDaemon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>
#include <thread>

namespace mirovane {
namespace {

using test::SnmpDaemon;
using Status = SNMPRequest::Status;

const std::string tree = "1.3.6.1.4.1.99999.";
const std::string upTime = "1.3.6.1.2.1.1.3.0";

/// What the agent's pass directive runs: types that override does not know.
constexpr std::string_view passScript = R"(#!/bin/sh
[ "$1" = -g ] || exit 0
case "$2" in
    .1.3.6.1.4.1.99998.1) printf '%s\nipaddress\n10.0.0.5\n' "$2" ;;
    .1.3.6.1.4.1.99998.2) printf '%s\ncounter64\n18446744073709551615\n' "$2" ;;
    .1.3.6.1.4.1.99998.3) printf '%s\ngauge\n4294967290\n' "$2" ;;
    .1.3.6.1.4.1.99998.4) printf '%s\noctet\n41 0A 7F\n' "$2" ;;
esac
)";

class SnmpAgentTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        scripts_ = std::make_unique<test::TestFolder>();
        const std::string script = scripts_->file("pass");
        test::writeBytes(script, passScript);
        ::chmod(script.c_str(), 0755);
        std::string lines = "pass .1.3.6.1.4.1.99998 " + script + "\n";
        const std::map<int, std::string> values{{1, "integer -5"},
                                                {2, "integer -2147483648"},
                                                {3, "integer 2147483647"},
                                                {4, "counter 4294967295"},
                                                {5, "uinteger 4294967294"},
                                                {6, "timeticks 123456"},
                                                {7, "octet_str \"hello world\""},
                                                {8, "octet_str 0x001A2B"},
                                                {9, "octet_str \"\""},
                                                {10, "object_id 1.3.6.1.4.1.8072.3.2.4294967295"}};
        for (const auto& [number, value] : values) {
            lines += "override " + tree + std::to_string(number) + ".0 " + value + "\n";
        }
        daemon_ = std::make_unique<SnmpDaemon>(lines);
    }
    static void TearDownTestSuite() {
        daemon_.reset();
        scripts_.reset();
    }

    void SetUp() override {
        if (daemon_->refused()) {
            GTEST_SKIP() << *daemon_->refused();
        }
        manager_.Startup();
    }

    SnmpAnswer get(const std::string& oid, const std::string& community = "public",
                   const std::string& host = "127.0.0.1") {
        return probe_.SnmpGet({host, community, oid, daemon_->port(), 5000}, {});
    }

    std::unique_ptr<SNMPRemoteAgent> agentOn(SNMPSession* session, const std::string& community = "public") {
        return std::make_unique<SNMPRemoteAgent>(manager_, "127.0.0.1", community, daemon_->port(), session);
    }

    static inline std::unique_ptr<test::TestFolder> scripts_;
    static inline std::unique_ptr<SnmpDaemon> daemon_;

    SnmpUdpTransport transport_;
    Resolver resolver_;
    SNMPManager manager_{transport_, resolver_};
    SystemSnmpProbe probe_{manager_};
};

TEST_F(SnmpAgentTest, EveryKindOfValue) {
    const std::map<std::string, std::string> values{
        {tree + "1.0", "-5"},
        {tree + "2.0", "-2147483648"},
        {tree + "3.0", "2147483647"},
        {tree + "4.0", "4294967295"},
        {tree + "5.0", "4294967294"},
        {tree + "6.0", "0,0:20:34.560"},
        {tree + "7.0", "\"hello world\""},
        {tree + "8.0", "00-1A-2B"},
        {tree + "9.0", "\"\""},
        {tree + "10.0", "1.3.6.1.4.1.8072.3.2.4294967295"},
        {"1.3.6.1.4.1.99998.1", "10.0.0.5"},
        {"1.3.6.1.4.1.99998.3", "4294967290"},
        {"1.3.6.1.4.1.99998.4", "41-0A-7F"},
        {".1.3.6.1.2.1.1.5.0", "\"mirovane-test\""},
    };
    for (const auto& [oid, text] : values) {
        const SnmpAnswer answer = get(oid);
        EXPECT_EQ(answer.kind, SnmpAnswer::Kind::Value) << oid << describeSnmpAnswer(answer, {});
        EXPECT_EQ(answer.text, text) << oid;
    }
    // A floating point number in an opaque: the bytes as they are, none of the library's own readings.
    EXPECT_THAT(get("1.3.6.1.4.1.2021.10.1.6.1").text, testing::StartsWith("9F-78-04-"));
    EXPECT_EQ(transport_.handlesInUse(), 0U);
    EXPECT_EQ(transport_.outstanding(), 0U);
}

TEST_F(SnmpAgentTest, RefusalsAndSilence) {
    for (const std::string& unknown : {tree + "77.0", std::string("1.3.6.1.4.1.99998.2")}) {
        const SnmpAnswer answer = get(unknown); // the first version of the protocol carries no Counter64
        EXPECT_EQ(answer.kind, SnmpAnswer::Kind::ErrorStatus);
        EXPECT_EQ(answer.errorStatus, 2);
        EXPECT_EQ(answer.text, "");
    }
    const SnmpAnswer silent = probe_.SnmpGet({"127.0.0.1", "wrong", upTime, daemon_->port(), 150}, {});
    EXPECT_EQ(silent.kind, SnmpAnswer::Kind::TimedOut);
    EXPECT_EQ(transport_.outstanding(), 0U);

    EXPECT_EQ(get(upTime, "public", "localhost").kind, SnmpAnswer::Kind::Value) << "a name is looked up";
    EXPECT_EQ(get(upTime, "public", "no such host").text, "could not get host by name");
    EXPECT_EQ(get(upTime, "public", "10.1").text, "could not get host by name") << "half an address";
    EXPECT_EQ(get(upTime, "public", "0.0.0.0").kind, SnmpAnswer::Kind::Failed) << "not this computer";
    EXPECT_EQ(get(upTime, std::string(2000, 'c')).text, "could not convert community name to context");
    EXPECT_EQ(get("sysName.0").text, "could not convert OID from string representation");
    EXPECT_EQ(get("").text, "could not add object to the variable bindings list");
    EXPECT_EQ(probe_.SnmpGet({"127.0.0.1", "public", upTime, 65536}, {}).text,
              "could not set remote agent port");
    EXPECT_EQ(transport_.handlesInUse(), 0U) << "failures leave nothing behind";
}

TEST_F(SnmpAgentTest, AStopEndsTheWaitAtOnce) {
    const test::LoopbackSocket silentHost;
    std::stop_source stop;
    const auto start = std::chrono::steady_clock::now();
    std::jthread stopper([&] {
        silentHost.receive(30000); // the request is out
        stop.request_stop();
    });
    const SnmpAnswer answer =
        probe_.SnmpGet({"127.0.0.1", "public", upTime, silentHost.port(), 60000}, stop.get_token());
    EXPECT_EQ(answer.kind, SnmpAnswer::Kind::Stopped);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    EXPECT_EQ(transport_.outstanding(), 0U);
}

TEST_F(SnmpAgentTest, TwoAgentsOnOneSession) {
    auto session = std::make_unique<SNMPSession>(manager_);
    const auto first = agentOn(session.get());
    const auto second = agentOn(session.get(), "inner");
    const SNMPObject object(upTime);
    const SNMPObject name("1.3.6.1.2.1.1.5.0");
    SNMPRequest ticks(SnmpPduType::GetRequest, {&object, 1});
    SNMPRequest text(SnmpPduType::GetRequest, {&name, 1});
    ticks.Send(*first);
    text.Send(*second);
    text.Wait(5000);
    ticks.Wait(5000);
    ASSERT_EQ(ticks.status(), Status::SUCCEEDED);
    ASSERT_EQ(text.status(), Status::SUCCEEDED);
    EXPECT_EQ(ticks.responses().at(0).syntax(), SnmpSyntax::TimeTicks);
    EXPECT_EQ(ticks.responses().at(0).OidText(), upTime);
    EXPECT_EQ(text.responses().at(0).ValueText(), "\"mirovane-test\"");
}

TEST_F(SnmpAgentTest, SeveralObjectsInOneRequestComeInOrder) {
    const auto agent = agentOn(nullptr);
    const std::vector<SNMPObject> objects{SNMPObject(tree + "1.0"), SNMPObject(tree + "7.0"),
                                          SNMPObject(upTime)};
    SNMPRequest request(SnmpPduType::GetRequest, objects);
    request.Send(*agent);
    request.Wait(5000);
    ASSERT_EQ(request.responses().size(), 3U);
    EXPECT_EQ(request.responses()[0].ValueText(), "-5");
    EXPECT_EQ(request.responses()[1].ValueText(), "\"hello world\"");
}

TEST_F(SnmpAgentTest, SentAgainFromAnyState) {
    const auto agent = agentOn(nullptr);
    const SNMPObject object(upTime);
    SNMPRequest request(SnmpPduType::GetRequest, {&object, 1});
    EXPECT_EQ(request.status(), Status::NONE);
    request.Cancel();
    EXPECT_EQ(request.status(), Status::NONE) << "nothing to cancel";

    request.Send(*agent);
    const std::int32_t firstId = request.requestId();
    request.Send(*agent);
    EXPECT_NE(request.requestId(), firstId);
    request.Wait(5000);
    EXPECT_EQ(request.status(), Status::SUCCEEDED);
    EXPECT_EQ(request.responses().size(), 1U) << "the first exchange left nothing";

    request.Send(*agent);
    request.Cancel();
    EXPECT_EQ(request.status(), Status::CANCELLED);
    EXPECT_EQ(request.requestId(), 0);
    EXPECT_EQ(transport_.outstanding(), 0U);
    request.Send(*agent);
    request.Wait(5000);
    EXPECT_EQ(request.status(), Status::SUCCEEDED);
}

} // namespace
} // namespace mirovane
