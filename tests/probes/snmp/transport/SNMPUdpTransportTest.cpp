// Hosts that lie, replies that meet what ends their request, and what the system refuses.

#include "probes/snmp/transport/SNMPUdpTransport.h"

#include "probes/SNMPProbe.h"
#include "probes/names/Resolver.h"
#include "probes/snmp/SNMPRemoteAgent.h"
#include "probes/snmp/SNMPRequest.h"
#include "tests/probes/snmp/transport/SNMPWire.h"
#include "tests/support/OwnNetwork.h"

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <linux/if_tun.h>
#include <random>

namespace mirovane {
namespace {

using test::ScriptedAgent;
using namespace test::wire;

const std::string upTime = "1.3.6.1.2.1.1.3.0";

class SNMPUdpTransportTest : public testing::Test {
protected:
    void SetUp() override { manager_.Startup(); }

    SNMPUdpTransport transport_;
    CResolver resolver_;
    SNMPManager manager_{transport_, resolver_};
    CSystemSNMPProbe probe_{manager_};
    const std::vector<SNMPObject> object_{SNMPObject(upTime)};
};

TEST_F(SNMPUdpTransportTest, OnlyTheRightReplyCounts) {
    const ScriptedAgent agent([](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
        const std::int32_t id = asked.requestId();
        const auto lie = [](std::int32_t which) {
            return binding(number(which));
        };
        self.send(asked, Reply{id + 1, lie(1)}.bytes());
        self.send(asked, Reply{id, lie(2), "private"}.bytes());
        self.send(asked, Reply{id, lie(3), "publicly"}.bytes());
        self.send(asked, Reply{id, lie(4), "public", 0xA6}.bytes());    // an inform
        self.send(asked, Reply{id, lie(5), "public", 0xA7}.bytes());    // a trap
        self.send(asked, Reply{id, lie(6), "public", 0xA4}.bytes());    // a trap of the first version
        self.send(asked, Reply{id, lie(7), "public", 0xA0}.bytes());    // a request
        self.send(asked, Reply{id, lie(8), "public", 0xA2, 1}.bytes()); // of another version
        self.send(asked, Reply{id, lie(9)}.bytes().substr(0, 20));
        // An agent may answer from another of its addresses; nobody else knows the id.
        self.sendFromElsewhere(asked, Reply{id}.bytes());
    });
    for (int time = 0; time < 20; ++time)
        EXPECT_EQ(probe_.SnmpGet({"127.0.0.1", "public", upTime, agent.port(), 30000}, {}).text,
                  "0,0:0:0.250");
}

/// Replies race with time-outs, cancels, new sends and the end of agents and sessions; the sanitizers look
/// for what the assertions can't see.
TEST_F(SNMPUdpTransportTest, RepliesThatMeetTheEndOfTheirRequest) {
    const ScriptedAgent scripted([](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
        self.send(asked, Reply{asked.requestId()}.bytes());
        self.send(asked, Reply{asked.requestId()}.bytes()); // and once too often
    });
    std::vector<std::jthread> threads;
    for (unsigned seed = 0; seed < 6; ++seed) {
        threads.emplace_back([&, seed] {
            std::mt19937 random(seed);
            for (int i = 0; i < 300; ++i) {
                auto session = std::make_unique<SNMPSession>(manager_);
                auto* agent =
                    new SNMPRemoteAgent(manager_, "127.0.0.1", "public", scripted.port(), session.get());
                SNMPRequest request(SNMPPduType::GetRequest, object_);
                request.Send(*agent);
                switch (random() % 5) {
                case 0:
                    request.Wait(random() % 2);
                    break;
                case 1:
                    request.Cancel();
                    EXPECT_NE(request.status(), SNMPRequest::Status::ONGOING);
                    break;
                case 2:
                    request.Send(*agent);
                    break;
                case 3:
                    delete agent;
                    break;
                default:
                    break;
                }
                session.reset(); // with the agent, if it is still there
                request.Wait(0);
                EXPECT_NE(request.status(), SNMPRequest::Status::ONGOING);
            }
        });
    }
    threads.clear();
    EXPECT_EQ(transport_.outstanding(), 0U);
}

TEST_F(SNMPUdpTransportTest, RequestIdsCannotBeGuessed) {
    const auto session = transport_.SnmpCreateSession([](std::uint32_t, std::int32_t) {});
    std::int32_t before = 0;
    int close = 0;
    for (int i = 0; i < 64; ++i) {
        const std::int32_t id = transport_.SnmpCreatePdu(*session, SNMPPduType::GetRequest, {})->requestId;
        EXPECT_GT(id, 0);
        close += std::abs(id - before) < 1000 ? 1 : 0;
        before = id;
    }
    EXPECT_LE(close, 1) << "ids that follow each other";
}

TEST_F(SNMPUdpTransportTest, WhatCannotBeSentIsNotWaitedFor) {
    const test::LoopbackSocket silentHost;
    const auto session = transport_.SnmpCreateSession([](std::uint32_t, std::int32_t) {});
    auto host = *transport_.SnmpStrToEntity(*session, "127.0.0.1");
    ASSERT_TRUE(transport_.SnmpSetPort(*session, host, silentHost.port()));
    EXPECT_FALSE(transport_.SnmpSetPort(*session, host, 0));
    const SNMPOid longName(longestSnmpOid, 1);
    SNMPBindings tooLong;
    for (int i = 0; i < 600; ++i)
        ASSERT_TRUE(transport_.SnmpSetVb(*session, tooLong, longName, {}));
    SNMPPdu pdu = *transport_.SnmpCreatePdu(*session, SNMPPduType::GetRequest, tooLong);
    EXPECT_FALSE(transport_.SnmpSendMsg(*session, host, {"public"}, pdu));
    EXPECT_EQ(transport_.SnmpGetLastError(session.get()), SNMPError::NotSent);
    EXPECT_EQ(transport_.outstanding(), 0U);

    pdu.bindings = {{{1}, {}}};
    EXPECT_FALSE(transport_.SnmpSendMsg(*session, host, {"public"}, pdu));
    EXPECT_EQ(transport_.SnmpGetLastError(session.get()), SNMPError::MessageInvalid);

    pdu.bindings = {{longName, {}}};
    EXPECT_TRUE(transport_.SnmpSendMsg(*session, host, {"public"}, pdu));
    EXPECT_FALSE(transport_.SnmpSendMsg(*session, host, {"public"}, pdu)) << "it is out already";
    EXPECT_EQ(transport_.outstanding(), 1U);
    const auto another = transport_.SnmpCreateSession([](std::uint32_t, std::int32_t) {});
    EXPECT_FALSE(transport_.SnmpCancelMsg(*another, pdu.requestId));
    const auto second = transport_.SnmpCreatePdu(*another, SNMPPduType::GetRequest, pdu.bindings);
    EXPECT_TRUE(transport_.SnmpSendMsg(*another, host, {"public"}, *second));
    transport_.SnmpClose(*another);
    EXPECT_EQ(transport_.outstanding(), 1U) << "that of the other session";

    EXPECT_TRUE(transport_.SnmpCleanup());
    EXPECT_EQ(transport_.outstanding(), 0U);
    EXPECT_FALSE(transport_.SnmpCleanup());
    EXPECT_FALSE(transport_.SnmpSendMsg(*session, host, {"public"}, pdu));
    EXPECT_EQ(transport_.SnmpGetLastError(session.get()), SNMPError::NotInitialized);
    EXPECT_FALSE(transport_.SnmpCreateVbl(*session));
}

TEST_F(SNMPUdpTransportTest, ClosingWaitsForACallbackThatRuns) {
    const ScriptedAgent scripted([](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
        self.send(asked, Reply{asked.requestId()}.bytes());
    });
    SNMPTransportSession* opened = nullptr;
    std::promise<void> called;
    std::promise<void> closed;
    const auto session = transport_.SnmpCreateSession([&](std::uint32_t, std::int32_t) {
        called.set_value();
        EXPECT_EQ(closed.get_future().wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
        const auto message = transport_.SnmpRecvMsg(*opened);
        EXPECT_EQ(message.value().pdu.bindings.size(), 1U);
        EXPECT_FALSE(transport_.SnmpRecvMsg(*opened)) << "taken already";
    });
    opened = session.get();
    auto host = *transport_.SnmpStrToEntity(*session, "127.0.0.1");
    transport_.SnmpSetPort(*session, host, scripted.port());
    const SNMPPdu pdu = *transport_.SnmpCreatePdu(*session, SNMPPduType::GetRequest, {{{1, 3}, {}}});
    EXPECT_FALSE(transport_.SnmpRecvMsg(*session)) << "nothing has arrived";
    ASSERT_TRUE(transport_.SnmpSendMsg(*session, host, {"public"}, pdu));
    called.get_future().wait();
    transport_.SnmpClose(*session);
    closed.set_value();
}

TEST_F(SNMPUdpTransportTest, AsksOverIPv6) {
    const CDescriptor socket(::socket(AF_INET6, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in6 at{};
    at.sin6_family = AF_INET6;
    at.sin6_addr = in6addr_loopback;
    socklen_t length = sizeof at;
    if (::bind(socket.get(), reinterpret_cast<const sockaddr*>(&at), sizeof at) != 0)
        GTEST_SKIP() << "no IPv6 loopback on this computer";
    ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&at), &length);
    constexpr timeval limit{30, 0};
    ::setsockopt(socket.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    std::jthread agent([&] {
        SNMPBytes bytes(2000);
        sockaddr_in6 asker{};
        socklen_t size = sizeof asker;
        const ssize_t got = ::recvfrom(socket.get(), bytes.data(), bytes.size(), 0,
                                       reinterpret_cast<sockaddr*>(&asker), &size);
        const auto request = decodeSnmpMessage({bytes.data(), static_cast<std::size_t>(std::max(got, {}))});
        ASSERT_TRUE(request);
        const std::string reply = Reply{request->pdu.requestId}.bytes();
        ::sendto(socket.get(), reply.data(), reply.size(), 0, reinterpret_cast<const sockaddr*>(&asker),
                 size);
    });
    EXPECT_EQ(probe_.SnmpGet({"::1", "public", upTime, ntohs(at.sin6_port), 30000}, {}).text, "0,0:0:0.250");
}

/// Requests to hosts whose hardware address is not known yet stay in the socket's buffer: on an Ethernet
/// device where nobody tells it, they fill the buffer, and a sender that waited for room would wait for
/// seconds.
TEST(SNMPSocketsTest, AFullBufferIsAFailedSend) {
    const OwnNetwork own;
    if (own.refused())
        GTEST_SKIP() << *own.refused();
    const CDescriptor device(::open("/dev/net/tun", O_RDWR | O_CLOEXEC | O_NONBLOCK));
    ifreq request = OwnNetwork::named("silent0");
    request.ifr_flags = IFF_TAP | IFF_NO_PI;
    if (!device || ::ioctl(device.get(), TUNSETIFF, &request) != 0)
        GTEST_SKIP() << "no TAP device: " << std::strerror(errno);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(0x0A4D0001); // 10.77.0.1, and 255.255.0.0 is on the device
    std::memcpy(&request.ifr_addr, &address, sizeof address);
    ASSERT_TRUE(OwnNetwork::onSocket(SIOCSIFADDR, request));
    OwnNetwork::raise("silent0");

    SNMPSockets sockets;
    ASSERT_TRUE(sockets.open());
    const SNMPBytes message(1400);
    bool sent = true;
    const auto start = std::chrono::steady_clock::now();
    for (unsigned host = 0; sent && host < 500; ++host) {
        const auto entity = SNMPEntity::parse("10.77.1." + std::to_string(host % 250 + 1));
        for (int i = 0; sent && i < 100; ++i)
            sent = sockets.send(*entity, message);
    }
    EXPECT_FALSE(sent);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

} // namespace
} // namespace mirovane
