// Requests, agents, sessions and the manager on a transport without a network.

#include "probes/snmp/SNMPRequest.h"

#include "probes/names/Resolver.h"
#include "probes/snmp/SNMPRemoteAgent.h"
#include "tests/probes/snmp/RaisedBy.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Status = SNMPRequest::Status;

/// Notes what is sent and cancelled; a test says what arrives, and what fails.
class ScriptedTransport final : public SNMPTransport {
public:
    std::string broken; ///< the operation that fails
    int startups = 0;
    int openSessions = 0;
    std::map<std::int32_t, SNMPTransportSession*> outstanding;
    std::vector<SNMPContext> sentFor;

    void arrive(std::int32_t requestId, const SNMPPdu& pdu, std::uint32_t status = 0) {
        arrived_ = {{}, {}, pdu};
        sessionOf_.at(requestId)->callback(status, requestId);
    }

    bool SnmpStartup(SNMPStartupInfo&) override {
        ++startups;
        return works("SnmpStartup");
    }
    bool SnmpSetTranslateMode(std::uint32_t mode) override { return mode == snmpUntranslatedV1; }
    bool SnmpSetRetransmitMode(std::uint32_t mode) override { return mode == snmpRetransmitOff; }
    bool SnmpCleanup() override { return true; }
    std::unique_ptr<SNMPTransportSession> SnmpCreateSession(SNMPCallback callback) override {
        if (!works("SnmpCreateSession"))
            return nullptr;
        ++openSessions;
        return std::make_unique<SNMPTransportSession>(std::move(callback));
    }
    void SnmpClose(SNMPTransportSession&) override { --openSessions; }
    std::optional<SNMPEntity> SnmpStrToEntity(SNMPTransportSession&, const std::string& address) override {
        return works("SnmpStrToEntity") ? SNMPEntity::parse(address) : std::nullopt;
    }
    bool SnmpSetPort(SNMPTransportSession&, SNMPEntity&, std::uint32_t) override {
        return works("SnmpSetPort");
    }
    std::optional<SNMPContext> SnmpStrToContext(SNMPTransportSession&, const std::string& text) override {
        return works("SnmpStrToContext") ? std::optional(SNMPContext{text}) : std::nullopt;
    }
    std::optional<SNMPBindings> SnmpCreateVbl(SNMPTransportSession&) override {
        return works("SnmpCreateVbl") ? std::optional<SNMPBindings>(std::in_place) : std::nullopt;
    }
    bool SnmpSetVb(SNMPTransportSession&, SNMPBindings& list, const SNMPOid& name,
                   const SNMPValue& value) override {
        list.push_back({name, value});
        return works("SnmpSetVb");
    }
    std::optional<SNMPPdu> SnmpCreatePdu(SNMPTransportSession&, SNMPPduType type, SNMPBindings) override {
        if (!works("SnmpCreatePdu"))
            return std::nullopt;
        SNMPPdu pdu;
        pdu.type = static_cast<std::int32_t>(type);
        pdu.requestId = works("an id") ? ++lastId_ : 0;
        return pdu;
    }
    bool SnmpSendMsg(SNMPTransportSession& session, const SNMPEntity&, const SNMPContext& context,
                     const SNMPPdu& pdu) override {
        sentFor.push_back(context);
        outstanding[pdu.requestId] = sessionOf_[pdu.requestId] = &session;
        return works("SnmpSendMsg");
    }
    std::optional<SNMPReceived> SnmpRecvMsg(SNMPTransportSession&) override {
        return works("SnmpRecvMsg") ? std::exchange(arrived_, std::nullopt) : std::nullopt;
    }
    bool SnmpCancelMsg(SNMPTransportSession&, std::int32_t requestId) override {
        return outstanding.erase(requestId) != 0;
    }
    SNMPError SnmpGetLastError(const SNMPTransportSession*) override { return SNMPError::Other; }

private:
    bool works(const char* operation) const { return broken != operation; }

    std::int32_t lastId_ = 0;
    std::optional<SNMPReceived> arrived_;
    std::map<std::int32_t, SNMPTransportSession*> sessionOf_;
};

SNMPPdu response(std::int32_t number, std::int32_t errorStatus = 0) {
    SNMPPdu pdu;
    pdu.type = static_cast<std::int32_t>(SNMPPduType::Response);
    pdu.errorStatus = errorStatus;
    SNMPValue value;
    value.syntax = SNMPSyntax::Integer;
    value.integer = number;
    pdu.bindings.push_back({{1, 3, 6}, value});
    return pdu;
}

class SNMPRequestTest : public testing::Test {
protected:
    std::unique_ptr<SNMPRemoteAgent> newAgent(const std::string& community = "public",
                                              SNMPSession* session = nullptr) {
        return std::make_unique<SNMPRemoteAgent>(manager_, host_, community, 9, session);
    }

    void query() {
        const auto agent = newAgent();
        request_.Send(*agent);
        request_.Wait(0);
    }

    std::string answerOf(const SNMPRequest& request) {
        return request.responses().size() == 1 ? request.responses()[0].ValueText() : "none";
    }

    ScriptedTransport transport_;
    CResolver resolver_;
    SNMPManager manager_{transport_, resolver_};
    std::string host_ = "127.0.0.1";
    const std::vector<SNMPObject> objects_{SNMPObject("1.3.6")};
    SNMPRequest request_{SNMPPduType::GetRequest, objects_};
};

TEST_F(SNMPRequestTest, TheManagerStartsOnceAndTriesAgainAfterAFailure) {
    transport_.broken = "SnmpStartup";
    EXPECT_EQ(test::messageOf([this] { manager_.Startup(); }), "Could not start WinSNMP API");
    EXPECT_FALSE(manager_.started());
    transport_.broken = "";
    manager_.Startup();
    manager_.Startup();
    EXPECT_TRUE(manager_.started());
    EXPECT_EQ(transport_.startups, 2);
    manager_.Cleanup();
    EXPECT_FALSE(manager_.started());
    manager_.Startup();
    EXPECT_EQ(transport_.startups, 3) << "once more after its end";
}

TEST_F(SNMPRequestTest, TheManagerEndsWhatIsLeft) {
    manager_.Startup();
    auto* session = new SNMPSession(manager_);
    auto* agent = newAgent("public", session).release();
    newAgent().release();
    request_.Send(*agent);
    EXPECT_EQ(transport_.openSessions, 2);
    manager_.Cleanup();
    EXPECT_EQ(transport_.openSessions, 0);
    EXPECT_EQ(request_.status(), Status::CANCELLED);
    request_.Wait(60000); // returns at once
    EXPECT_EQ(request_.status(), Status::CANCELLED);
}

TEST_F(SNMPRequestTest, EveryFailureHasItsTextAndLeavesNothingBehind) {
    const struct {
        const char* operation;
        const char* source;
        const char* message;
        const char* host = "127.0.0.1";
    } cases[] = {
        {"SnmpCreateSession", "SNMPSession", "Could not create WinSNMP session"},
        {"SnmpStrToEntity", "SNMPRemoteAgent", "Could not convert remote agent address to entity",
         "localhost"},
        {"SnmpSetPort", "SNMPRemoteAgent", "Could not set remote agent port"},
        {"SnmpStrToContext", "SNMPRemoteAgent", "Could not convert community name to context"},
        {"SnmpCreateVbl", "SNMPRequest", "Could not create variable bindings list"},
        {"SnmpSetVb", "SNMPRequest", "Could not add object to the variable bindings list"},
        {"SnmpCreatePdu", "SNMPRequest", "Could not create PDU"},
        {"an id", "SNMPRequest", "Could not query PDU request id"},
    };
    for (const auto& failure : cases) {
        transport_.broken = failure.operation;
        host_ = failure.host;
        const auto raised = test::raisedBy([this] { query(); });
        ASSERT_NE(raised, nullptr) << failure.operation;
        EXPECT_EQ(raised->message(), failure.message);
        EXPECT_EQ(raised->code(), static_cast<std::int32_t>(SNMPError::Other)) << failure.operation;
        EXPECT_THAT(raised->location(), testing::StartsWith(std::string(failure.source) + "("));
        EXPECT_EQ(transport_.openSessions, 0) << failure.operation;
        if (std::string_view(failure.source) == "SNMPRequest")
            EXPECT_EQ(request_.status(), Status::ERROR);
    }
    transport_.broken = "SnmpSendMsg";
    query();
    EXPECT_EQ(request_.status(), Status::ERROR) << "a refused message raises nothing";
    EXPECT_EQ(request_.errorStatus(), 5);
    EXPECT_THAT(transport_.outstanding, IsEmpty());
}

TEST_F(SNMPRequestTest, OnlyAResponseEndsIt) {
    const auto agent = newAgent();
    request_.Send(*agent);
    const std::int32_t id = request_.requestId();
    for (const int type : {0xA0, 0xA1, 0xA3, 0xA4, 0xA6, 0xA7}) {
        SNMPPdu other = response(1);
        other.type = type;
        transport_.arrive(id, other);
        EXPECT_EQ(request_.status(), Status::ONGOING) << type;
    }
    transport_.arrive(id, response(1), 1);
    EXPECT_EQ(request_.status(), Status::ONGOING) << "a notification with a status";
    transport_.arrive(id, response(7));
    EXPECT_EQ(request_.status(), Status::SUCCEEDED);
    transport_.arrive(id, response(8, 2));
    EXPECT_EQ(request_.status(), Status::SUCCEEDED) << "it came too late";
    request_.Wait(0);
    EXPECT_EQ(request_.status(), Status::SUCCEEDED) << "it came in time, and is looked at late";
    EXPECT_EQ(answerOf(request_), "7");
    request_.Wait(0);
    EXPECT_EQ(request_.status(), Status::TIMEDOUT) << "one wait for one answer";
}

TEST_F(SNMPRequestTest, ErrorsOfTheAgentAndOfTheMessage) {
    const auto agent = newAgent();
    request_.Send(*agent);
    transport_.arrive(request_.requestId(), response(0, 2));
    EXPECT_EQ(request_.status(), Status::ERROR);
    EXPECT_EQ(request_.errorStatus(), 2);

    request_.Send(*agent);
    SNMPPdu damaged = response(0);
    damaged.damaged = true;
    transport_.arrive(request_.requestId(), damaged);
    EXPECT_EQ(request_.status(), Status::ERROR);
    EXPECT_EQ(request_.errorStatus(), 5);
    EXPECT_THAT(request_.responses(), IsEmpty());

    request_.Send(*agent);
    EXPECT_EQ(request_.errorStatus(), 0) << "of the new exchange";
    transport_.broken = "SnmpRecvMsg";
    transport_.arrive(request_.requestId(), response(0));
    EXPECT_EQ(request_.errorStatus(), 5);
}

TEST_F(SNMPRequestTest, SentAgainFromAnyState) {
    const auto agent = newAgent();
    request_.Cancel();
    EXPECT_EQ(request_.status(), Status::NONE) << "nothing to cancel";

    request_.Send(*agent);
    const std::int32_t first = request_.requestId();
    request_.Send(*agent);
    const std::int32_t second = request_.requestId();
    EXPECT_EQ(transport_.outstanding.size(), 1U) << "the first one is cancelled";
    transport_.arrive(first, response(1));
    EXPECT_EQ(request_.status(), Status::ONGOING) << "the reply to another request";
    transport_.arrive(second, response(2));
    request_.Wait(0);
    request_.Cancel();
    EXPECT_EQ(request_.status(), Status::SUCCEEDED) << "it has ended";
    EXPECT_EQ(answerOf(request_), "2");

    request_.Send(*agent);
    EXPECT_THAT(request_.responses(), IsEmpty());
    request_.Wait(0);
    EXPECT_EQ(request_.status(), Status::TIMEDOUT) << "not the end of the exchange before";
    transport_.arrive(request_.requestId(), response(3));
    EXPECT_EQ(request_.status(), Status::TIMEDOUT) << "a late reply";
    EXPECT_THAT(request_.responses(), IsEmpty());

    request_.Send(*agent);
    request_.Cancel();
    EXPECT_EQ(request_.status(), Status::CANCELLED);
    EXPECT_EQ(request_.requestId(), 0);
    EXPECT_THAT(transport_.outstanding, IsEmpty());

    request_.Send(*agent);
    transport_.arrive(request_.requestId(), response(4)); // and nobody waits
    const auto another = newAgent("private");
    request_.Send(*another);
    request_.Wait(0);
    EXPECT_EQ(request_.status(), Status::TIMEDOUT) << "the answer to the request before";
    request_.Send(*another);
    transport_.arrive(request_.requestId(), response(5));
    request_.Wait(0);
    EXPECT_EQ(answerOf(request_), "5") << "through another agent";
    EXPECT_THAT(transport_.outstanding, IsEmpty());
}

TEST_F(SNMPRequestTest, AStopEndsTheWait) {
    const auto agent = newAgent();
    request_.Send(*agent);
    std::stop_source stop;
    stop.request_stop();
    request_.Wait(60000, stop.get_token());
    EXPECT_EQ(request_.status(), Status::CANCELLED);
    EXPECT_THAT(transport_.outstanding, IsEmpty());

    request_.Send(*agent);
    transport_.arrive(request_.requestId(), response(6));
    request_.Wait(60000, stop.get_token());
    EXPECT_EQ(request_.status(), Status::SUCCEEDED) << "the reply was first";
}

TEST_F(SNMPRequestTest, AgentsOfOneSessionGetTheirOwn) {
    SNMPSession session(manager_);
    auto first = newAgent("public", &session);
    const auto second = newAgent("inner", &session);
    SNMPRequest other(SNMPPduType::GetRequest, objects_);
    request_.Send(*first);
    other.Send(*second);
    EXPECT_THAT(transport_.sentFor, ElementsAre(SNMPContext{"public"}, SNMPContext{"inner"}));
    transport_.arrive(other.requestId(), response(2));
    EXPECT_EQ(request_.status(), Status::ONGOING);
    first.reset();
    EXPECT_EQ(request_.status(), Status::CANCELLED) << "its agent has gone";
    EXPECT_THAT(transport_.outstanding, IsEmpty());
    request_.Send(*second);
    transport_.arrive(request_.requestId(), response(3));
    EXPECT_EQ(answerOf(other), "2");
    EXPECT_EQ(answerOf(request_), "3");
    EXPECT_EQ(transport_.openSessions, 1);
}

} // namespace
} // namespace mirovane
