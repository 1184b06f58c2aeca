// Values and their texts, exceptions, and what is raised when the transport fails.

#include "probes/Resolver.h"
#include "probes/SNMPException.h"
#include "probes/SNMPObject.h"
#include "probes/SNMPRemoteAgent.h"
#include "probes/SNMPRequest.h"
#include "probes/SnmpUdpTransport.h"

#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

std::unique_ptr<SNMPException> raisedBy(const std::function<void()>& what) {
    try {
        what();
    } catch (SNMPException* raised) {
        return std::unique_ptr<SNMPException>(raised);
    }
    return nullptr;
}

std::string messageOf(const std::function<void()>& what) {
    const auto raised = raisedBy(what);
    return raised ? raised->message() : "nothing raised";
}

SnmpValue ticks(std::uint32_t hundredths) {
    SnmpValue value;
    value.syntax = SnmpSyntax::TimeTicks;
    value.unsignedNumber = hundredths;
    return value;
}

SnmpValue octets(const std::string& bytes) {
    SnmpValue value;
    value.syntax = SnmpSyntax::Octets;
    value.octets = bytes;
    return value;
}

std::string textOf(const SnmpValue& value) {
    SNMPObject object("");
    object.SetFromValue(value);
    return object.ValueText();
}

TEST(SnmpObject, TimesAndOctets) {
    const std::vector<std::pair<std::uint32_t, std::string>> times{
        {0, "0,0:0:0.000"},
        {5, "0,0:0:0.050"},
        {25, "0,0:0:0.250"},
        {123456, "0,0:20:34.560"},
        {8640000, "1,0:0:0.000"},
        {100, "0,0:0:1.000"},
        {4294967295, "497,2:27:52.950"},
        {9006199, "1,1:1:1.990"},
    };
    for (const auto& [hundredths, text] : times) {
        EXPECT_EQ(textOf(ticks(hundredths)), text);
    }
    using namespace std::string_literals;
    EXPECT_EQ(textOf(octets("public")), "\"public\"");
    EXPECT_EQ(textOf(octets("two\r\nlines ~")), "\"two\r\nlines ~\"");
    EXPECT_EQ(textOf(octets("\x7F")), "7F");
    EXPECT_EQ(textOf(octets("a\tb")), "61-09-62");
    EXPECT_EQ(textOf(octets("")), "\"\"");

    SNMPObject object("");
    EXPECT_EQ(object.ValueText(), "null");
    EXPECT_EQ(object.GetOid(), nullptr);
    object.SetOctets("ignored", 7);
    EXPECT_EQ(object.ValueText(), "null") << "octets are nothing for this syntax";
    object.SetFromValue(octets("text"));
    object.SetOctets("\x00\x1A\x2B", 3);
    EXPECT_EQ(object.ValueText(), "00-1A-2B");
    object.SetOctets(nullptr, 3);
    EXPECT_EQ(object.ValueText(), "empty");
    object.SetFromValue(octets("text"));
    std::size_t length = 0;
    EXPECT_EQ(object.GetOctets(length)[3], 't');
    EXPECT_EQ(length, 4U);
    object.SetFromValue(ticks(1));
    EXPECT_EQ(object.GetOctets(length), nullptr);
    EXPECT_EQ(length, 0U);
}

TEST(SnmpObject, IdentifiersFromText) {
    for (const char* text : {"1.3.6.1.2.1.1.5.0", "0.0", "1.39", "2.999.4294967295"}) {
        EXPECT_EQ(SNMPObject(text).OidText(), text);
    }
    EXPECT_EQ(SNMPObject(".1.3.6").OidText(), "1.3.6");
    std::string longest = "1.3";
    for (std::size_t i = 2; i < longestSnmpOid; ++i) {
        longest += ".4294967295";
    }
    EXPECT_EQ(SNMPObject(longest).OidText(), longest);
    for (const std::string& text :
         {std::string("1"), std::string("1."), std::string("."), std::string("1..3"), std::string("1.3."),
          std::string("..1.3"), std::string("1.3.4294967296"), std::string("1.-3"), std::string("1.3 "),
          std::string("sysName.0"), std::string("3.1"), std::string("1.40"), longest + ".1"}) {
        EXPECT_EQ(messageOf([&] { const SNMPObject object(text); }),
                  "Could not convert OID from string representation")
            << text;
    }
    SNMPObject object("1.3.6");
    EXPECT_EQ(messageOf([&] { object.SetOid("x"); }), "Could not convert OID from string representation");
    EXPECT_EQ(object.GetOid(), nullptr) << "the one from before is gone";
    EXPECT_EQ(messageOf([&] { object.OidText(); }), "Failed to convert OID to string");
}

TEST(SnmpException, Texts) {
    const auto raised = raisedBy([] { raiseSnmp("SNMPManager", "Could not start WinSNMP API", 0); });
    ASSERT_NE(raised, nullptr);
    EXPECT_THAT(raised->FullText(),
                testing::MatchesRegex("error SNMP0: Could not start WinSNMP API\\. "
                                      "\\[SNMPManager\\([0-9]+\\) v1\\.0 [A-Z][a-z][a-z] [ 0-9][0-9] "
                                      "[0-9]+ [0-9:]+\\]"));
    const SNMPException outer("Outer", "", 0, -7, SNMPException::warning,
                              std::make_unique<SNMPException>("Inner", "", 0, 5));
    EXPECT_EQ(outer.Text(), "Outer.");
    EXPECT_EQ(outer.FullText(), "warning SNMP-7: Outer.");
    EXPECT_EQ(outer.ChainText(), "warning SNMP-7: Outer.\n    error SNMP5: Inner.");
}

/// The real transport but for the operations that a test breaks.
class BrokenTransport final : public SnmpTransport {
public:
    std::string broken; ///< the operation's name
    int startups = 0;
    SnmpUdpTransport real;

    bool SnmpStartup(SnmpStartupInfo& info) override {
        ++startups;
        return works("SnmpStartup") && real.SnmpStartup(info);
    }
    bool SnmpSetTranslateMode(std::uint32_t mode) override { return real.SnmpSetTranslateMode(mode); }
    bool SnmpSetRetransmitMode(std::uint32_t mode) override { return real.SnmpSetRetransmitMode(mode); }
    bool SnmpCleanup() override { return real.SnmpCleanup(); }
    SnmpSessionHandle SnmpCreateSession(SnmpCallback callback) override {
        return works("SnmpCreateSession") ? real.SnmpCreateSession(std::move(callback)) : SnmpSessionHandle{};
    }
    bool SnmpClose(SnmpSessionHandle session) override { return real.SnmpClose(session); }
    SnmpEntityHandle SnmpStrToEntity(SnmpSessionHandle session, const std::string& address) override {
        return works("SnmpStrToEntity") ? real.SnmpStrToEntity(session, address) : SnmpEntityHandle{};
    }
    bool SnmpSetPort(SnmpEntityHandle entity, std::uint32_t port) override {
        return works("SnmpSetPort") && real.SnmpSetPort(entity, port);
    }
    bool SnmpFreeEntity(SnmpEntityHandle entity) override { return real.SnmpFreeEntity(entity); }
    SnmpContextHandle SnmpStrToContext(SnmpSessionHandle session, const std::string& community) override {
        return works("SnmpStrToContext") ? real.SnmpStrToContext(session, community) : SnmpContextHandle{};
    }
    bool SnmpFreeContext(SnmpContextHandle context) override { return real.SnmpFreeContext(context); }
    SnmpVblHandle SnmpCreateVbl(SnmpSessionHandle session) override {
        return works("SnmpCreateVbl") ? real.SnmpCreateVbl(session) : SnmpVblHandle{};
    }
    bool SnmpSetVb(SnmpVblHandle list, const SnmpOid& name, const SnmpValue& value) override {
        return works("SnmpSetVb") && real.SnmpSetVb(list, name, value);
    }
    std::size_t SnmpCountVbl(SnmpVblHandle list) override { return real.SnmpCountVbl(list); }
    bool SnmpGetVb(SnmpVblHandle list, std::size_t index, SnmpOid& name, SnmpValue& value) override {
        return real.SnmpGetVb(list, index, name, value);
    }
    bool SnmpFreeVbl(SnmpVblHandle list) override { return real.SnmpFreeVbl(list); }
    SnmpPduHandle SnmpCreatePdu(SnmpSessionHandle session, SnmpPduType type, SnmpVblHandle list) override {
        return works("SnmpCreatePdu") ? real.SnmpCreatePdu(session, type, list) : SnmpPduHandle{};
    }
    bool SnmpGetPduData(SnmpPduHandle pdu, SnmpPduData& data) override {
        return works("SnmpGetPduData") && real.SnmpGetPduData(pdu, data);
    }
    bool SnmpFreePdu(SnmpPduHandle pdu) override { return real.SnmpFreePdu(pdu); }
    bool SnmpSendMsg(SnmpSessionHandle session, SnmpEntityHandle destination, SnmpContextHandle context,
                     SnmpPduHandle pdu) override {
        return works("SnmpSendMsg") && real.SnmpSendMsg(session, destination, context, pdu);
    }
    bool SnmpRecvMsg(SnmpSessionHandle session, SnmpReceived& message) override {
        return real.SnmpRecvMsg(session, message);
    }
    bool SnmpCancelMsg(SnmpSessionHandle session, std::int32_t id) override {
        return real.SnmpCancelMsg(session, id);
    }
    SnmpError SnmpGetLastError(SnmpSessionHandle session) override {
        return broken.empty() ? real.SnmpGetLastError(session) : SnmpError::Other;
    }

private:
    bool works(const char* operation) const { return broken != operation; }
};

class SnmpLayerTest : public testing::Test {
protected:
    /// One query to a port of this computer where nobody listens for it.
    void query() {
        SNMPRemoteAgent agent(manager_, host_, "public", 9);
        const SNMPObject object("1.3.6.1.2.1.1.3.0");
        SNMPRequest request(SnmpPduType::GetRequest, {&object, 1});
        request.Send(agent);
        request.Wait(1);
        ended_ = request.status();
        errorStatus_ = request.errorStatus();
    }

    BrokenTransport transport_;
    Resolver resolver_;
    SNMPManager manager_{transport_, resolver_};
    std::string host_ = "127.0.0.1";
    SNMPRequest::Status ended_ = SNMPRequest::Status::NONE;
    std::int32_t errorStatus_ = -1;
};

TEST_F(SnmpLayerTest, StartsOnceAndTriesAgainAfterAFailure) {
    EXPECT_EQ(messageOf([this] { query(); }), "Could not create WinSNMP session") << "not started";
    transport_.broken = "SnmpStartup";
    EXPECT_EQ(messageOf([this] { manager_.Startup(); }), "Could not start WinSNMP API");
    EXPECT_FALSE(manager_.started());
    transport_.broken = "";
    manager_.Startup();
    manager_.Startup();
    EXPECT_TRUE(manager_.started());
    EXPECT_EQ(transport_.startups, 2);
}

TEST_F(SnmpLayerTest, EveryFailureHasItsTextAndLeavesNothingBehind) {
    manager_.Startup();
    const struct {
        const char* operation;
        const char* source;
        const char* message;
    } cases[] = {
        {"SnmpCreateSession", "SNMPSession", "Could not create WinSNMP session"},
        {"SnmpSetPort", "SNMPRemoteAgent", "Could not set remote agent port"},
        {"SnmpStrToContext", "SNMPRemoteAgent", "Could not convert community name to context"},
        {"SnmpCreateVbl", "SNMPRequest", "Could not create variable bindings list"},
        {"SnmpSetVb", "SNMPRequest", "Could not add object to the variable bindings list"},
        {"SnmpCreatePdu", "SNMPRequest", "Could not create PDU"},
        {"SnmpGetPduData", "SNMPRequest", "Could not query PDU request id"},
        {"SnmpStrToEntity", "SNMPRemoteAgent", "Could not convert remote agent address to entity"},
    };
    for (const auto& failure : cases) {
        transport_.broken = failure.operation;
        host_ = transport_.broken == "SnmpStrToEntity" ? "localhost" : "127.0.0.1";
        const auto raised = raisedBy([this] { query(); });
        ASSERT_NE(raised, nullptr) << failure.operation;
        EXPECT_EQ(raised->message(), failure.message);
        EXPECT_EQ(raised->code(), static_cast<std::int32_t>(SnmpError::Other)) << failure.operation;
        EXPECT_THAT(raised->location(), testing::StartsWith(std::string(failure.source) + "("));
        EXPECT_EQ(transport_.real.handlesInUse(), 0U) << failure.operation;
    }
    transport_.broken = "SnmpSendMsg";
    host_ = "127.0.0.1";
    query();
    EXPECT_EQ(ended_, SNMPRequest::Status::ERROR) << "a refused message is no exception";
    EXPECT_EQ(errorStatus_, 5);
}

TEST_F(SnmpLayerTest, EventsThatFail) {
    class FailingEvent final : public SnmpEvent {
        void set() override {}
        void reset() override {}
        bool isSet() override { return false; }
        WaitResult wait(Deadline, const std::stop_token&) override { return WaitResult::Failed; }
    };
    manager_.Startup();
    const SNMPObject object("1.3.6.1.2.1.1.3.0");
    const std::span<const SNMPObject> objects(&object, 1);
    EXPECT_EQ(messageOf([&] {
                  const SNMPRequest request(SnmpPduType::GetRequest, objects, [] { return nullptr; });
              }),
              "Failed to create event");
    SNMPRemoteAgent agent(manager_, host_, "public", 9);
    SNMPRequest request(SnmpPduType::GetRequest, objects, [] { return std::make_unique<FailingEvent>(); });
    request.Send(agent);
    EXPECT_EQ(messageOf([&] { request.Wait(1000); }), "Wait failed");
    EXPECT_EQ(request.status(), SNMPRequest::Status::ERROR);
    EXPECT_EQ(request.errorStatus(), 5);
    EXPECT_EQ(transport_.real.outstanding(), 0U);
}

TEST_F(SnmpLayerTest, TheManagerEndsWhatIsLeft) {
    {
        SNMPManager manager(transport_, resolver_);
        manager.Startup();
        auto* session = new SNMPSession(manager);
        new SNMPRemoteAgent(manager, host_, "public", 9, session);
        new SNMPRemoteAgent(manager, host_, "public", 9);
        EXPECT_GT(transport_.real.handlesInUse(), 0U);
    }
    EXPECT_EQ(transport_.real.handlesInUse(), 0U);
    EXPECT_FALSE(transport_.real.SnmpCleanup()) << "shut down already";
}

TEST_F(SnmpLayerTest, ANotificationWithAStatusDoesNothing) {
    manager_.Startup();
    SNMPSession session(manager_);
    SNMPRemoteAgent agent(manager_, host_, "public", 9, &session);
    const SNMPObject object("1.3.6.1.2.1.1.3.0");
    SNMPRequest request(SnmpPduType::GetRequest, {&object, 1});
    request.Send(agent);
    session.OnMessage(1, request.requestId());
    EXPECT_EQ(request.status(), SNMPRequest::Status::ONGOING);
    request.Wait(1);
    EXPECT_EQ(request.status(), SNMPRequest::Status::TIMEDOUT);
}

TEST(SnmpRequestTable, IdsAreNeverShared) {
    SnmpRequestTable table;
    const auto session = std::make_shared<SnmpTransportSession>([](std::uint32_t, std::int32_t) {});
    const auto peer = SnmpPeer::parse("127.0.0.1").value();
    const std::int32_t id = table.reserve();
    EXPECT_NE(table.reserve(), id);
    EXPECT_TRUE(table.expect(id, {session, peer, "public", {}, {}}));
    EXPECT_FALSE(table.expect(id, {session, peer, "public", {}, {}})) << "it is out already";
    table.release(id);
    EXPECT_EQ(table.outstanding(), 1U) << "freeing the message does not end the wait";
    auto other = peer;
    other.setPort(162);
    EXPECT_FALSE(table.match(id, other, "public", true));
    EXPECT_TRUE(table.match(id, peer, "public", false)) << "what is no reply leaves it waiting";
    EXPECT_TRUE(table.match(id, peer, "public", true));
    EXPECT_FALSE(table.match(id, peer, "public", true)) << "the second reply";
    EXPECT_FALSE(table.expect(id, {session, peer, "public", {}, {}})) << "given back";
}

} // namespace
} // namespace mirovane
