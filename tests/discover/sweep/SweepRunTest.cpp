#include "discover/sweep/SweepRun.h"

#include "tests/support/ScriptedSweep.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Addresses = std::vector<std::uint32_t>;

CSweepPlan plan(const std::vector<std::pair<const char*, const char*>>& ranges, Addresses known = {}) {
    std::vector<AddressRange> parsed;
    for (const auto& [from, to] : ranges)
        parsed.push_back(makeRange(from, to).value());
    return {std::move(parsed), std::move(known)};
}

std::vector<std::string> addressesOf(const CSweepPlan& plan) {
    std::vector<std::string> texts;
    CSweepCursor cursor(plan);
    while (const auto address = cursor.next())
        texts.push_back(formatRangeAddress(*address));
    return texts;
}

TEST(SweepPlanTest, AsksEachAddressOnceHoweverTheRangesLie) {
    const CSweepPlan overlapping = plan({{"10.0.0.253", "10.0.1.1"},
                                         {"10.0.1.0", "10.0.1.3"},
                                         {"10.0.0.254", "10.0.0.254"},
                                         {"10.0.1.4", "10.0.1.4"},
                                         {"9.9.9.9", "9.9.9.9"}},
                                        {at("10.0.0.255"), at("10.0.1.2"), at("10.0.1.2"), at("10.0.2.2")});
    EXPECT_THAT(addressesOf(overlapping), ElementsAre("9.9.9.9", "10.0.0.253", "10.0.0.254", "10.0.1.0",
                                                      "10.0.1.1", "10.0.1.3", "10.0.1.4"));
    EXPECT_EQ(overlapping.addresses(), 9U);
    EXPECT_EQ(overlapping.toProbe(), 7U);
    EXPECT_EQ(overlapping.ranges().size(), 2U) << "neighbours are one range";
}

TEST(SweepPlanTest, KnowsTheEndsOfTheAddressSpace) {
    EXPECT_EQ(plan({{"0.0.0.0", "255.255.255.255"}}).toProbe(), 4'294'967'295U);
    EXPECT_THAT(addressesOf(plan({{"0.0.0.0", "0.0.0.1"},
                                  {"255.255.255.254", "255.255.255.255"},
                                  {"255.255.255.255", "255.255.255.255"}})),
                ElementsAre("0.0.0.1", "255.255.255.254", "255.255.255.255"));
    EXPECT_THAT(addressesOf(plan({{"0.0.0.0", "0.0.0.0"}})), IsEmpty()) << "it means this computer";
    EXPECT_THAT(addressesOf(CSweepPlan()), IsEmpty());
}

class SweepRunTest : public testing::Test {
protected:
    /// Lets the run go on until it is over, or until `enough` says so; returns how long that took.
    std::chrono::milliseconds pass(CSweepRun& run, const std::function<bool()>& enough = {}) {
        const auto begin = clock.monotonic();
        for (auto next = run.goOn(); next && !(enough && enough()); next = run.goOn()) {
            EXPECT_GT(*next, clock.monotonic()) << "it would spin";
            clock.advance(*next - clock.monotonic());
            network.deliver();
            for (const FoundHost& host : run.takeNews())
                found[host.address].push_back(host.name);
        }
        for (const FoundHost& host : run.takeNews())
            found[host.address].push_back(host.name);
        return std::chrono::duration_cast<std::chrono::milliseconds>(clock.monotonic() - begin);
    }

    Addresses sentAddresses() const {
        Addresses addresses;
        for (const auto& sent : network.sent)
            addresses.push_back(sent.address);
        return addresses;
    }

    FakeClock clock;
    ScriptedSweep network{clock};
    std::map<std::uint32_t, std::vector<std::string>> found; ///< what was told of each host, in order
};

TEST_F(SweepRunTest, ASilentNetworkTakesItsPaceAndOneTimeOut) {
    CSweepRun run(plan({{"10.0.0.1", "10.0.0.254"}}), {}, network, clock);
    const auto took = pass(run);
    EXPECT_GE(took, 5500ms);
    EXPECT_LE(took, 5600ms);
    EXPECT_THAT(found, IsEmpty());
    EXPECT_EQ(run.progress().sent, 254U);
    EXPECT_EQ(run.progress().ended, 254U);
}

TEST_F(SweepRunTest, EveryProbeLeavesAtItsPlannedMoment) {
    for (const int rate : {1, 333, 500, 10'000}) {
        network.sent.clear();
        const auto begin = clock.monotonic();
        CSweepRun run(plan({{"10.0.0.250", "10.0.1.200"}}), {rate, {}, 65'534}, network, clock);
        pass(run);
        ASSERT_EQ(network.sent.size(), 207U);
        const auto first = network.sent.front().when;
        for (std::size_t i = 0; i < network.sent.size(); ++i) {
            EXPECT_EQ(network.sent[i].address, at("10.0.0.250") + i);
            const auto planned = std::chrono::nanoseconds(1s) * i / rate;
            const auto late = network.sent[i].when - first - planned;
            EXPECT_GE(late, 0ns) << "probe " << i << " at " << rate;
            EXPECT_LE(late, 1ms + 1us) << "probe " << i << " at " << rate;
        }
        EXPECT_GT(clock.monotonic(), begin);
    }
}

TEST_F(SweepRunTest, CatchesUpAfterALateWakeUpButNotAfterAStandstill) {
    CSweepRun run(plan({{"10.0.0.1", "10.0.15.254"}}), {}, network, clock);
    run.goOn();
    clock.advance(200ms);
    run.goOn();
    EXPECT_EQ(network.sent.size(), 101U) << "as many as if it had never been late";
    clock.advance(1h);
    run.goOn();
    EXPECT_EQ(network.sent.size(), 102U) << "an hour's probes at once would be a flood";
    clock.advance(100ms);
    run.goOn();
    EXPECT_EQ(network.sent.size(), 152U);
}

TEST_F(SweepRunTest, FindsEveryHostOnceAndNamesIt) {
    network.lives = [](std::uint32_t address) {
        return address % 3 == 0;
    };
    for (std::uint32_t host = 0; host < 65536; host += 6)
        network.names[at("10.0.0.0") + host] = "host-" + std::to_string(host);
    CSweepRun run(plan({{"10.0.0.0", "10.0.15.255"}}), {10'000, {}, 65'534}, network, clock);
    const auto took = pass(run);
    EXPECT_LE(took, 2731 * 3000ms / 400 + 5100ms) << "the silent ones set the pace";
    std::size_t living = 0;
    for (std::uint32_t address = at("10.0.0.0"); address <= at("10.0.15.255"); ++address) {
        if (!network.lives(address))
            continue;
        ++living;
        const std::uint32_t offset = address - at("10.0.0.0");
        const bool named = network.names.contains(address);
        ASSERT_EQ(found[address].size(), named ? 2U : 1U) << formatRangeAddress(address);
        EXPECT_EQ(found[address].front(), "");
        if (named)
            EXPECT_EQ(found[address].back(), "host-" + std::to_string(offset));
    }
    EXPECT_EQ(found.size(), living);
    EXPECT_EQ(run.progress().found, living);
    EXPECT_LE(network.lookUpsAtOnce, CSweepNames::mostAtOnce);
}

/// Each silent address takes a place in the kernel's table of neighbours for 3 s, and others need that table.
TEST_F(SweepRunTest, ASilentNetworkNeverHasMoreThanItsWindowOut) {
    network.lives = [](std::uint32_t address) {
        return address < at("10.0.2.0");
    };
    CSweepRun run(plan({{"10.0.0.0", "10.0.7.255"}}), {10'000, {}, 65'534}, network, clock);
    pass(run);
    ASSERT_EQ(network.sent.size(), 2048U) << "each was asked, once";
    EXPECT_LE(network.sent[500].when, 200ms) << "quick where hosts answer";
    for (std::size_t i = 512 + 400; i < network.sent.size(); ++i)
        EXPECT_GE(network.sent[i].when - network.sent[i - 400].when, 3s) << i;
    EXPECT_LE(network.sent.back().when, 13s) << "as many as the window allows";
}

TEST_F(SweepRunTest, ADeadNameSystemHoldsTheSweepUpForSecondsOnly) {
    network.lives = [](std::uint32_t) {
        return true;
    };
    network.namesAnswer = false;
    CSweepRun run(plan({{"10.0.0.1", "10.0.3.254"}}), {}, network, clock);
    const auto took = pass(run);
    EXPECT_LE(took, 2044ms + 20ms + 2 * std::chrono::milliseconds(CSweepNames::patience));
    EXPECT_EQ(found.size(), 1022U) << "found without names";
    EXPECT_LE(network.lookUps, 100U) << "hanging look-ups keep threads";
}

TEST_F(SweepRunTest, SlowNamesAreWaitedForWhileTheyCome) {
    network.lives = [](std::uint32_t) {
        return true;
    };
    network.nameDelay = 5200ms; // the first name server is down, the second answers
    for (std::uint32_t host = 1; host <= 200; ++host)
        network.names[at("10.0.0.0") + host] = "named";
    CSweepRun run(plan({{"10.0.0.1", "10.0.0.200"}}), {}, network, clock);
    pass(run);
    for (const auto& [address, told] : found)
        EXPECT_THAT(told, ElementsAre("", "named")) << formatRangeAddress(address);
    EXPECT_EQ(found.size(), 200U);
}

TEST_F(SweepRunTest, NamesThatComeTooSlowlyAreNotWaitedForLongerThanAMinute) {
    network.lives = [](std::uint32_t) {
        return true;
    };
    network.nameDelay = 7s; // just patient enough not to be given up
    CSweepRun run(plan({{"10.0.0.1", "10.0.3.254"}}), {10'000, {}, 65'534}, network, clock);
    const auto took = pass(run);
    EXPECT_GE(took, 60s);
    EXPECT_LE(took, 61s);
    EXPECT_EQ(run.progress().lookedUp, network.lookUps - CSweepNames::mostAtOnce);
}

TEST_F(SweepRunTest, WhatCouldNotLeaveComesAgain) {
    network.lives = [](std::uint32_t) {
        return true;
    };
    network.refusals[at("10.0.0.5")] = 2;
    network.refusals[at("10.0.0.6")] = 1000;
    CSweepRun run(plan({{"10.0.0.1", "10.0.0.20"}}), {}, network, clock);
    pass(run);
    EXPECT_EQ(found.size(), 19U);
    EXPECT_TRUE(found.contains(at("10.0.0.5")));
    EXPECT_EQ(run.progress().failed, 1U);
    EXPECT_EQ(run.progress().failure, ENOBUFS);
    EXPECT_EQ(run.progress().sent, 20U);
    EXPECT_EQ(run.progress().ended, 20U);
    EXPECT_LE(network.sent.size(), 20U + 2 + 4) << "a few times only";
}

TEST_F(SweepRunTest, ANetworkWithoutARouteIsToldNotTriedAgain) {
    network.refusal = ENETUNREACH;
    for (std::uint32_t host = 1; host <= 9; ++host)
        network.refusals[at("10.0.0.0") + host] = 1000;
    CSweepRun run(plan({{"10.0.0.1", "10.0.0.9"}}), {}, network, clock);
    pass(run);
    EXPECT_EQ(network.sent.size(), 9U);
    EXPECT_EQ(run.progress().failed, 9U);
    EXPECT_EQ(run.progress().failure, ENETUNREACH);
}

TEST_F(SweepRunTest, EndsWhenTheDatafileWouldBeFull) {
    network.lives = [](std::uint32_t) {
        return true;
    };
    CSweepRun run(plan({{"10.0.0.1", "10.255.255.254"}}), {usualSweepRate, {}, 300}, network, clock);
    const auto took = pass(run);
    EXPECT_EQ(found.size(), 300U);
    EXPECT_TRUE(run.progress().full);
    EXPECT_LE(took, 1s);
}

TEST_F(SweepRunTest, LateAnswersOfAnAbandonedSweepAreIgnored) {
    network.lives = [](std::uint32_t) {
        return true;
    };
    {
        CSweepRun run(plan({{"10.0.0.1", "10.0.0.200"}}), {}, network, clock);
        pass(run, [&] { return network.sent.size() >= 50; });
        EXPECT_GT(run.progress().left, 5s);
    }
    const std::size_t before = found.size();
    clock.advance(10s);
    network.deliver(); // to a run that is gone
    EXPECT_EQ(found.size(), before);
}

} // namespace
} // namespace mirovane::test
