#include "probes/SystemHostProbes.h"
#include "tests/probes/EchoFixture.h"

#include <grp.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <thread>

namespace mirovane {
namespace {

/// Runs `body` in a network namespace of its own as a user without any privilege. Only this one thread and
/// those that it starts give theirs up. Tells why that is not possible.
std::optional<std::string> asOrdinaryUser(const char* pingGroups, const std::function<void()>& body) {
    std::optional<std::string> refused;
    std::thread([&] {
        const OwnNetwork network;
        refused = network.refused();
        if (refused) {
            return;
        }
        OwnNetwork::set("ipv4/ping_group_range", pingGroups);
        constexpr long nobody = 65534;
        if (::syscall(SYS_setgroups, 0, nullptr) != 0 ||
            ::syscall(SYS_setresgid, nobody, nobody, nobody) != 0 ||
            ::syscall(SYS_setresuid, nobody, nobody, nobody) != 0) {
            refused = std::string("can't become an ordinary user: ") + std::strerror(errno);
            return;
        }
        body();
    }).join();
    return refused;
}

TEST(EchoSocket, OrdinaryUserPingsWhereTheGroupRangeAllowsIt) {
    const auto refused = asOrdinaryUser("0 2147483647", [] {
        SystemHostProbes probes;
        EXPECT_EQ(probes.echoUnusable(), std::nullopt);
        EXPECT_EQ(probes.socketKind(), "unprivileged ICMP socket");
        PingReply reply;
        std::optional<std::uint32_t> resolved;
        EXPECT_TRUE(probes.PingHost("127.1.2.3", reply, resolved, 10, 5000, 32, {}));
        EXPECT_EQ(reply.address, addressOf("127.1.2.3"));
    });
    if (refused) {
        GTEST_SKIP() << *refused;
    }
}

TEST(EchoSocket, OrdinaryUserWithoutPermissionIsToldTheRemedyOnce) {
    const auto refused = asOrdinaryUser("1 0", [] {
        SystemHostProbes probes;
        PingReply reply;
        std::optional<std::uint32_t> resolved;
        EXPECT_FALSE(probes.PingHost("127.0.0.1", reply, resolved, 10, 5000, 32, {}));
        const std::string reason = probes.echoUnusable().value_or("");
        EXPECT_NE(reason.find("setcap cap_net_raw+ep /"), std::string::npos) << reason;
        EXPECT_NE(reason.find("net.ipv4.ping_group_range"), std::string::npos) << reason;
        EXPECT_EQ(reason.find('\n'), std::string::npos);
        EXPECT_EQ(probes.socketKind(), "none");
        EXPECT_EQ(probes.ping("127.0.0.1", {}, {}).echo.kind, EchoKind::NotPermitted);
    });
    if (refused) {
        GTEST_SKIP() << *refused;
    }
}

TEST(EchoSocket, FailedStartUpIsNotTriedAgain) {
    std::atomic<int> attempts{0};
    IcmpEngine engine([&] {
        ++attempts;
        return EchoSocketOpening{nullptr, "no"};
    });
    std::vector<std::jthread> callers;
    for (int i = 0; i < 20; ++i) {
        callers.emplace_back([&] {
            EXPECT_EQ(engine.echo(addressOf("127.0.0.1"), {}, {}).kind, EchoKind::NotPermitted);
            EXPECT_EQ(engine.unusable(), "no");
        });
    }
    callers.clear();
    EXPECT_EQ(attempts, 1);
}

constexpr const char* forbidden = "10.0.0.99"; ///< by a local filter

/// A network device with full buffers: refuses a number of requests in a row before it takes the next.
/// Whatever it takes is answered.
class ReluctantSocket final : public EchoSocket {
public:
    ReluctantSocket(int refusals, int refusal, std::size_t capacity)
        : refusals_(refusals), refusalsEach_(refusals), refusal_(refusal), capacity_(capacity) {}

    std::string kind() const override { return "reluctant"; }
    std::size_t receiveCapacity() const override { return capacity_; }
    int descriptor() const override { return arrived_.get(); }

    std::size_t send(std::span<const EchoRequest> requests, int& error) override {
        const std::lock_guard lock(mutex_);
        if (requests.front().address == addressOf(forbidden)) {
            error = EPERM;
            return 0;
        }
        if (refusals_ > 0) {
            --refusals_;
            error = refusal_;
            return 0;
        }
        refusals_ = refusalsEach_;
        answer(requests.front());
        return 1;
    }

    bool receive(std::vector<EchoArrival>& arrivals) override {
        const std::lock_guard lock(mutex_);
        std::uint64_t count = 0;
        [[maybe_unused]] const auto read = ::read(arrived_.get(), &count, sizeof count);
        arrivals.insert(arrivals.end(), answers_.begin(), answers_.end());
        answers_.clear();
        return false;
    }

private:
    void answer(const EchoRequest& request) {
        EchoMessage message;
        message.isReply = true;
        message.source = message.requestTarget = request.address;
        message.sequence = request.sequence;
        message.payloadSize = request.payloadSize;
        message.payloadRight = true;
        answers_.push_back({message, std::chrono::steady_clock::now()});
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(arrived_.get(), &one, sizeof one);
    }

    std::mutex mutex_;
    std::vector<EchoArrival> answers_;
    int refusals_;
    const int refusalsEach_;
    const int refusal_;
    const std::size_t capacity_;
    Descriptor arrived_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
};

EchoSocketOpener reluctant(int refusals, int refusal, std::size_t capacity = 100000) {
    return [=] {
        return EchoSocketOpening{std::make_unique<ReluctantSocket>(refusals, refusal, capacity), {}};
    };
}

TEST(EchoSocket, FullBuffersLoseNoProbe) {
    for (const int refusal : {EAGAIN, ENOBUFS, ENOMEM}) {
        IcmpEngine engine(reluctant(2, refusal));
        std::vector<std::uint32_t> addresses(100, addressOf("10.0.0.1"));
        addresses[50] = addressOf(forbidden);
        Results results;
        engine.startAll(addresses, within(30000), results.callback());
        EXPECT_EQ(results.waitFor(100).size(), 100U);
        EXPECT_EQ(results.count(EchoKind::Reply), 99U);
        EXPECT_EQ(results.count(EchoKind::SendFailed), 1U) << "only the one that a filter forbids";
    }
}

TEST(EchoSocket, SmallReceiveBufferSlowsSendingButCutsNoTimeOut) {
    // Two at once, then three in two milliseconds: far longer than the time-out, which counts from the
    // sending.
    IcmpEngine engine(reluctant(0, 0, 8));
    Results results;
    const auto begin = std::chrono::steady_clock::now();
    engine.startAll(std::vector<std::uint32_t>(450, addressOf("10.0.0.1")), within(100), results.callback());
    EXPECT_EQ(results.waitFor(450).size(), 450U);
    EXPECT_EQ(results.count(EchoKind::Reply), 450U);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(250));
}

TEST(EchoSocket, BuffersThatStayFullAreTheReasonAtTheDeadline) {
    IcmpEngine engine(reluctant(1000000, ENOBUFS));
    const EchoResult result = engine.echo(addressOf("10.0.0.1"), within(50), {});
    EXPECT_EQ(result.kind, EchoKind::SendFailed);
    EXPECT_EQ(result.systemError, ENOBUFS);
}

} // namespace
} // namespace mirovane
