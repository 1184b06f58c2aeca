#include "probes/SystemHostProbes.h"
#include "tests/probes/icmp/EchoFixture.h"

#include <grp.h>
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
        if (refused)
            return;
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

TEST(EchoSocketTest, OrdinaryUserPingsWhereTheGroupRangeAllowsIt) {
    const auto refused = asOrdinaryUser("0 2147483647", [] {
        CSystemHostProbes probes;
        EXPECT_EQ(probes.echoUnusable(), std::nullopt);
        EXPECT_EQ(probes.socketKind(), "unprivileged ICMP socket");
        PingReply reply;
        std::optional<std::uint32_t> resolved;
        EXPECT_TRUE(probes.PingHost("127.1.2.3", reply, resolved, 10, 5000, 32, {}).isYes());
        EXPECT_EQ(reply.address, addressOf("127.1.2.3"));
    });
    if (refused)
        GTEST_SKIP() << *refused;
}

TEST(EchoSocketTest, OrdinaryUserWithoutPermissionIsToldTheRemedyOnce) {
    const auto refused = asOrdinaryUser("1 0", [] {
        CSystemHostProbes probes;
        PingReply reply;
        std::optional<std::uint32_t> resolved;
        EXPECT_FALSE(probes.PingHost("127.0.0.1", reply, resolved, 10, 5000, 32, {}).isYes());
        const std::string reason = probes.echoUnusable().value_or("");
        EXPECT_NE(reason.find("setcap cap_net_raw+ep /"), std::string::npos) << reason;
        EXPECT_NE(reason.find("net.ipv4.ping_group_range"), std::string::npos) << reason;
        EXPECT_EQ(reason.find('\n'), std::string::npos);
        EXPECT_EQ(probes.socketKind(), "none");
        EXPECT_EQ(probes.ping("127.0.0.1", {}, {}).echo.kind, EchoKind::NotPermitted);
    });
    if (refused)
        GTEST_SKIP() << *refused;
}

TEST(EchoSocketTest, FailedStartUpIsNotTriedAgain) {
    std::atomic<int> attempts{0};
    CIcmpEngine engine([&] {
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

} // namespace
} // namespace mirovane
