#pragma once

#include "probes/HostProbes.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace mirovane::test {

/// Hosts that answer, names that are known, and hosts whose probe hangs until it is told to stop or let go.
/// Any thread.
class ScriptedProbes final : public HostProbes {
public:
    void answer(const std::string& host, bool answers = true) {
        const std::lock_guard lock(mutex_);
        answers ? void(living_.insert(host)) : void(living_.erase(host));
    }
    void name(const std::string& host, std::uint32_t address) { addresses_[host] = address; }
    void reverse(const std::string& address, const std::string& host) { names_[address] = host; }
    void refuseEchoes(const std::string& why) { unusable_ = why; }

    void hang(const std::string& host) {
        const std::lock_guard lock(mutex_);
        hanging_.insert(host);
    }
    void letGo(const std::string& host) {
        const std::lock_guard lock(mutex_);
        hanging_.erase(host);
        changed_.notify_all();
    }

    /// Waits until this many probes hang. False when that does not happen within seconds.
    bool waitUntilHanging(int probes) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20), [&] { return hangingNow_ == probes; });
    }

    std::vector<std::string> pinged() const {
        const std::lock_guard lock(mutex_);
        return pinged_;
    }

    bool PingHost(const std::string& target, PingReply&, std::optional<std::uint32_t>&, std::uint8_t ttl,
                  std::uint32_t timeoutMs, std::uint8_t payloadSize, std::stop_token stop) override {
        std::unique_lock lock(mutex_);
        if (ttl != 10 || timeoutMs != 5000 || payloadSize != 32)
            return false;
        pinged_.push_back(target);
        ++hangingNow_;
        changed_.notify_all();
        changed_.wait(lock, stop, [&] { return !hanging_.contains(target); });
        --hangingNow_;
        changed_.notify_all();
        return !stop.stop_requested() && living_.contains(target);
    }

    bool ResolveHost(const std::string& target, std::uint32_t& address, std::string& hostName,
                     std::stop_token) override {
        if (const auto name = names_.find(target); name != names_.end()) {
            hostName = name->second;
            return true;
        }
        const auto found = addresses_.find(target);
        if (found == addresses_.end())
            return false;
        address = found->second;
        return true;
    }

    std::optional<std::string> echoUnusable() override { return unusable_; }

private:
    mutable std::mutex mutex_;
    std::condition_variable_any changed_;
    std::set<std::string> living_;
    std::set<std::string> hanging_;
    std::map<std::string, std::uint32_t> addresses_;
    std::map<std::string, std::string> names_;
    std::vector<std::string> pinged_;
    std::optional<std::string> unusable_;
    int hangingNow_ = 0;
};

} // namespace mirovane::test
