#pragma once

#include "probes/SnmpPeer.h"
#include "probes/SnmpTypes.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <unordered_map>

namespace mirovane {

class SnmpTransportSession;

/// A request that is waited for: where its reply must come from and who gets it.
struct SnmpOutstanding {
    std::shared_ptr<SnmpTransportSession> session;
    SnmpPeer peer;
    std::string community;
    SnmpEntityHandle entity{};
    SnmpContextHandle context{};
};

/// The request ids of the process: those of PDUs that exist and those that are waited for. An id goes back
/// only when neither holds. Any thread.
class SnmpRequestTable {
public:
    SnmpRequestTable();

    /// A free id for a new PDU, never 0. Ids run upwards from a random one, so that one comes back only after
    /// two thousand million others: a very late reply finds nobody.
    std::int32_t reserve();

    /// The PDU is gone.
    void release(std::int32_t id);

    /// False when the id is waited for already, or is none of reserve()'s.
    bool expect(std::int32_t id, SnmpOutstanding request);

    /// False when this session does not wait for it.
    bool forget(const SnmpTransportSession* session, std::int32_t id);
    void forgetAll(const SnmpTransportSession* session);
    void clear();

    /// Who waits for a message with this id from this peer under this community. `answers`: it is the reply,
    /// so nobody waits for the id any more.
    std::optional<SnmpOutstanding> match(std::int32_t id, const SnmpPeer& peer, const std::string& community,
                                         bool answers);

    std::size_t outstanding() const { return waiting_; }

private:
    struct Entry {
        bool pduExists = true;
        std::optional<SnmpOutstanding> waiting;
    };
    using Entries = std::unordered_map<std::int32_t, Entry>;

    Entries::iterator stopWaiting(Entries::iterator entry);

    mutable std::mutex mutex_;
    Entries entries_;
    std::uint32_t next_;
    std::atomic<std::size_t> waiting_{0};
};

} // namespace mirovane
