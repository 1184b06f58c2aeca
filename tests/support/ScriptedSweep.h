#pragma once

#include "discover/AddressRanges.h"
#include "probes/SweepProbes.h"
#include "tests/support/FakeTime.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace mirovane::test {

/// The address as the ranges have it.
inline std::uint32_t at(const std::string& text) {
    return parseRangeAddress(text).value();
}

/// A network on the simulated clock. Hosts answer after `roundTrip`, the others end with their time-out; what
/// is due is delivered by deliver().
class ScriptedSweep final : public SweepProbes {
public:
    struct Sent {
        std::chrono::nanoseconds when; ///< since the beginning
        std::uint32_t address;
    };

    explicit ScriptedSweep(const FakeClock& clock) : clock_(clock), begin_(clock.monotonic()) {}

    std::function<bool(std::uint32_t)> lives = [](std::uint32_t) {
        return false;
    };
    std::chrono::milliseconds roundTrip{20};
    std::map<std::uint32_t, int> refusals; ///< how often the system can't take a request for this address
    int refusal = ENOBUFS;
    std::map<std::uint32_t, std::string> names;
    std::chrono::milliseconds nameDelay{10};
    bool namesAnswer = true;

    std::vector<Sent> sent;
    std::size_t lookUps = 0;
    std::size_t lookUpsAtOnce = 0; ///< the most there were

    std::optional<std::string> echoUnusable() override { return std::nullopt; }

    void startEchoes(std::span<const std::uint32_t> addresses, const EchoOptions& options,
                     EchoCallback callback) override {
        for (const std::uint32_t network : addresses) {
            const std::uint32_t address = ntohl(network);
            sent.push_back({clock_.monotonic() - begin_, address});
            EchoResult result;
            result.target = network;
            auto delay = std::chrono::milliseconds(options.timeoutMs);
            if (const auto refused = refusals.find(address);
                refused != refusals.end() && refused->second-- > 0) {
                result.kind = EchoKind::SendFailed;
                result.systemError = refusal;
            } else if (lives(address)) {
                result.kind = EchoKind::Reply;
                result.reporter = network;
                delay = roundTrip;
            }
            due_.emplace(clock_.monotonic() + delay, [callback, result] { callback(result); });
        }
    }

    void startNameLookUp(std::uint32_t network, NameCallback callback) override {
        ++lookUps;
        lookUpsAtOnce = std::max(lookUpsAtOnce, ++pendingLookUps_);
        if (!namesAnswer)
            return;
        due_.emplace(clock_.monotonic() + nameDelay, [this, callback, network] {
            --pendingLookUps_;
            const auto name = names.find(ntohl(network));
            callback(name == names.end() ? std::nullopt : std::optional(name->second));
        });
    }

    void deliver() {
        while (!due_.empty() && due_.begin()->first <= clock_.monotonic()) {
            const auto call = std::move(due_.begin()->second);
            due_.erase(due_.begin());
            call();
        }
    }

private:
    const FakeClock& clock_;
    const std::chrono::steady_clock::time_point begin_;
    std::multimap<std::chrono::steady_clock::time_point, std::function<void()>> due_;
    std::size_t pendingLookUps_ = 0;
};

} // namespace mirovane::test
