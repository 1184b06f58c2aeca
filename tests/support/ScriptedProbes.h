#pragma once

#include "probes/StepProbes.h"
#include "probes/names/HostAddress.h"

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
    void refuseEchoes(const std::string& why) { unusable_ = why; }
    void allowEchoes() { unusable_.reset(); }

    /// Whoever asks this host (any kind of question) learns that it could not be asked.
    void cannotAsk(const std::string& host, AskedThrough through, const std::string& why) {
        const std::lock_guard lock(mutex_);
        notAsked_[host] = ProbeAnswer::couldNotAsk(through, why);
    }
    void canAsk(const std::string& host) {
        const std::lock_guard lock(mutex_);
        notAsked_.erase(host);
    }
    /// The next so many pings of this host get lost.
    void lose(const std::string& host, int pings) {
        const std::lock_guard lock(mutex_);
        lost_[host] = pings;
    }

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

    /// So many there were; the list begins anew.
    std::size_t forgetPings() {
        const std::lock_guard lock(mutex_);
        return std::exchange(pinged_, {}).size();
    }

    ProbeAnswer PingHost(const std::string& target, PingReply&, std::optional<std::uint32_t>&,
                         std::uint8_t ttl, std::uint32_t timeoutMs, std::uint8_t payloadSize,
                         std::stop_token stop) override {
        std::unique_lock lock(mutex_);
        if (ttl != 10 || timeoutMs != 5000 || payloadSize != 32)
            return ProbeAnswer::no("other options than Live Stat's");
        if (unusable_)
            return ProbeAnswer::couldNotAsk(AskedThrough::Echo, *unusable_);
        pinged_.push_back(target);
        waitWhileHanging(lock, target, stop);
        if (stop.stop_requested())
            return ProbeAnswer::stopped();
        if (const auto found = notAsked_.find(target); found != notAsked_.end())
            return found->second;
        if (const auto found = lost_.find(target); found != lost_.end() && found->second-- > 0)
            return ProbeAnswer::no("no reply within 5000 ms");
        return living_.contains(target) ? ProbeAnswer::yes() : ProbeAnswer::no("no reply within 5000 ms");
    }

    ProbeAnswer ResolveHost(const std::string& target, std::uint32_t& address, std::string& hostName,
                            std::stop_token) override {
        const std::lock_guard lock(mutex_);
        if (const auto found = notAsked_.find(target); found != notAsked_.end())
            return found->second;
        if (parseDottedAddress(target)) {
            if (const auto name = names_.find(target); name != names_.end())
                hostName = name->second;
            return ProbeAnswer::yes();
        }
        const auto found = addresses_.find(target);
        if (found == addresses_.end())
            return ProbeAnswer::no("no such name");
        address = found->second;
        return ProbeAnswer::yes();
    }

    std::optional<std::string> echoUnusable() override { return unusable_; }

    SNMPAnswer SnmpGet(const SNMPQuery& query, std::stop_token stop) override {
        std::unique_lock lock(mutex_);
        waitWhileHanging(lock, query.host, stop);
        const auto found = agents_.find(query.host + " " + query.community + " " + query.oid);
        if (stop.stop_requested())
            return {SNMPAnswer::Kind::Stopped, "", 0};
        if (const auto refused = notAsked_.find(query.host); refused != notAsked_.end())
            return {SNMPAnswer::Kind::NotAsked, refused->second.why, 0, refused->second.through};
        if (found == agents_.end() || query.timeoutMs != 1000)
            return {SNMPAnswer::Kind::TimedOut, "", 0};
        return found->second;
    }

    /// Scripted paths without a host are those of `localComputerName`.
    ProbeAnswer ReadRegistryValue(const std::string& path, const std::string& localComputerName,
                                  std::string& value, std::stop_token stop) override {
        const std::string whole =
            path.starts_with(R"(\\)") ? path : R"(\\)" + localComputerName + R"(\)" + path;
        std::unique_lock lock(mutex_);
        waitWhileHanging(lock, whole, stop);
        if (const auto refused = notAsked_.find(whole); refused != notAsked_.end())
            return refused->second;
        const auto found = registry_.find(whole);
        if (found == registry_.end())
            return ProbeAnswer::no("there is no such key or value");
        value = found->second;
        return ProbeAnswer::yes();
    }
    ProbeAnswer LookUpLoggedOnUser(const std::string& host, LoggedOnUser& user,
                                   std::stop_token stop) override {
        std::unique_lock lock(mutex_);
        waitWhileHanging(lock, host, stop);
        if (const auto refused = notAsked_.find(host); refused != notAsked_.end())
            return refused->second;
        const auto found = users_.find(host);
        if (found == users_.end() || !found->second.reached)
            return ProbeAnswer::no("no answer in time");
        user = found->second;
        return ProbeAnswer::yes();
    }

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
    std::map<std::string, ProbeAnswer> notAsked_;
    std::map<std::string, int> lost_;
    std::vector<std::string> pinged_;
    std::optional<std::string> unusable_;
    int hangingNow_ = 0;
};

} // namespace mirovane::test
