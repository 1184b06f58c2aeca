#include "probes/icmp/EchoTraffic.h"

#include "tests/support/FakeTime.h"

#include <algorithm>
#include <cerrno>
#include <gtest/gtest.h>
#include <netinet/ip_icmp.h>
#include <set>

namespace mirovane {
namespace {

using std::chrono::milliseconds;

constexpr std::uint32_t forbidden = 99; ///< an address that a filter of this computer does not let through

/// A socket in simulated time: keeps what is sent, hands out what the test puts into its receive buffer.
class FakeSocket final : public EchoSocket {
public:
    std::string kind() const override { return "fake"; }
    std::size_t receiveCapacity() const override { return capacity; }
    int descriptor() const override { return -1; }

    std::size_t send(std::span<const EchoRequest> requests, int& error) override {
        if (refusal != 0 || requests.front().address == forbidden) {
            error = refusal != 0 ? refusal : EPERM;
            return 0;
        }
        const auto stop = std::find_if(
            requests.begin(), requests.begin() + static_cast<int>(std::min(requests.size(), mostAtOnce)),
            [](const EchoRequest& r) { return r.address == forbidden; });
        sent.insert(sent.end(), requests.begin(), stop);
        const auto count = static_cast<std::size_t>(stop - requests.begin());
        sentUnread += count;
        mostSentUnread = std::max(mostSentUnread, sentUnread);
        return count;
    }

    bool receive(std::vector<EchoArrival>& arrivals) override {
        ++readings;
        sentUnread = 0;
        const std::size_t count = std::min(buffer.size(), echoBatch);
        arrivals.insert(arrivals.end(), buffer.begin(), buffer.begin() + static_cast<int>(count));
        buffer.erase(buffer.begin(), buffer.begin() + static_cast<int>(count));
        if (afterReading)
            std::exchange(afterReading, nullptr)();
        return count == echoBatch;
    }

    std::size_t capacity = 10'000'000;
    std::size_t mostAtOnce = echoBatch; ///< the system takes no more with one call
    int refusal = 0;                    ///< the system takes nothing and says this
    std::function<void()> afterReading; ///< what happens just after the next reading

    std::vector<EchoRequest> sent;
    std::vector<EchoArrival> buffer;
    std::size_t sentUnread = 0;
    std::size_t mostSentUnread = 0;
    std::size_t readings = 0;
};

class EchoTrafficTest : public testing::Test {
protected:
    void order(std::vector<std::uint32_t> addresses, std::uint32_t timeoutMs) {
        EchoOptions options;
        options.timeoutMs = timeoutMs;
        traffic().add({std::move(addresses), options, [this](const EchoResult& result) {
                           results_.push_back(result);
                       }});
    }
    void orderMany(std::size_t count, std::uint32_t timeoutMs) {
        order(std::vector<std::uint32_t>(count, 1), timeoutMs);
    }

    /// Lets time pass, then the thread has its turn, as often as it wants one at once.
    void turnAfter(milliseconds span) {
        clock_.advance(span);
        do
            traffic().turn();
        while (traffic().pause() == milliseconds(0));
    }

    static EchoArrival reply(const EchoRequest& request, test::FakeClock& clock) {
        EchoMessage message;
        message.isReply = true;
        message.source = message.requestTarget = request.address;
        message.sequence = request.sequence;
        message.payloadSize = request.payloadSize;
        message.token = request.token;
        message.payloadRight = true;
        return {message, clock.monotonic()};
    }
    void answer(const EchoRequest& request) { socket_.buffer.push_back(reply(request, clock_)); }

    /// The kinds of all results so far; forgets them.
    std::vector<EchoKind> ended() {
        std::vector<EchoKind> kinds;
        for (const EchoResult& result : std::exchange(results_, {}))
            kinds.push_back(result.kind);
        return kinds;
    }

    CEchoTraffic& traffic() { // made late, so that a test can set the capacity
        if (!traffic_)
            traffic_.emplace(socket_, clock_);
        return *traffic_;
    }

    using Kinds = std::vector<EchoKind>;
    test::FakeClock clock_;
    FakeSocket socket_;
    std::vector<EchoResult> results_;
    std::optional<CEchoTraffic> traffic_;
};

TEST_F(EchoTrafficTest, ProbesEndAtTheirOwnDeadlineToTheMillisecond) {
    order({1}, 300);
    order({2}, 100);
    turnAfter(milliseconds(0));
    EXPECT_EQ(traffic().pause(), milliseconds(100)) << "the nearest deadline, not the first";
    turnAfter(milliseconds(99));
    EXPECT_EQ(ended(), Kinds{});
    clock_.advance(std::chrono::microseconds(500));
    EXPECT_EQ(traffic().pause(), milliseconds(1)) << "half a millisecond, rounded up";
    turnAfter(milliseconds(1));
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_.front().target, 2U);
    EXPECT_EQ(ended(), Kinds{EchoKind::TimedOut});
    turnAfter(milliseconds(200));
    EXPECT_EQ(ended(), Kinds{EchoKind::TimedOut});
    EXPECT_EQ(traffic().pause(), std::nullopt) << "nothing left to watch";
}

TEST_F(EchoTrafficTest, ReplyThatCameInTimeAndWasReadLateCounts) {
    order({1}, 100);
    turnAfter(milliseconds(0));
    clock_.advance(milliseconds(30));
    answer(socket_.sent.back());
    turnAfter(milliseconds(5000)); // the thread did not get to run
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_.front().roundTrip, milliseconds(30)) << "until it came, not until it was read";
    EXPECT_EQ(ended(), Kinds{EchoKind::Reply});

    orderMany(200, 100);
    turnAfter(milliseconds(0));
    for (std::size_t i = 1; i <= 200; ++i)
        answer(socket_.sent[i]);
    turnAfter(milliseconds(100));
    EXPECT_EQ(ended(), Kinds(200, EchoKind::Reply)) << "more than one reading takes";

    // It comes just after the buffer was read empty, and then the thread is kept waiting past the deadline.
    order({2}, 100);
    turnAfter(milliseconds(0));
    clock_.advance(milliseconds(99));
    socket_.afterReading = [this] {
        answer(socket_.sent.back());
        clock_.advance(milliseconds(50));
    };
    turnAfter(milliseconds(0));
    turnAfter(milliseconds(0));
    EXPECT_EQ(ended(), Kinds{EchoKind::Reply});
}

TEST_F(EchoTrafficTest, LateDoubledAndForeignRepliesEndNothing) {
    order({1}, 100);
    turnAfter(milliseconds(0));
    const EchoRequest late = socket_.sent.back();
    turnAfter(milliseconds(100));
    EXPECT_EQ(ended(), Kinds{EchoKind::TimedOut});

    order({1}, 100);
    turnAfter(milliseconds(0));
    answer(late);
    EchoRequest foreign = socket_.sent.back();
    foreign.address = 2;
    ++foreign.token;
    answer(foreign);
    turnAfter(milliseconds(1));
    EXPECT_EQ(ended(), Kinds{});
    answer(socket_.sent.back());
    answer(socket_.sent.back());
    turnAfter(milliseconds(1));
    EXPECT_EQ(ended(), Kinds{EchoKind::Reply});
}

TEST_F(EchoTrafficTest, RoundTripIsNeverNegative) {
    clock_.advance(milliseconds(10));
    order({1}, 100);
    turnAfter(milliseconds(0));
    EchoArrival early = reply(socket_.sent.back(), clock_);
    early.at -= milliseconds(3); // the two clocks behind a time stamp disagree a little
    socket_.buffer.push_back(early);
    turnAfter(milliseconds(1));
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_.front().roundTrip.count(), 0);
}

TEST_F(EchoTrafficTest, ErrorsEndTheirOwnRequestAndSayWhoSentThem) {
    order({1, 2, 3}, 100);
    turnAfter(milliseconds(0));
    EchoArrival error = reply(socket_.sent[1], clock_);
    error.message.isReply = false;
    error.message.source = 77;
    error.message.type = ICMP_DEST_UNREACH;
    error.message.code = ICMP_HOST_UNREACH;
    socket_.buffer.push_back(error);
    turnAfter(milliseconds(1));
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_.front().kind, EchoKind::Unreachable);
    EXPECT_EQ(results_.front().target, 2U);
    EXPECT_EQ(results_.front().reporter, 77U);
    EXPECT_EQ(results_.front().icmpType, ICMP_DEST_UNREACH);
    EXPECT_EQ(results_.front().icmpCode, ICMP_HOST_UNREACH);
}

TEST_F(EchoTrafficTest, SmallReceiveBufferIsNeverRunOver) {
    socket_.capacity = 184; // a normal user's: 46 at once, then 34.5 a millisecond
    for (int round = 0; round < 2; ++round) {
        socket_.sent.clear();
        orderMany(200, 100);
        std::vector<std::size_t> left;
        for (int ms = 0; ms < 6; ++ms) {
            turnAfter(milliseconds(ms == 0 ? 0 : 1));
            left.push_back(socket_.sent.size());
            if (socket_.sent.size() < 200)
                EXPECT_EQ(traffic().pause(), milliseconds(1));
        }
        EXPECT_EQ(left, (std::vector<std::size_t>{46, 80, 115, 149, 184, 200})) << "round " << round;
        turnAfter(milliseconds(99));
        EXPECT_EQ(ended().size(), 184U) << "the time-out counts from the moment of leaving";
        turnAfter(milliseconds(1));
        EXPECT_EQ(ended().size(), 16U);
        clock_.advance(std::chrono::hours(1)); // a rest is not saved up for a larger burst
    }
}

TEST_F(EchoTrafficTest, ReadsBetweenBatchesAndBetweenCallbacks) {
    orderMany(300, 100);
    turnAfter(milliseconds(0));
    EXPECT_EQ(socket_.sent.size(), 300U);
    EXPECT_EQ(socket_.mostSentUnread, echoBatch);
    clock_.advance(milliseconds(100));
    const std::size_t before = socket_.readings;
    traffic().turn();
    EXPECT_EQ(ended().size(), 300U);
    EXPECT_EQ(socket_.readings - before, 1U + 300 / 16);
}

TEST_F(EchoTrafficTest, FullBuffersAreTriedAgainAndLoseNothing) {
    for (const int refusal : {EAGAIN, ENOBUFS, ENOMEM}) {
        socket_.sent.clear();
        socket_.mostAtOnce = 7;
        order({1, 2, forbidden, 3}, 100);
        socket_.refusal = refusal;
        turnAfter(milliseconds(0));
        EXPECT_EQ(traffic().pause(), milliseconds(refusal == ENOBUFS ? 20 : 1)) << "a full table stays full";
        turnAfter(milliseconds(20));
        turnAfter(milliseconds(25));
        EXPECT_EQ(ended(), Kinds{});
        socket_.refusal = 0;
        turnAfter(milliseconds(50)); // the longest pause
        EXPECT_EQ(socket_.sent.size(), 3U);
        EXPECT_EQ(results_.front().systemError, EPERM);
        EXPECT_EQ(ended(), Kinds{EchoKind::SendFailed}) << "only the one that a filter forbids";

        turnAfter(milliseconds(99));
        EXPECT_EQ(ended(), Kinds{}) << "the wait for the buffers is not taken from the time-out";
        for (const EchoRequest& request : socket_.sent)
            answer(request);
        turnAfter(milliseconds(0));
        EXPECT_EQ(ended(), Kinds(3, EchoKind::Reply));
        EXPECT_EQ(traffic().pause(), std::nullopt);
    }
}

TEST_F(EchoTrafficTest, BuffersThatStayFullAreTheReasonAtTheDeadline) {
    socket_.refusal = ENOBUFS;
    orderMany(150, 50);
    for (int ms = 0; ms <= 49; ++ms)
        turnAfter(milliseconds(1));
    EXPECT_EQ(ended(), Kinds{});
    for (int ms = 0; ms < 3; ++ms)
        turnAfter(milliseconds(1));
    ASSERT_EQ(results_.size(), 150U) << "those behind the first batch do not wait for ever either";
    EXPECT_EQ(results_.back().systemError, ENOBUFS);
    EXPECT_EQ(ended(), Kinds(150, EchoKind::SendFailed));

    socket_.refusal = 0;
    order({5}, 50);
    turnAfter(milliseconds(50));
    ASSERT_EQ(socket_.sent.size(), 1U) << "nothing of what has ended leaves late";
    answer(socket_.sent.back());
    turnAfter(milliseconds(1));
    EXPECT_EQ(ended(), Kinds{EchoKind::Reply});
}

TEST_F(EchoTrafficTest, AHostMayAnswerFromAnotherOfItsAddresses) {
    order({1, 2, 3}, 100);
    turnAfter(milliseconds(0));
    ASSERT_EQ(socket_.sent.size(), 3U);
    EchoRequest guessed = socket_.sent[0];
    ++guessed.token;
    answer(guessed); // from the right address, and late: an earlier request had this sequence number
    EchoRequest elsewhere = socket_.sent[1];
    elsewhere.address = 77;
    answer(elsewhere);
    elsewhere = socket_.sent[2];
    elsewhere.address = 77;
    ++elsewhere.token;
    answer(elsewhere);
    turnAfter(milliseconds(1));
    ASSERT_EQ(results_.size(), 1U) << "only who knows the number";
    EXPECT_EQ(results_[0].target, 2U);
    EXPECT_EQ(results_[0].reporter, 77U);
    EXPECT_EQ(ended(), Kinds{EchoKind::Reply});
}

TEST_F(EchoTrafficTest, SequenceNumbersHaveOneHolderAtATime) {
    constexpr std::size_t numbers = 65536;
    order({1}, 5000);
    orderMany(70000, 1000);
    turnAfter(milliseconds(0));
    ASSERT_EQ(socket_.sent.size(), numbers);
    std::set<std::uint16_t> used;
    for (const EchoRequest& request : socket_.sent)
        used.insert(request.sequence);
    EXPECT_EQ(used.size(), numbers);
    EXPECT_EQ(traffic().pause(), milliseconds(1000)) << "those in line wait for a number, not for the clock";

    answer(socket_.sent[40000]);
    turnAfter(milliseconds(1));
    ASSERT_EQ(socket_.sent.size(), numbers + 1);
    EXPECT_EQ(socket_.sent.back().sequence, socket_.sent[40000].sequence) << "the only free one";

    turnAfter(milliseconds(999));
    ASSERT_EQ(socket_.sent.size(), 70001U);
    for (std::size_t i = numbers; i < socket_.sent.size(); ++i)
        EXPECT_NE(socket_.sent[i].sequence, socket_.sent.front().sequence) << "still waits for its reply";
    turnAfter(milliseconds(4000));
    EXPECT_EQ(ended().size(), 70001U);
}

TEST_F(EchoTrafficTest, NumbersGoRoundInsteadOfComingBackAtOnce) {
    std::set<std::uint16_t> used;
    for (int i = 0; i < 1000; ++i) {
        order({1}, 100);
        turnAfter(milliseconds(0));
        used.insert(socket_.sent.back().sequence);
        answer(socket_.sent.back());
        turnAfter(milliseconds(0));
    }
    EXPECT_EQ(used.size(), 1000U);
}

TEST_F(EchoTrafficTest, NoRequestGoesToNoAddress) {
    order({}, 100);
    order({0, 1}, 100);
    turnAfter(milliseconds(0));
    ASSERT_EQ(socket_.sent.size(), 1U) << "the system would send it to this computer itself";
    EXPECT_EQ(socket_.sent.front().address, 1U);
    ASSERT_EQ(results_.size(), 1U);
    EXPECT_EQ(results_.front().kind, EchoKind::SendFailed);
    EXPECT_EQ(results_.front().systemError, EDESTADDRREQ);
}

TEST_F(EchoTrafficTest, StoppingEndsEachRequestOnceWhereverItIs) {
    socket_.capacity = 40; // ten leave at once
    orderMany(10, 100);
    turnAfter(milliseconds(0));
    socket_.refusal = EAGAIN;
    orderMany(100, 100);
    turnAfter(milliseconds(1)); // 64 are refused, the rest is in line
    traffic().stopAll();
    EXPECT_EQ(ended(), Kinds(110, EchoKind::Stopped));
    EXPECT_EQ(socket_.sent.size(), 10U);
}

} // namespace
} // namespace mirovane
