#pragma once

#include "platform/Descriptor.h"
#include "probes/icmp/IcmpEngine.h"
#include "probes/names/HostAddress.h"
#include "tests/support/OwnNetwork.h"
#include "tests/support/TunHosts.h"

#include <condition_variable>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <optional>
#include <vector>

namespace mirovane {

/// Gathers what an engine calls back with and waits for a number of results, with a deadline.
class Results {
public:
    EchoCallback callback() {
        return [this](const EchoResult& result) {
            const std::lock_guard lock(mutex_);
            results_.push_back(result);
            changed_.notify_all();
        };
    }

    /// What came until `count` results were there, or fewer after a long time.
    std::vector<EchoResult> waitFor(std::size_t count) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(60), [&] { return results_.size() >= count; });
        return results_;
    }

    std::size_t count(EchoKind kind) {
        const std::lock_guard lock(mutex_);
        return static_cast<std::size_t>(std::count_if(
            results_.begin(), results_.end(), [kind](const EchoResult& r) { return r.kind == kind; }));
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<EchoResult> results_;
};

inline std::uint32_t addressOf(const std::string& text) {
    return parseDottedAddress(text).value();
}

inline EchoOptions within(std::uint32_t timeoutMs) {
    EchoOptions options;
    options.timeoutMs = timeoutMs;
    return options;
}

/// Each test in a network namespace of its own, once with each kind of socket.
class EchoTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        network_.emplace();
        if (network_->refused())
            GTEST_SKIP() << *network_->refused();
        ASSERT_TRUE(OwnNetwork::set("ipv4/ping_group_range", "0 2147483647"));
        engine_ = newEngine();
        if (const auto reason = engine_->unusable())
            GTEST_SKIP() << *reason;
    }

    std::unique_ptr<CIcmpEngine> newEngine() const {
        return std::make_unique<CIcmpEngine>(std::string(GetParam()) == "raw" ? openRawEchoSocket
                                                                              : openDatagramEchoSocket);
    }

    EchoResult echo(const std::string& address, std::uint32_t timeoutMs = 10000) {
        return engine_->echo(addressOf(address), within(timeoutMs), {});
    }

    std::optional<OwnNetwork> network_;
    std::unique_ptr<CIcmpEngine> engine_;
};

} // namespace mirovane
