#include "tests/cli/CliRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sstream>
#include <unistd.h>

namespace mirovane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> found;
    for (std::size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1)
        found.push_back(text.substr(at, end - at));
    return found;
}

/// The host of a line "HOST 127.x.y.z 0.06 ms"; empty for any other line.
std::string answeringHost(const std::string& line) {
    std::istringstream words(line);
    std::string host, address, unit;
    double time = -1;
    words >> host >> address >> time >> unit;
    return words && address.starts_with("127.") && time >= 0 && unit == "ms" ? host : std::string();
}

TEST(PingCommandTest, OneLineForEachHostInTheOrderGiven) {
    if (cli({"ping", "127.0.0.1"}).status != 0)
        GTEST_SKIP() << "this process may not send echoes: " << cli({"ping", "-v", "127.0.0.1"}).out;
    const CliResult all = cli({"ping", "127.0.0.3", "localhost", "127.0.0.2"});
    EXPECT_EQ(all.status, 0);
    EXPECT_THAT(all.err, IsEmpty());
    std::vector<std::string> hosts;
    for (const std::string& line : lines(all.out))
        hosts.push_back(answeringHost(line));
    EXPECT_THAT(hosts, testing::ElementsAre("127.0.0.3", "localhost", "127.0.0.2"));

    const CliResult some =
        cli({"ping", "-v", "127.255.255.255", "10.1", std::string(10000, 'h'), "127.0.0.1"});
    EXPECT_EQ(some.status, 1);
    const auto found = lines(some.out);
    ASSERT_EQ(found.size(), 5U);
    EXPECT_THAT(found[0], StartsWith("socket: "));
    EXPECT_THAT(found[1], StartsWith("127.255.255.255 127.255.255.255 "));
    EXPECT_EQ(found[2], "10.1 - this can't be the name of a host")
        << "half an address must not reach anybody";
    EXPECT_THAT(found[3], HasSubstr("hhh - this can't be the name of a host"));
    EXPECT_EQ(answeringHost(found[4]), "127.0.0.1");
}

TEST(PingCommandTest, ANameThatWasNotLookedUpIsNotCalledUnknown) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs root, to give the right to send echoes away";
    const auto withoutTheRight = [] {
        if (::unshare(CLONE_NEWNET) != 0 || ::setgid(65534) != 0 || ::setuid(65534) != 0)
            ::_exit(126);
    };
    const CliResult result = cli({"ping", "localhost"}, withoutTheRight);
    if (result.status > 1)
        GTEST_SKIP() << "no network of its own, or the build folder is closed to the user \"nobody\"";
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, StartsWith("localhost - Ping is not p"));
}

TEST(LookupCommandTest, BothWays) {
    const CliResult result = cli({"lookup", "localhost", "no such host", "127.0.0.1"});
    EXPECT_EQ(result.status, 1);
    const auto found = lines(result.out);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0], "localhost 127.0.0.1");
    EXPECT_THAT(found[1], AllOf(StartsWith("127.0.0.1 "), HasSubstr("localhost")));
    EXPECT_EQ(result.err, "mirovanectl: cannot look up no such host: this can't be the name of a host\n");
    EXPECT_EQ(cli({"lookup", "localhost"}).status, 0);
}

} // namespace
} // namespace mirovane::test
