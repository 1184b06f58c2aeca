#pragma once

#include "probes/StepProbes.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace mirovane::test {

/// A network by script: hosts that answer, names that are known, SNMP agents, registries, and hosts whose
/// probe (of any kind) hangs until it is told to stop or let go. Whatever is not scripted does not exist. Any
/// thread; the script of names, agents and registries is written before the probes begin.
class ScriptedProbes final : public HostProbes, public SNMPProbe, public RegistryProbes {
public:
    void answer(const std::string& host, bool answers = true) {
        const std::lock_guard lock(mutex_);
        answers ? void(living_.insert(host)) : void(living_.erase(host));
    }
    void name(const std::string& host, std::uint32_t address) { addresses_[host] = address; }
    void reverse(const std::string& address, const std::string& host) { names_[address] = host; }
    void agent(const std::string& host, const std::string& community, const std::string& oid,
               SNMPAnswer answer) {
        agents_[host + " " + community + " " + oid] = std::move(answer);
    }
    void registryValue(const std::string& path, const std::string& value) { registry_[path] = value; }
    void loggedOn(const std::string& host, LoggedOnUser user) { users_[host] = std::move(user); }
    void trouble(const std::string& line) { troubles_.push_back(line); }
    void refuseEchoes(const std::string& why) { unusable_ = why; }
    void allowEchoes() { unusable_.reset(); }

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
        waitWhileHanging(lock, target, stop);
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

    SNMPAnswer SnmpGet(const SNMPQuery& query, std::stop_token stop) override {
        std::unique_lock lock(mutex_);
        waitWhileHanging(lock, query.host, stop);
        const auto found = agents_.find(query.host + " " + query.community + " " + query.oid);
        if (stop.stop_requested())
            return {SNMPAnswer::Kind::Stopped, "", 0};
        if (found == agents_.end() || query.timeoutMs != 1000)
            return {SNMPAnswer::Kind::TimedOut, "", 0};
        return found->second;
    }
    std::optional<std::string> snmpUnusable() override { return std::nullopt; }

    /// Scripted paths without a host are those of `localComputerName`.
    std::optional<std::string> ReadRegistryValue(const std::string& path,
                                                 const std::string& localComputerName, std::stop_token stop,
                                                 std::string* = nullptr) override {
        const std::string whole =
            path.starts_with(R"(\\)") ? path : R"(\\)" + localComputerName + R"(\)" + path;
        std::unique_lock lock(mutex_);
        waitWhileHanging(lock, whole, stop);
        const auto found = registry_.find(whole);
        return found == registry_.end() ? std::nullopt : std::optional(found->second);
    }
    LoggedOnUser LookUpLoggedOnUser(const std::string& host, std::stop_token stop,
                                    std::string* = nullptr) override {
        std::unique_lock lock(mutex_);
        waitWhileHanging(lock, host, stop);
        const auto found = users_.find(host);
        return found == users_.end() ? LoggedOnUser() : found->second;
    }
    std::vector<std::string> takeTroubles() override { return std::exchange(troubles_, {}); }

    operator StepProbes() { return {*this, *this, *this}; }

private:
    void waitWhileHanging(std::unique_lock<std::mutex>& lock, const std::string& target,
                          const std::stop_token& stop) {
        ++hangingNow_;
        changed_.notify_all();
        changed_.wait(lock, stop, [&] { return !hanging_.contains(target); });
        --hangingNow_;
        changed_.notify_all();
    }

    mutable std::mutex mutex_;
    std::condition_variable_any changed_;
    std::set<std::string> living_;
    std::set<std::string> hanging_;
    std::map<std::string, std::uint32_t> addresses_;
    std::map<std::string, std::string> names_;
    std::map<std::string, SNMPAnswer> agents_;
    std::map<std::string, std::string> registry_;
    std::map<std::string, LoggedOnUser> users_;
    std::vector<std::string> troubles_;
    std::vector<std::string> pinged_;
    std::optional<std::string> unusable_;
    int hangingNow_ = 0;
};

} // namespace mirovane::test
