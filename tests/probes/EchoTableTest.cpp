#include "probes/EchoTable.h"

#include <gtest/gtest.h>
#include <set>

namespace mirovane {
namespace {

using Time = EchoTable::Time;
using std::chrono::milliseconds;

const Time start{};

EchoTable::Added add(EchoTable& table, std::uint32_t timeoutMs, Time now = start, std::uint32_t address = 1) {
    EchoOptions options;
    options.timeoutMs = timeoutMs;
    return table.add(address, options, nullptr, now);
}

EchoArrival replyFor(const EchoRequest& request, Time at) {
    EchoMessage message;
    message.isReply = true;
    message.source = message.requestTarget = request.address;
    message.sequence = request.sequence;
    message.payloadSize = request.payloadSize;
    message.payloadRight = true;
    return {message, at};
}

TEST(EchoTable, NumbersInFlightAreNeverGivenTwice) {
    EchoTable table(8);
    const auto held = add(table, 1000);
    std::set<std::uint16_t> others;
    for (int i = 0; i < 50; ++i) {
        const auto added = add(table, 1000);
        EXPECT_NE(added.request->sequence, held.request->sequence);
        others.insert(added.request->sequence);
        EXPECT_TRUE(table.match(replyFor(*added.request, start)));
        EXPECT_FALSE(table.match(replyFor(*added.request, start))) << "a duplicate";
    }
    EXPECT_EQ(others.size(), 7U) << "numbers go round instead of coming back at once";
}

TEST(EchoTable, ProbesEndInTheOrderOfTheirDeadlines) {
    EchoTable table;
    add(table, 300, start, 3);
    const auto answered = add(table, 50, start, 9);
    add(table, 100, start, 1);
    add(table, 200, start, 2);
    EXPECT_TRUE(table.match(replyFor(*answered.request, start)));
    EXPECT_EQ(table.nextDeadline(), start + milliseconds(100));
    EXPECT_FALSE(table.expireOne(start + milliseconds(99)));
    for (std::uint32_t address = 1; address <= 3; ++address) {
        const auto ended = table.expireOne(start + milliseconds(300));
        ASSERT_TRUE(ended);
        EXPECT_EQ(ended->result.target, address);
        EXPECT_EQ(ended->result.kind, EchoKind::TimedOut);
    }
    EXPECT_EQ(table.nextDeadline(), std::nullopt);
    EXPECT_EQ(table.inFlight(), 0U);
}

TEST(EchoTable, AnsweredProbesLeaveNoDeadlinesBehind) {
    EchoTable table;
    for (int i = 0; i < 200000; ++i) {
        const auto added = add(table, 5000, start + milliseconds(i));
        EXPECT_TRUE(table.match(replyFor(*added.request, start + milliseconds(i + 2))));
    }
    EXPECT_EQ(table.nextDeadline(), std::nullopt);
}

TEST(EchoTable, ProbesInLineGetTheirWholeTimeOut) {
    EchoTable table(2);
    const auto first = add(table, 100);
    add(table, 100);
    const auto third = add(table, 100);
    const auto fourth = add(table, 100);
    EXPECT_FALSE(third.request);
    EXPECT_FALSE(table.admitOne(start)) << "no number is free";
    EXPECT_EQ(table.inLine(), 2U);

    EXPECT_TRUE(table.match(replyFor(*first.request, start)));
    const Time later = start + milliseconds(70);
    const auto admitted = table.admitOne(later);
    ASSERT_TRUE(admitted);
    EXPECT_EQ(table.holder(admitted->sequence), third.id) << "first come, first served";
    EXPECT_TRUE(table.expireOne(start + milliseconds(100)));
    EXPECT_FALSE(table.expireOne(start + milliseconds(169)));

    EXPECT_TRUE(table.end(third.id, EchoKind::Stopped)) << "found although it has changed its place";
    EXPECT_FALSE(table.end(third.id, EchoKind::Stopped));
    EXPECT_TRUE(table.end(fourth.id, EchoKind::Stopped)) << "found in the line";
    EXPECT_FALSE(table.endAny());
}

TEST(EchoTable, RoundTripIsNeverNegative) {
    EchoTable table;
    const auto added = add(table, 100, start + milliseconds(10));
    const auto ended = table.match(replyFor(*added.request, start));
    ASSERT_TRUE(ended);
    EXPECT_EQ(ended->result.roundTrip.count(), 0);
}

} // namespace
} // namespace mirovane
