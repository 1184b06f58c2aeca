#include <gtest/gtest.h>

#include "probes/HostAddress.h"
#include "probes/SystemHostProbes.h"

namespace mirovane {
namespace {

TEST(IcmpEngine, LoopbackAnswers) {
    SystemHostProbes probes;
    if (const auto reason = probes.echoUnusable()) {
        GTEST_SKIP() << *reason;
    }
    PingReply reply;
    std::optional<std::uint32_t> resolved;
    EXPECT_TRUE(probes.PingHost("127.0.0.9", reply, resolved, 10, 5000, 32, {}));
    EXPECT_EQ(formatAddress(reply.address), "127.0.0.9");
    EXPECT_FALSE(resolved);
    EXPECT_TRUE(probes.PingHost("localhost", reply, resolved, 10, 5000, 32, {}));
    EXPECT_EQ(resolved, parseDottedAddress("127.0.0.1"));
    EXPECT_FALSE(probes.PingHost("127.255.255.255", reply, resolved, 10, 5000, 32, {}));
    const auto o = probes.ping("127.255.255.255", {}, {});
    std::printf("%s\n%s\n", probes.socketKind().c_str(), describePing("x", o, {}).c_str());
}

} // namespace
} // namespace mirovane
