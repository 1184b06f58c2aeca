#include "tests/probes/icmp/EchoFixture.h"

#include <condition_variable>
#include <cstdio>
#include <latch>
#include <list>
#include <thread>

namespace mirovane {
namespace {

/// A computer of its own: a thread in a network namespace of its own, for as long as this object lives.
/// Commands run inside it.
class Computer {
public:
    Computer() {
        std::latch ready(1);
        thread_ = std::jthread([this, &ready](std::stop_token stop) {
            const OwnNetwork network;
            refused_ = network.refused();
            if (!refused_)
                OwnNetwork::set("ipv4/ip_forward", "1");
            threadId_ = ::gettid();
            ready.count_down();
            std::mutex mutex;
            std::unique_lock lock(mutex);
            std::condition_variable_any stopped;
            stopped.wait(lock, stop, [] { return false; });
        });
        ready.wait();
    }

    int threadId() const { return threadId_; }
    const std::optional<std::string>& refused() const { return refused_; }

    /// Lines for the ip command.
    bool ip(const std::string& lines) const {
        const std::string command = "nsenter --net=/proc/" + std::to_string(::getpid()) + "/task/" +
                                    std::to_string(threadId_) + "/ns/net ip -batch -";
        FILE* pipe = ::popen(command.c_str(), "w");
        if (pipe == nullptr)
            return false;
        std::fputs(lines.c_str(), pipe);
        return ::pclose(pipe) == 0;
    }

private:
    int threadId_ = 0;
    std::optional<std::string> refused_;
    std::jthread thread_;
};

/// A line of computers, each a router for its neighbours. Computer k reaches k + 1 over the
/// network 10.88.k.0/24, in which k is .1 and k + 1 is .2.
class Line {
public:
    explicit Line(int length) {
        for (int k = 0; k < length; ++k)
            computers_.emplace_back();
        auto next = std::next(computers_.begin());
        for (int k = 0; next != computers_.end(); ++k, ++next)
            built_ = built_ && connect(*std::prev(next), *next, k);
    }

    bool built() const { return built_; }
    const Computer& first() const { return computers_.front(); }
    const Computer& last() const { return computers_.back(); }

private:
    static bool connect(const Computer& from, const Computer& to, int k) {
        const std::string network = "10.88." + std::to_string(k) + ".";
        return from.ip("link add right type veth peer name left netns " + std::to_string(to.threadId()) +
                       "\n" + "addr add " + network + "1/24 dev right\nlink set right up\n") &&
               to.ip("addr add " + network + "2/24 dev left\nlink set left up\n" + wayBack(network, k)) &&
               from.ip("route add 10.88.0.0/16 via " + network + "2\n");
    }

    static std::string wayBack(const std::string& network, int k) {
        std::string lines;
        for (int j = 0; j < k; ++j)
            lines += "route add 10.88." + std::to_string(j) + ".0/24 via " + network + "1\n";
        return lines;
    }

    std::list<Computer> computers_;
    bool built_ = true;
};

/// The thread's namespace is the one of `computer` until the end of this object.
class Inside {
public:
    explicit Inside(const Computer& computer)
        : before_(::open("/proc/thread-self/ns/net", O_RDONLY | O_CLOEXEC)),
          there_(::open(("/proc/self/task/" + std::to_string(computer.threadId()) + "/ns/net").c_str(),
                        O_RDONLY | O_CLOEXEC)) {
        entered_ = ::setns(there_.get(), CLONE_NEWNET) == 0;
    }
    ~Inside() { ::setns(before_.get(), CLONE_NEWNET); }

    bool entered() const { return entered_; }

private:
    CDescriptor before_;
    CDescriptor there_;
    bool entered_ = false;
};

class EchoRoutersTest : public testing::TestWithParam<const char*> {
protected:
    /// Sets up a line of computers with the engine on the first one.
    void build(int length) {
        line_.emplace(length);
        if (line_->first().refused())
            GTEST_SKIP() << *line_->first().refused();
        if (!line_->built())
            GTEST_SKIP() << "needs the programs nsenter and ip and virtual Ethernet devices";
        inside_.emplace(line_->first());
        ASSERT_TRUE(inside_->entered());
        ASSERT_TRUE(OwnNetwork::set("ipv4/ping_group_range", "0 2147483647"));
        engine_.emplace(std::string(GetParam()) == "raw" ? openRawEchoSocket : openDatagramEchoSocket);
    }

    EchoResult echo(const std::string& address, std::uint32_t timeoutMs = 10000) {
        return engine_->echo(addressOf(address), within(timeoutMs), {});
    }

    std::optional<Line> line_;
    std::optional<Inside> inside_;
    std::optional<CIcmpEngine> engine_;
};

INSTANTIATE_TEST_SUITE_P(Socket, EchoRoutersTest, testing::Values("raw", "datagram"),
                         [](const auto& kind) { return std::string(kind.param); });

TEST_P(EchoRoutersTest, TenRoutersAreTooMany) {
    build(12);
    if (!engine_)
        return;
    EXPECT_EQ(echo("10.88.9.2").kind, EchoKind::Reply) << "behind nine routers";
    const EchoResult tooFar = echo("10.88.10.2");
    EXPECT_EQ(tooFar.kind, EchoKind::TtlExpired) << "behind ten";
    EXPECT_EQ(formatAddress(tooFar.reporter), "10.88.9.2");
}

TEST_P(EchoRoutersTest, RoutersThatRefuseEndTheProbeAtOnce) {
    build(2);
    if (!engine_)
        return;
    ASSERT_TRUE(line_->first().ip("route add 10.98.0.0/15 via 10.88.0.2\n"));
    ASSERT_TRUE(line_->last().ip("route add unreachable 10.98.0.0/16\nroute add prohibit 10.99.0.0/16\n"));
    EXPECT_EQ(describeEcho(echo("10.98.0.1"), {}), "host unreachable, says 10.88.0.2");
    // The router may be slow to say so again: the kernel limits how many errors it sends.
    const EchoResult forbidden = echo("10.99.0.1", 1000);
    EXPECT_TRUE(forbidden.kind == EchoKind::Unreachable || forbidden.kind == EchoKind::TimedOut);
    EXPECT_EQ(echo("10.88.0.2").kind, EchoKind::Reply) << "the error of one probe is not another one's";
}

TEST_P(EchoRoutersTest, OwnAddressAnsweringForASilentNeighbourIsNoReply) {
    build(2);
    if (!engine_)
        return;
    ASSERT_TRUE(OwnNetwork::set("ipv4/neigh/right/retrans_time_ms", "20"));
    const EchoResult nobody = echo("10.88.0.77");
    EXPECT_EQ(nobody.kind, EchoKind::Unreachable);
    EXPECT_EQ(formatAddress(nobody.reporter), "10.88.0.1") << "this computer itself reports it";
}

TEST_P(EchoRoutersTest, HostWhoseCableIsPulledAndPluggedIn) {
    build(2);
    if (!engine_)
        return;
    EXPECT_TRUE(echo("10.88.0.2").answered());
    ASSERT_TRUE(line_->last().ip("link set left down\n"));
    EXPECT_FALSE(echo("10.88.0.2", 200).answered());
    ASSERT_TRUE(line_->last().ip("link set left up\n"));
    bool answered = false;
    for (int attempt = 0; attempt < 50 && !answered; ++attempt) // the link needs a moment
        answered = echo("10.88.0.2", 200).answered();
    EXPECT_TRUE(answered);
}

} // namespace
} // namespace mirovane
