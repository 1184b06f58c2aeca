#pragma once

#include "probes/SweepProbes.h"

#include <arpa/inet.h>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

namespace mirovane::test {

/// A network that answers before anybody can wait. Addresses in host byte order. Any thread.
class InstantNetwork final : public SweepProbes {
public:
    std::set<std::uint32_t> living;
    std::map<std::uint32_t, std::string> names;
    std::optional<std::string> unusable;

    std::vector<std::uint32_t> asked() const {
        const std::lock_guard lock(mutex_);
        return asked_;
    }

    std::optional<std::string> echoUnusable() override { return unusable; }

    void startEchoes(std::span<const std::uint32_t> addresses, const EchoOptions&,
                     EchoCallback callback) override {
        for (const std::uint32_t address : addresses) {
            {
                const std::lock_guard lock(mutex_);
                asked_.push_back(ntohl(address));
            }
            EchoResult result;
            result.target = result.reporter = address;
            result.kind = living.contains(ntohl(address)) ? EchoKind::Reply : EchoKind::TimedOut;
            callback(result);
        }
    }

    void startNameLookUp(std::uint32_t address, NameCallback callback) override {
        const auto name = names.find(ntohl(address));
        callback(name == names.end() ? std::nullopt : std::optional(name->second));
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::uint32_t> asked_;
};

} // namespace mirovane::test
