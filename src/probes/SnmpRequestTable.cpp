#include "probes/SnmpRequestTable.h"

#include "probes/SnmpTransportSession.h"

#include <iterator>

namespace mirovane {

SnmpRequestTable::SnmpRequestTable() : next_(std::random_device()()) {}

std::int32_t SnmpRequestTable::reserve() {
    const std::lock_guard lock(mutex_);
    while (true) {
        const auto id = static_cast<std::int32_t>(next_++ & INT32_MAX);
        if (id != 0 && entries_.try_emplace(id).second) {
            return id;
        }
    }
}

void SnmpRequestTable::release(std::int32_t id) {
    const std::lock_guard lock(mutex_);
    const auto entry = entries_.find(id);
    if (entry == entries_.end()) {
        return;
    }
    entry->second.pduExists = false;
    if (!entry->second.waiting) {
        entries_.erase(entry);
    }
}

bool SnmpRequestTable::expect(std::int32_t id, SnmpOutstanding request) {
    const std::lock_guard lock(mutex_);
    const auto entry = entries_.find(id);
    if (entry == entries_.end() || entry->second.waiting) {
        return false;
    }
    ++request.session->outstanding;
    ++waiting_;
    entry->second.waiting = std::move(request);
    return true;
}

SnmpRequestTable::Entries::iterator SnmpRequestTable::stopWaiting(Entries::iterator entry) {
    --entry->second.waiting->session->outstanding;
    --waiting_;
    entry->second.waiting.reset();
    return entry->second.pduExists ? std::next(entry) : entries_.erase(entry);
}

bool SnmpRequestTable::forget(const SnmpTransportSession* session, std::int32_t id) {
    const std::lock_guard lock(mutex_);
    const auto entry = entries_.find(id);
    if (entry == entries_.end() || !entry->second.waiting ||
        entry->second.waiting->session.get() != session) {
        return false;
    }
    stopWaiting(entry);
    return true;
}

void SnmpRequestTable::forgetAll(const SnmpTransportSession* session) {
    const std::lock_guard lock(mutex_);
    for (auto entry = entries_.begin(); session->outstanding > 0 && entry != entries_.end();) {
        const auto& waiting = entry->second.waiting;
        entry = waiting && waiting->session.get() == session ? stopWaiting(entry) : std::next(entry);
    }
}

void SnmpRequestTable::clear() {
    const std::lock_guard lock(mutex_);
    entries_.clear();
    waiting_ = 0;
}

std::optional<SnmpOutstanding> SnmpRequestTable::match(std::int32_t id, const SnmpPeer& peer,
                                                       const std::string& community, bool answers) {
    const std::lock_guard lock(mutex_);
    const auto entry = entries_.find(id);
    if (entry == entries_.end() || !entry->second.waiting) {
        return std::nullopt;
    }
    SnmpOutstanding& waiting = *entry->second.waiting;
    if (!(waiting.peer == peer) || waiting.community != community) {
        return std::nullopt;
    }
    if (!answers) {
        return waiting;
    }
    std::optional<SnmpOutstanding> match(waiting);
    stopWaiting(entry);
    return match;
}

} // namespace mirovane
