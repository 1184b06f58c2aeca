#include "probes/SystemHostProbes.h"
#include "tests/probes/icmp/EchoFixture.h"

#include <atomic>
#include <latch>
#include <netinet/ip_icmp.h>
#include <thread>

namespace mirovane {
namespace {

INSTANTIATE_TEST_SUITE_P(Socket, EchoTest, testing::Values("raw", "datagram"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST_P(EchoTest, LivingHostAnswersWithAnyPayloadSize) {
    for (const int size : {0, 1, 32, 255}) {
        EchoOptions options;
        options.payloadSize = static_cast<std::uint8_t>(size);
        const EchoResult result = engine_->echo(addressOf("127.0.9.8"), options, {});
        EXPECT_EQ(result.kind, EchoKind::Reply) << describeEcho(result, options);
        EXPECT_EQ(result.reporter, addressOf("127.0.9.8"));
        EXPECT_GT(result.roundTrip.count(), 0);
        EXPECT_LT(result.roundTrip, std::chrono::seconds(5));
    }
}

TEST_P(EchoTest, HostThatStopsAndStartsAnswering) {
    EXPECT_EQ(echo("127.0.0.2").kind, EchoKind::Reply);
    ASSERT_TRUE(OwnNetwork::set("ipv4/icmp_echo_ignore_all", "1"));
    EXPECT_EQ(echo("127.0.0.2", 100).kind, EchoKind::TimedOut);
    ASSERT_TRUE(OwnNetwork::set("ipv4/icmp_echo_ignore_all", "0"));
    EXPECT_EQ(echo("127.0.0.2").kind, EchoKind::Reply);
}

TEST_P(EchoTest, RequestThatCantLeaveFailsAtOnce) {
    const EchoResult broadcast = echo("127.255.255.255");
    EXPECT_EQ(broadcast.kind, EchoKind::SendFailed);
    EXPECT_EQ(broadcast.systemError, EACCES);
    const EchoResult noRoute = echo("10.1.2.3"); // this namespace has loopback alone
    EXPECT_EQ(noRoute.kind, EchoKind::SendFailed);
    EXPECT_EQ(noRoute.systemError, ENETUNREACH);
    EXPECT_EQ(answerOf(broadcast, {}).kind, ProbeAnswer::Kind::No) << "no host has it";
    EXPECT_EQ(answerOf(noRoute, {}).kind, ProbeAnswer::Kind::CouldNotAsk);
    EchoOptions noHops;
    noHops.ttl = 0;
    EXPECT_EQ(engine_->echo(addressOf("127.0.0.1"), noHops, {}).kind, EchoKind::SendFailed);
}

/// Hosts by the last part of their address. Whatever is not the right reply must not make a device On.
void lie(TunHosts& hosts, const TunHosts::Bytes& request) {
    EXPECT_EQ(request[1], 0) << "type of service";
    EXPECT_EQ(request[6] | request[7], 0) << "flags";
    EXPECT_EQ(TunHosts::ttlOf(request), 10);
    TunHosts::Bytes reply = TunHosts::replyTo(request);
    switch (TunHosts::lastPartOfTarget(request)) {
    case 1: // from the asking computer's own address
        std::copy_n(request.begin() + 12, 4, reply.begin() + 12);
        break;
    case 2: // honest
        break;
    case 3: // one other byte
        reply[40] = 'F';
        break;
    case 4: // shorter
        reply.pop_back();
        break;
    case 5: // longer
        reply.push_back('E');
        break;
    case 6: // for another sequence number
        ++reply[27];
        break;
    case 7: // for another program
        ++reply[25];
        break;
    case 8: // from another address
        reply[15] = 88;
        break;
    case 9: // twice more
        hosts.send(reply);
        hosts.send(reply);
        break;
    case 10: // the request itself, sent back
        reply[20] = 8;
        break;
    case 11:
        reply = TunHosts::errorFor(request, ICMP_DEST_UNREACH, ICMP_HOST_UNREACH, 5, 1);
        break;
    case 12:
        reply = TunHosts::errorFor(request, ICMP_TIME_EXCEEDED, ICMP_EXC_TTL, 5, 2);
        break;
    case 13: // an error about a request to somebody else
        reply = TunHosts::errorFor(request, ICMP_DEST_UNREACH, ICMP_HOST_UNREACH, 5, 1);
        reply[28 + 19] = 88;
        break;
    case 14: // a mere hint, then the answer
        hosts.send(TunHosts::errorFor(request, ICMP_SOURCE_QUENCH, 0, 5, 1));
        break;
    default: // silent
        return;
    }
    hosts.send(std::move(reply));
}

TEST_P(EchoTest, OnlyTheRightReplyCounts) {
    TunHosts hosts(lie);
    if (hosts.refused())
        GTEST_SKIP() << *hosts.refused();
    const std::map<std::string, EchoKind> expected{
        {"10.77.1.2", EchoKind::Reply},       {"10.77.1.3", EchoKind::WrongPayload},
        {"10.77.1.4", EchoKind::WrongLength}, {"10.77.1.5", EchoKind::WrongLength},
        {"10.77.1.6", EchoKind::TimedOut},    {"10.77.1.7", EchoKind::TimedOut},
        {"10.77.1.8", EchoKind::Reply},       {"10.77.1.9", EchoKind::Reply},
        {"10.77.1.10", EchoKind::TimedOut},   {"10.77.1.11", EchoKind::Unreachable},
        {"10.77.1.12", EchoKind::TtlExpired}, {"10.77.1.13", EchoKind::TimedOut},
        {"10.77.1.14", EchoKind::Reply},      {"10.77.1.15", EchoKind::TimedOut},
    };
    std::vector<std::uint32_t> addresses;
    for (const auto& [address, kind] : expected)
        addresses.push_back(addressOf(address));
    Results results;
    engine_->startAll(addresses, within(1000), results.callback());
    std::map<std::string, EchoKind> got;
    for (const EchoResult& result : results.waitFor(addresses.size())) {
        const std::string target = formatAddress(result.target);
        EXPECT_FALSE(got.contains(target)) << target << " was reported twice";
        got[target] = result.kind;
        if (result.kind == EchoKind::Unreachable)
            EXPECT_EQ(describeEcho(result, {}), "host unreachable, says 10.77.5.1");
        if (result.kind == EchoKind::TtlExpired)
            EXPECT_EQ(describeEcho(result, {}), "more than 10 hops away, says 10.77.5.2");
    }
    EXPECT_EQ(got, expected);
    EXPECT_EQ(hosts.requests(), addresses.size()) << "one request each, no retry";
}

/// What Live Stat and Live Discover see: each of these would put a device On, or a host that is not there
/// into the Discovered/Misc window.
TEST_P(EchoTest, PingHostTakesNothingElseForAnAnswer) {
    TunHosts hosts(lie);
    if (hosts.refused())
        GTEST_SKIP() << *hosts.refused();
    CSystemHostProbes probes(std::make_unique<CIcmpEngine>(std::string(GetParam()) == "raw"
                                                               ? openRawEchoSocket
                                                               : openDatagramEchoSocket),
                             std::make_unique<CResolver>());
    const auto ping = [&probes](const std::string& target, PingReply& reply) {
        std::optional<std::uint32_t> resolved;
        return probes.PingHost(target, reply, resolved, pingTtl, 300, pingPayloadSize, {}).isYes();
    };
    for (const auto& [target, what] : std::map<std::string, const char*>{
             {"10.77.1.3", "another payload"},
             {"10.77.1.11", "destination unreachable"},
             {"10.77.1.12", "time exceeded"},
             {"10.77.2.1", "our own address for a neighbour"}, // answered by 10.77.0.1
             {"10.77.1.15", "silence"}}) {
        PingReply reply;
        EXPECT_FALSE(ping(target, reply)) << what;
        EXPECT_EQ(reply.address, 0U) << what;
    }
    PingReply reply;
    EXPECT_TRUE(ping("10.77.1.8", reply)) << "from another of its addresses";
    EXPECT_EQ(reply.address, addressOf("10.77.1.88"));
    EXPECT_TRUE(ping("10.77.1.2", reply));
    EXPECT_EQ(reply.address, addressOf("10.77.1.2"));
}

TEST_P(EchoTest, TimeToLiveIsTheCallers) {
    TunHosts hosts([](TunHosts& from, const TunHosts::Bytes& request) {
        // A host three hops away.
        from.send(TunHosts::ttlOf(request) < 3 ? TunHosts::errorFor(request, ICMP_TIME_EXCEEDED, 0, 5, 1)
                                               : TunHosts::replyTo(request));
    });
    if (hosts.refused())
        GTEST_SKIP() << *hosts.refused();
    for (const auto& [ttl, kind] : std::map<int, EchoKind>{{1, EchoKind::TtlExpired},
                                                           {2, EchoKind::TtlExpired},
                                                           {3, EchoKind::Reply},
                                                           {10, EchoKind::Reply},
                                                           {255, EchoKind::Reply}}) {
        EchoOptions options;
        options.ttl = static_cast<std::uint8_t>(ttl);
        EXPECT_EQ(engine_->echo(addressOf("10.77.1.2"), options, {}).kind, kind) << "ttl " << ttl;
    }
}

void answerAfter5ms(TunHosts& hosts, const TunHosts::Bytes& request) {
    hosts.send(TunHosts::replyTo(request), std::chrono::milliseconds(5));
}

TEST_P(EchoTest, ThousandCallersAtOnceLoseNothing) {
    TunHosts hosts(answerAfter5ms);
    if (hosts.refused())
        GTEST_SKIP() << *hosts.refused();
    constexpr int callers = 1000;
    constexpr int each = 3;
    std::atomic<int> right{0};
    std::atomic<int> tooQuick{0};
    std::latch ready(callers);
    std::vector<std::jthread> threads;
    for (int caller = 0; caller < callers; ++caller) {
        threads.emplace_back([&, caller] {
            ready.arrive_and_wait();
            for (int i = 0; i < each; ++i) {
                const std::string address = "10.77." + std::to_string(1 + i + caller / 250 * each) + "." +
                                            std::to_string(2 + caller % 250);
                const EchoResult result = echo(address);
                right += result.answered() && result.reporter == addressOf(address) ? 1 : 0;
                tooQuick += result.roundTrip < std::chrono::milliseconds(5) ? 1 : 0;
            }
        });
    }
    threads.clear();
    EXPECT_EQ(right, callers * each);
    EXPECT_EQ(tooQuick, 0);
}

TEST_P(EchoTest, StopEndsAWaitAtOnce) {
    TunHosts hosts([](TunHosts&, const TunHosts::Bytes&) {});
    if (hosts.refused())
        GTEST_SKIP() << *hosts.refused();
    std::stop_source stop;
    std::atomic<int> stopped{0};
    std::vector<std::jthread> threads;
    for (int i = 0; i < 100; ++i) {
        threads.emplace_back([&] {
            const EchoResult result = engine_->echo(addressOf("10.77.1.2"), within(600000), stop.get_token());
            stopped += result.kind == EchoKind::Stopped ? 1 : 0;
        });
    }
    while (hosts.requests() < 100)
        std::this_thread::yield();
    stop.request_stop();
    threads.clear();
    EXPECT_EQ(stopped, 100);
    EXPECT_EQ(engine_->echo(addressOf("10.77.1.2"), {}, stop.get_token()).kind, EchoKind::Stopped);
    EXPECT_EQ(hosts.requests(), 100U) << "a caller that is stopped already sends nothing";
}

TEST_P(EchoTest, DestructionReleasesEverybody) {
    TunHosts hosts([](TunHosts&, const TunHosts::Bytes&) {});
    if (hosts.refused())
        GTEST_SKIP() << *hosts.refused();
    Results results;
    const std::vector<std::uint32_t> addresses(1000, addressOf("10.77.1.2"));
    engine_->startAll(addresses, within(600000), results.callback());
    std::vector<std::jthread> threads;
    std::atomic<int> released{0};
    CIcmpEngine& engine = *engine_;
    for (int i = 0; i < 20; ++i) {
        threads.emplace_back([&] {
            const EchoResult result =
                engine.echo(addressOf("10.77.1.3"), within(600000), std::stop_source().get_token());
            released += result.kind == EchoKind::Stopped ? 1 : 0;
        });
    }
    while (hosts.requests() < 1020)
        std::this_thread::yield();
    engine_.reset();
    threads.clear();
    EXPECT_EQ(released, 20);
    EXPECT_EQ(results.count(EchoKind::Stopped), 1000U);
}

TEST_P(EchoTest, CallbacksMayStartProbes) {
    Results results;
    std::atomic<int> left{500};
    EchoCallback next = [&](const EchoResult& result) {
        if (left-- > 0)
            engine_->start(result.target, {}, next);
        results.callback()(result);
    };
    engine_->start(addressOf("127.0.0.3"), {}, next);
    results.waitFor(501);
    EXPECT_EQ(results.count(EchoKind::Reply), 501U);
}

} // namespace
} // namespace mirovane
