// Hosts that lie, and replies that meet what ends a request.

#include "probes/Resolver.h"
#include "probes/SNMPException.h"
#include "probes/SNMPRemoteAgent.h"
#include "probes/SNMPRequest.h"
#include "probes/SnmpProbe.h"
#include "probes/SnmpUdpTransport.h"
#include "tests/probes/SnmpWire.h"

#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <random>

namespace mirovane {
namespace {

using test::ScriptedAgent;
using wireReply = test::wire::Reply;
using namespace test::wire;
using Kind = SnmpAnswer::Kind;

const std::string upTime = "1.3.6.1.2.1.1.3.0";

class SnmpHostileTest : public testing::Test {
protected:
    void SetUp() override { manager_.Startup(); }

    SnmpAnswer ask(const ScriptedAgent& agent, std::uint32_t timeoutMs = 30000) {
        return probe_.SnmpGet({"127.0.0.1", "public", upTime, agent.port(), timeoutMs}, {});
    }

    /// The answer when `wrong` is sent first and the right reply after it.
    SnmpAnswer askAfter(const std::function<void(ScriptedAgent&, const ScriptedAgent::Asked&)>& wrong) {
        const ScriptedAgent agent([&](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
            wrong(self, asked);
            self.send(asked, wireReply{asked.request.requestId}.bytes());
        });
        return ask(agent);
    }

    SnmpUdpTransport transport_;
    Resolver resolver_;
    SNMPManager manager_{transport_, resolver_};
    SystemSnmpProbe probe_{manager_};
};

TEST_F(SnmpHostileTest, OnlyTheRightReplyCounts) {
    const std::string lie = binding(thing(0x02, "\x01"));
    const std::vector<std::pair<std::string, std::function<wireReply(std::int32_t)>>> wrongs{
        {"another id",
         [&](auto id) {
             return wireReply{id + 1, lie};
         }},
        {"another community",
         [&](auto id) {
             return wireReply{id, lie, "private"};
         }},
        {"a longer community",
         [&](auto id) {
             return wireReply{id, lie, "publicly"};
         }},
        {"an inform",
         [&](auto id) {
             return wireReply{id, lie, "public", 0xA6};
         }},
        {"a trap",
         [&](auto id) {
             return wireReply{id, lie, "public", 0xA7};
         }},
        {"a trap of the first version",
         [&](auto id) {
             return wireReply{id, lie, "public", 0xA4};
         }},
        {"a request",
         [&](auto id) {
             return wireReply{id, lie, "public", 0xA0};
         }},
        {"another version",
         [&](auto id) {
             return wireReply{id, lie, "public", 0xA2, 1};
         }},
    };
    for (const auto& [what, wrong] : wrongs) {
        const SnmpAnswer answer = askAfter([&wrong = wrong](auto& self, const auto& asked) {
            self.send(asked, wrong(asked.request.requestId).bytes());
        });
        EXPECT_EQ(answer.text, "0,0:0:0.250") << what << " was taken";
    }
    const SnmpAnswer answer = askAfter([&](auto& self, const auto& asked) {
        self.sendFromElsewhere(asked, wireReply{asked.request.requestId, lie}.bytes());
    });
    EXPECT_EQ(answer.text, "0,0:0:0.250") << "the right words from another socket";
    EXPECT_EQ(transport_.handlesInUse(), 0U);
}

TEST_F(SnmpHostileTest, MessagesThatAreCutShort) {
    const SnmpAnswer answer = askAfter([&](auto& self, const auto& asked) {
        const std::string whole = wireReply{asked.request.requestId}.bytes();
        for (std::size_t length = 0; length < whole.size(); ++length) {
            self.send(asked, whole.substr(0, length));
        }
    });
    EXPECT_EQ(answer.text, "0,0:0:0.250");
}

TEST_F(SnmpHostileTest, BindingsThatMakeNoSenseEndTheRequestWithAnError) {
    const std::vector<std::string> nonsense{
        thing(0x30, thing(0x04, "name")),                               // no identifier
        binding(std::string("\x02\x7F\x01", 3)),                        // a length that lies
        binding(std::string("\x04\x84\xFF\xFF\xFF\xFF", 6)),            // 4 GB
        binding(std::string("\x41\x09\x01", 3) + std::string(8, '\0')), // a counter of nine bytes
        binding(""),                                                    // no value
        binding(thing(0x43, "\x01")).substr(1),                         // not even a sequence
        std::string(40000, '\0'),
    };
    for (const std::string& bindings : nonsense) {
        const ScriptedAgent agent([&](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
            self.send(asked,
                      wireReply{asked.request.requestId, binding(thing(0x02, "\x01")) + bindings}.bytes());
        });
        const SnmpAnswer answer = ask(agent);
        EXPECT_EQ(answer.kind, Kind::ErrorStatus);
        EXPECT_EQ(answer.errorStatus, 5);
    }
    EXPECT_EQ(transport_.handlesInUse(), 0U);
}

TEST_F(SnmpHostileTest, ValuesOfOddTypes) {
    const std::vector<std::pair<std::string, std::string>> values{
        {thing(0x80, ""), "no such object"},
        {thing(0x81, ""), "no such instance"},
        {thing(0x82, ""), "end of mib"},
        {thing(0x05, ""), "null"},
        {thing(0x99, "abc"), "not printable (153)"},
        {thing(0x45, std::string("\x49\x00\x01", 3)), "73.0.1"},
        {thing(0x46, std::string(8, '\xFF')), "18446744073709551615"},
        {thing(0x47, std::string("\x00\xFF\xFF\xFF\xFE", 5)), "4294967294"},
        {thing(0x42, "\xFF\xFF\xFF\xFE"), "4294967294"}, // agents that forget the leading zero
        {thing(0x03, std::string("\x06\x80\x40", 3)), "06-80-40"},
        {thing(0x44, ""), "\"\""},
        {thing(0x40, "\x0A\x02"), "10.2"},
        {thing(0x04, "caf\xE9"), "63-61-66-E9"},
    };
    for (const auto& [value, text] : values) {
        const ScriptedAgent agent([&value = value](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
            self.send(asked, wireReply{asked.request.requestId, binding(value)}.bytes());
        });
        EXPECT_EQ(ask(agent).text, text);
    }
    const ScriptedAgent none([](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
        self.send(asked, wireReply{asked.request.requestId, ""}.bytes());
    });
    EXPECT_EQ(ask(none).kind, Kind::Failed) << "a reply without a value";
}

TEST_F(SnmpHostileTest, SixtyFourKilobytesOfBindings) {
    std::string bindings;
    std::size_t count = 0;
    for (; bindings.size() < 65400; ++count) {
        bindings += binding(thing(0x02, "\x07"));
    }
    const ScriptedAgent scripted([&](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
        self.send(asked, wireReply{asked.request.requestId, bindings}.bytes());
    });
    SNMPRemoteAgent agent(manager_, "127.0.0.1", "public", scripted.port());
    const SNMPObject object(upTime);
    SNMPRequest request(SnmpPduType::GetRequest, {&object, 1});
    request.Send(agent);
    request.Wait(30000);
    EXPECT_EQ(request.status(), SNMPRequest::Status::SUCCEEDED);
    EXPECT_EQ(request.responses().size(), count);
}

TEST_F(SnmpHostileTest, BitFlipsAreNeverTakenForAnotherRequest) {
    constexpr int times = 300;
    std::mt19937 random(7);
    const ScriptedAgent agent([&](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
        std::string bytes = wireReply{asked.request.requestId}.bytes();
        for (int flips = 0; flips < 4; ++flips) {
            std::string flipped = bytes;
            flipped[random() % flipped.size()] ^= static_cast<char>(1U << (random() % 8));
            self.send(asked, flipped);
        }
        self.send(asked, bytes);
    });
    for (int i = 0; i < times; ++i) {
        const SnmpAnswer answer = ask(agent);
        EXPECT_NE(answer.kind, Kind::TimedOut);
    }
    EXPECT_EQ(transport_.outstanding(), 0U);
    EXPECT_EQ(transport_.handlesInUse(), 0U);
}

TEST_F(SnmpHostileTest, AFloodDoesNotKeepTheRightReplyOut) {
    const ScriptedAgent agent([&](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
        for (int i = 1; i < 20000; ++i) {
            self.send(asked, wireReply{asked.request.requestId + i}.bytes());
            if (i % 100 == 0) { // informs that go all the way to the session
                self.send(asked, wireReply{asked.request.requestId, "", "public", 0xA6}.bytes());
            }
        }
        for (int i = 0; i < 100; ++i) { // the flood may push some out of the socket's buffer
            self.send(asked, wireReply{asked.request.requestId}.bytes());
            std::this_thread::yield();
        }
    });
    EXPECT_EQ(ask(agent).text, "0,0:0:0.250");
    EXPECT_EQ(transport_.outstanding(), 0U);
}

TEST_F(SnmpHostileTest, ALateReplyIsNobodys) {
    std::atomic<int> asked{0};
    std::mutex mutex;
    std::optional<ScriptedAgent::Asked> first;
    const ScriptedAgent scripted([&](ScriptedAgent& self, const ScriptedAgent::Asked& now) {
        const std::lock_guard lock(mutex);
        if (asked++ == 0) {
            first = now;
            return;
        }
        self.send(now, wireReply{first->request.requestId, binding(thing(0x02, "\x01"))}.bytes());
        self.send(now, wireReply{now.request.requestId}.bytes());
    });
    SNMPRemoteAgent agent(manager_, "127.0.0.1", "public", scripted.port());
    const SNMPObject object(upTime);
    SNMPRequest request(SnmpPduType::GetRequest, {&object, 1});
    request.Send(agent);
    request.Wait(200);
    EXPECT_EQ(request.status(), SNMPRequest::Status::TIMEDOUT);
    EXPECT_EQ(request.errorStatus(), 0);
    EXPECT_TRUE(request.responses().empty());
    request.Send(agent);
    request.Wait(30000);
    ASSERT_EQ(request.responses().size(), 1U);
    EXPECT_EQ(request.responses()[0].ValueText(), "0,0:0:0.250");
}

/// Replies race with time-outs, cancels, new sends and the end of agents and sessions; the sanitizers look
/// for what the assertions can't see.
TEST_F(SnmpHostileTest, RepliesThatMeetTheEndOfTheirRequest) {
    const ScriptedAgent scripted([](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
        self.send(asked, wireReply{asked.request.requestId}.bytes());
        self.send(asked, wireReply{asked.request.requestId}.bytes()); // and once too often
    });
    std::vector<std::jthread> threads;
    for (unsigned seed = 0; seed < 6; ++seed) {
        threads.emplace_back([&, seed] {
            std::mt19937 random(seed);
            for (int i = 0; i < 300; ++i) {
                auto session = std::make_unique<SNMPSession>(manager_);
                auto* agent =
                    new SNMPRemoteAgent(manager_, "127.0.0.1", "public", scripted.port(), session.get());
                const SNMPObject object(upTime);
                SNMPRequest request(SnmpPduType::GetRequest, {&object, 1});
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
    EXPECT_EQ(transport_.handlesInUse(), 0U);
}

/// A caller that waits may be the one who reads the sockets: for others too, and not for ever.
TEST_F(SnmpHostileTest, RepliesArriveWhoeverReads) {
    const test::LoopbackSocket silentHost;
    const ScriptedAgent scripted([](ScriptedAgent& self, const ScriptedAgent::Asked& asked) {
        self.send(asked, wireReply{asked.request.requestId}.bytes());
    });
    for (int i = 0; i < 50; ++i) { // one by one: callers come to read for themselves
        ASSERT_EQ(ask(scripted).text, "0,0:0:0.250");
    }
    std::stop_source stop;
    std::jthread reader([&] {
        const SnmpAnswer answer =
            probe_.SnmpGet({"127.0.0.1", "public", upTime, silentHost.port(), 60000}, stop.get_token());
        EXPECT_EQ(answer.kind, Kind::Stopped);
    });
    ASSERT_TRUE(silentHost.receive(30000));
    EXPECT_EQ(ask(scripted).kind, Kind::Value) << "while the other waits for a silent host";
    const auto stopped = std::chrono::steady_clock::now();
    stop.request_stop();
    reader.join();
    EXPECT_LT(std::chrono::steady_clock::now() - stopped, std::chrono::seconds(10));
    EXPECT_EQ(ask(scripted).kind, Kind::Value);

    SNMPRemoteAgent agent(manager_, "127.0.0.1", "public", scripted.port());
    const SNMPObject object(upTime);
    SNMPRequest unattended(SnmpPduType::GetRequest, {&object, 1});
    unattended.Send(agent);
    const auto deadline = stopped + std::chrono::seconds(60);
    while (unattended.status() == SNMPRequest::Status::ONGOING &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_EQ(unattended.status(), SNMPRequest::Status::SUCCEEDED) << "though nobody waits";
}

TEST_F(SnmpHostileTest, ThousandsOutstandingEachGetTheirOwn) {
    constexpr std::size_t count = 2000;
    constexpr std::size_t ahead = 100; // more would not fit into every socket's buffer
    const auto until = [](const auto& condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::yield();
        }
    };
    std::latch allSent(1);
    std::atomic<std::size_t> arrived{0};
    std::vector<ScriptedAgent::Asked> asked;
    const ScriptedAgent scripted([&](ScriptedAgent& self, const ScriptedAgent::Asked& now) {
        asked.push_back(now);
        if (++arrived < count) {
            return;
        }
        allSent.wait();
        for (std::size_t left = count; left > 0; --left) { // last one first
            const std::int32_t id = asked[left - 1].request.requestId;
            self.send(asked[left - 1], wireReply{id, binding(number(id))}.bytes());
            until([&] { return transport_.outstanding() < left + ahead; });
        }
    });
    SNMPRemoteAgent agent(manager_, "127.0.0.1", "public", scripted.port());
    const SNMPObject object(upTime);
    std::vector<std::unique_ptr<SNMPRequest>> requests;
    for (std::size_t i = 0; i < count; ++i) {
        requests.push_back(
            std::make_unique<SNMPRequest>(SnmpPduType::GetRequest, std::span<const SNMPObject>(&object, 1)));
        requests.back()->Send(agent);
        until([&] { return arrived + ahead > i; });
    }
    EXPECT_EQ(transport_.outstanding(), count);
    allSent.count_down();
    for (const auto& request : requests) {
        request->Wait(60000);
        ASSERT_EQ(request->status(), SNMPRequest::Status::SUCCEEDED);
        EXPECT_EQ(request->responses().at(0).ValueText(), std::to_string(request->requestId()));
    }
}

} // namespace
} // namespace mirovane
