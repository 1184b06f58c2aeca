// Against a real agent: every kind of value that it can serve, refusals, and what ends a query.

#include "probes/SNMPProbe.h"

#include "probes/names/Resolver.h"
#include "probes/snmp/SNMPRemoteAgent.h"
#include "probes/snmp/SNMPRequest.h"
#include "probes/snmp/transport/SNMPUdpTransport.h"
#include "tests/probes/snmp/RaisedBy.h"
#include "tests/probes/snmp/transport/SNMPWire.h"
#include "tests/support/SNMPDaemon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>
#include <thread>

namespace mirovane {
namespace {

using test::SNMPDaemon;

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

class SNMPProbeTest : public testing::Test {
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
        for (const auto& [number, value] : values)
            lines += "override " + tree + std::to_string(number) + ".0 " + value + "\n";
        daemon_ = std::make_unique<SNMPDaemon>(lines);
    }
    static void TearDownTestSuite() {
        daemon_.reset();
        scripts_.reset();
    }

    void SetUp() override {
        if (daemon_->refused())
            GTEST_SKIP() << *daemon_->refused();
        manager_.Startup();
    }

    SNMPAnswer get(const std::string& oid, const std::string& community = "public",
                   const std::string& host = "127.0.0.1") {
        return probe_.SnmpGet({host, community, oid, daemon_->port(), 5000}, {});
    }

    static inline std::unique_ptr<test::TestFolder> scripts_;
    static inline std::unique_ptr<SNMPDaemon> daemon_;

    SNMPUdpTransport transport_;
    CResolver resolver_;
    SNMPManager manager_{transport_, resolver_};
    CSystemSNMPProbe probe_{manager_};
};

TEST_F(SNMPProbeTest, EveryKindOfValue) {
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
        const SNMPAnswer answer = get(oid);
        EXPECT_EQ(answer.kind, SNMPAnswer::Kind::Value) << oid << describeSnmpAnswer(answer, {});
        EXPECT_EQ(answer.text, text) << oid;
    }
    // A floating point number in an opaque: the bytes as they are, not as the library would read them.
    EXPECT_THAT(get("1.3.6.1.4.1.2021.10.1.6.1").text, testing::StartsWith("9F-78-04-"));
    EXPECT_EQ(transport_.outstanding(), 0U);
}

TEST_F(SNMPProbeTest, RefusalsAndSilence) {
    for (const std::string& unknown : {tree + "77.0", std::string("1.3.6.1.4.1.99998.2")}) {
        const SNMPAnswer answer = get(unknown); // the first version of the protocol carries no Counter64
        EXPECT_EQ(answer.kind, SNMPAnswer::Kind::ErrorStatus);
        EXPECT_EQ(answer.errorStatus, 2);
        EXPECT_EQ(answer.text, "");
    }
    const SNMPAnswer silent = probe_.SnmpGet({"127.0.0.1", "wrong", upTime, daemon_->port(), 150}, {});
    EXPECT_EQ(silent.kind, SNMPAnswer::Kind::TimedOut);
    EXPECT_EQ(transport_.outstanding(), 0U);

    EXPECT_EQ(get(upTime, "public", "localhost").kind, SNMPAnswer::Kind::Value) << "a name is looked up";
    EXPECT_EQ(get(upTime, "public", "no such host").text, "this can't be the name of a host");
    EXPECT_EQ(get(upTime, "public", "10.1").kind, SNMPAnswer::Kind::Failed) << "half an address";
    EXPECT_EQ(get(upTime, "public", "0.0.0.0").kind, SNMPAnswer::Kind::Failed) << "not this computer";
    EXPECT_EQ(get(upTime, std::string(2000, 'c')).text, "could not convert community name to context");
    EXPECT_EQ(get("sysName.0").text, "could not convert OID from string representation");
    EXPECT_EQ(get("").text, "could not add object to the variable bindings list");
    EXPECT_EQ(probe_.SnmpGet({"127.0.0.1", "public", upTime, 65536}, {}).text,
              "could not set remote agent port");
}

TEST_F(SNMPProbeTest, AStopEndsTheWaitAtOnce) {
    const test::LoopbackSocket silentHost;
    std::stop_source stop;
    const auto start = std::chrono::steady_clock::now();
    std::jthread stopper([&] {
        silentHost.receive(30000); // the request is out
        stop.request_stop();
    });
    const SNMPAnswer answer =
        probe_.SnmpGet({"127.0.0.1", "public", upTime, silentHost.port(), 60000}, stop.get_token());
    EXPECT_EQ(answer.kind, SNMPAnswer::Kind::Stopped);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
    EXPECT_EQ(transport_.outstanding(), 0U);
}

TEST_F(SNMPProbeTest, OneSessionServesSeveralAgentsAndRequests) {
    SNMPSession session(manager_);
    const SNMPRemoteAgent first(manager_, "127.0.0.1", "public", daemon_->port(), &session);
    SNMPRemoteAgent second(manager_, "127.0.0.1", "inner", daemon_->port(), &session);
    const std::vector<SNMPObject> objects{SNMPObject(tree + "1.0"), SNMPObject(tree + "7.0"),
                                          SNMPObject(upTime)};
    SNMPRequest request(SNMPPduType::GetRequest, objects);
    std::int32_t idBefore = 0;
    for (int time = 0; time < 2; ++time) {
        request.Send(second);
        EXPECT_NE(request.requestId(), idBefore);
        idBefore = request.requestId();
        request.Wait(5000);
        ASSERT_EQ(request.status(), SNMPRequest::Status::SUCCEEDED);
        ASSERT_EQ(request.responses().size(), 3U);
        EXPECT_EQ(request.responses()[0].ValueText(), "-5");
        EXPECT_EQ(request.responses()[1].ValueText(), "\"hello world\"");
        EXPECT_EQ(request.responses()[2].syntax(), SNMPSyntax::TimeTicks);
        EXPECT_EQ(request.responses()[2].OidText(), upTime);
    }
}

TEST_F(SNMPProbeTest, WorksAgainAfterItsEnd) {
    EXPECT_EQ(get(tree + "1.0").text, "-5");
    manager_.Cleanup();
    SNMPSession* const none = nullptr;
    EXPECT_EQ(test::messageOf([&] { SNMPRemoteAgent(manager_, "127.0.0.1", "public", 161, none); }),
              "Could not create WinSNMP session");
    EXPECT_EQ(get(tree + "1.0").text, "-5") << "the query has started it";
}

TEST_F(SNMPProbeTest, SaysWhyThereIsNoValue) {
    using Kind = SNMPAnswer::Kind;
    const auto textOf = [](const SNMPAnswer& answer) {
        return describeSnmpAnswer(answer, {"", "", "", 0, 250});
    };
    EXPECT_EQ(textOf({Kind::Value, "value", 0}), "");
    EXPECT_EQ(textOf({Kind::ErrorStatus, "", 4}), "error status 4 (read only)");
    EXPECT_EQ(textOf({Kind::ErrorStatus, "", 6}), "error status 6");
    EXPECT_EQ(textOf({Kind::ErrorStatus, "", -1}), "error status -1");
    EXPECT_EQ(textOf({Kind::TimedOut, "", 0}), "no answer within 250 ms");
    EXPECT_EQ(textOf({Kind::Stopped, "", 0}), "stopped");

    const test::ScriptedAgent agent([](test::ScriptedAgent& self, const test::ScriptedAgent::Asked& asked) {
        self.send(asked, test::wire::Reply{asked.requestId(), ""}.bytes());
    });
    const SNMPAnswer empty = probe_.SnmpGet({"127.0.0.1", "public", upTime, agent.port(), 30000}, {});
    EXPECT_EQ(textOf(empty), "the answer holds no value");
}

} // namespace
} // namespace mirovane
