#include "probes/names/Resolver.h"

#include "probes/SystemHostProbes.h"
#include "tests/probes/icmp/EchoFixture.h"

#include <atomic>
#include <condition_variable>
#include <future>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace mirovane {
namespace {

using std::chrono::milliseconds;

/// A name system from a table. Names that begin with "hang" hang until released.
class ScriptedNames final : public NameService {
public:
    ~ScriptedNames() override { release(); }

    LookedUp<std::uint32_t> addressOf(const std::string& name) override {
        ++calls;
        if (name.starts_with("hang")) {
            std::unique_lock lock(mutex_);
            ++hanging;
            changed_.notify_all();
            changed_.wait(lock, [this] { return released_; });
            --hanging;
            changed_.notify_all();
        }
        const auto found = names.find(name);
        if (found == names.end())
            return {ProbeAnswer::no("no such name")};
        return {ProbeAnswer::yes(), found->second};
    }

    LookedUp<std::string> nameOf(std::uint32_t address) override {
        ++calls;
        for (const auto& [name, of] : names)
            if (of == address)
                return {ProbeAnswer::yes(), name};
        return {ProbeAnswer::no("no name")};
    }

    bool waitForHanging(int count) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(30), [&] { return hanging == count; });
    }

    void release() {
        const std::lock_guard lock(mutex_);
        released_ = true;
        changed_.notify_all();
    }

    const std::map<std::string, std::uint32_t> names{{"printer", mirovane::addressOf("127.0.0.7")},
                                                     {"broadcast", mirovane::addressOf("127.255.255.255")}};
    std::atomic<int> calls{0};
    int hanging = 0;

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool released_ = false;
};

class ResolverTest : public testing::Test {
protected:
    std::shared_ptr<ScriptedNames> names_ = std::make_shared<ScriptedNames>();
    CResolver resolver_{names_, 4};

    ProbeAnswer::Kind kindOf(const std::string& name, milliseconds timeout, std::stop_token stop = {}) {
        return resolver_.addressOf(name, timeout, std::move(stop)).answer.kind;
    }
    std::uint32_t found(const std::string& name) {
        return resolver_.addressOf(name, milliseconds(30000), {}).value;
    }
};

using Kind = ProbeAnswer::Kind;

TEST_F(ResolverTest, HangingLookUpsDoNotHangTheirCallers) {
    EXPECT_EQ(kindOf("hang", milliseconds(30)), Kind::CouldNotAsk) << "that says nothing about the name";
    std::stop_source stop;
    std::jthread caller(
        [&] { EXPECT_EQ(kindOf("hang2", milliseconds(600000), stop.get_token()), Kind::Stopped); });
    ASSERT_TRUE(names_->waitForHanging(2));
    stop.request_stop();
    caller.join();
    EXPECT_EQ(found("printer"), addressOf("127.0.0.7")) << "others go on";
    EXPECT_EQ(kindOf("unknown", milliseconds(30000)), Kind::No);
    names_->release();
    EXPECT_TRUE(names_->waitForHanging(0));
}

TEST_F(ResolverTest, ThreadsAreBoundedAndComeBack) {
    std::vector<std::jthread> callers;
    for (int i = 0; i < 10; ++i)
        callers.emplace_back([this] { EXPECT_EQ(kindOf("hang", milliseconds(200)), Kind::CouldNotAsk); });
    callers.clear();
    EXPECT_TRUE(names_->waitForHanging(4));
    EXPECT_EQ(kindOf("printer", milliseconds(20)), Kind::CouldNotAsk) << "no thread is left";
    EXPECT_EQ(names_->calls, 4);
    names_->release();
    EXPECT_NE(found("printer"), 0U);
    EXPECT_EQ(names_->calls, 5) << "look-ups that nobody waits for any more are not made";
}

TEST_F(ResolverTest, StartedLookUpsReportTheNameOrNothing) {
    std::promise<std::optional<std::string>> known;
    std::promise<std::optional<std::string>> unknown;
    resolver_.startNameOf(
        addressOf("127.0.0.7"), [&](auto name) { known.set_value(name); });
    resolver_.startNameOf(addressOf("127.0.0.8"), [&](auto name) { unknown.set_value(name); });
    EXPECT_EQ(known.get_future().get(), "printer");
    EXPECT_EQ(unknown.get_future().get(), std::nullopt);
}

TEST_F(ResolverTest, DestructionDoesNotWaitForHangingLookUps) {
    {
        CResolver resolver(names_, 1);
        resolver.addressOf("hang", milliseconds(10), {});
        resolver.addressOf("printer", milliseconds(10), {});
    }
    EXPECT_TRUE(names_->waitForHanging(1)) << "still hanging, on its own";
    names_->release();
    EXPECT_TRUE(names_->waitForHanging(0));
}

TEST_F(ResolverTest, TextsThatAreNoNamesAreNotLookedUp) {
    using namespace std::string_literals;
    for (const std::string& text :
         {""s, "  "s, "two words"s, "line\nbreak"s, "print\0er"s, "printer\0"s, "bell\a"s, "10.1"s, "0x7f.1"s,
          "2130706433"s, "10.0.0.256"s, std::string(10000, 'a'), std::string(254, 'a')})
        EXPECT_EQ(kindOf(text, milliseconds(30000)), Kind::No) << text.substr(0, 30);
    EXPECT_EQ(names_->calls, 0);
    EXPECT_NE(found(" printer\t"), 0U) << "blanks around do not count";
}

TEST(HostAddressTest, DottedAddresses) {
    const std::map<std::string, std::string> addresses{{"10.0.0.5", "10.0.0.5"},
                                                       {" 10.0.0.5 ", "10.0.0.5"},
                                                       {"192.168.001.008", "192.168.1.8"},
                                                       {"255.255.255.255", "255.255.255.255"},
                                                       {"0.0.0.0", "0.0.0.0"}};
    for (const auto& [text, dotted] : addresses) {
        ASSERT_TRUE(parseDottedAddress(text)) << text;
        EXPECT_EQ(formatAddress(*parseDottedAddress(text)), dotted);
    }
    for (const char* text : {"", "10", "10.1", "10.0.0", "10.0.0.", "10.0.0.5.", "10.0.0.256", "10.0.0.0005",
                             "10.0.0.-5", "10.0.0.5a", "10..0.5", "0x0a.0.0.5", "10.0.0.5 6"})
        EXPECT_FALSE(parseDottedAddress(text)) << text;
}

class HostProbesTest : public ResolverTest {
protected:
    std::uint32_t address_ = 77;
    std::string hostName_ = "before";
    PingReply reply_{77, 77};
    std::optional<std::uint32_t> resolved_;
    CSystemHostProbes probes_{std::make_unique<CIcmpEngine>(), std::make_unique<CResolver>(names_)};

    bool ping(const std::string& target) {
        return probes_.PingHost(target, reply_, resolved_, 10, 5000, 32, {}).isYes();
    }
    bool resolve(const std::string& target) {
        return probes_.ResolveHost(target, address_, hostName_, {}).isYes();
    }
};

TEST_F(HostProbesTest, ResolvesBothWaysAndLeavesTheOtherOutputAlone) {
    EXPECT_TRUE(resolve("127.0.0.7"));
    EXPECT_EQ(hostName_, "printer");
    EXPECT_EQ(address_, 77U);
    hostName_ = "before";
    EXPECT_TRUE(resolve("127.0.0.8")) << "an address without a name is not a failure";
    EXPECT_EQ(hostName_, "before");
    EXPECT_TRUE(resolve("printer"));
    EXPECT_EQ(address_, addressOf("127.0.0.7"));
    EXPECT_FALSE(resolve("unknown"));
    EXPECT_EQ(address_, addressOf("127.0.0.7"));
    EXPECT_EQ(hostName_, "before");
}

TEST_F(HostProbesTest, PingsAddressesAndNames) {
    if (const auto reason = probes_.echoUnusable())
        GTEST_SKIP() << *reason;
    EXPECT_TRUE(ping("127.0.0.9"));
    EXPECT_EQ(reply_.address, addressOf("127.0.0.9"));
    EXPECT_FALSE(resolved_) << "nothing was looked up";
    EXPECT_EQ(names_->calls, 0);

    EXPECT_TRUE(ping("printer"));
    EXPECT_EQ(reply_.address, addressOf("127.0.0.7"));
    EXPECT_EQ(resolved_, addressOf("127.0.0.7"));
}

TEST_F(HostProbesTest, FailuresLeaveTheReplyAlone) {
    if (const auto reason = probes_.echoUnusable())
        GTEST_SKIP() << *reason;
    EXPECT_FALSE(ping("unknown"));
    EXPECT_FALSE(resolved_);
    EXPECT_FALSE(ping("broadcast"));
    EXPECT_EQ(resolved_, addressOf("127.255.255.255")) << "found, though it does not answer";
    EXPECT_FALSE(ping("0.0.0.0"));
    EXPECT_EQ(reply_.address, 77U);
    EXPECT_EQ(probes_.ping("unknown", {}, {}).answer.kind, Kind::No);
    EXPECT_EQ(probes_.ping("broadcast", {}, {}).answer.kind, Kind::No)
        << "no device can have that address, and other devices can be asked";
}

TEST(CSystemNameServiceTest, KnowsThisComputer) {
    EXPECT_EQ(systemNameService()->addressOf("localhost").value, addressOf("127.0.0.1"));
}

} // namespace
} // namespace mirovane
