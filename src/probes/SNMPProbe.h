#pragma once

#include "platform/ProbeAnswer.h"
#include "probes/snmp/SNMPManager.h"

#include <cstdint>
#include <stop_token>
#include <string>

namespace mirovane {

constexpr std::uint32_t snmpTimeoutMs = 1000; ///< what Live Stat waits for an answer

struct SNMPQuery {
    std::string host; ///< address or name
    std::string community;
    std::string oid;
    std::uint32_t port = 0; ///< 0: the protocol's own
    std::uint32_t timeoutMs = snmpTimeoutMs;
};

struct SNMPAnswer {
    enum class Kind {
        Value,       ///< `text` is the value as a device field shows it
        ErrorStatus, ///< the agent refused: `errorStatus` says why (2: no such name)
        TimedOut,
        Stopped,
        Failed,   ///< the host or the object cannot be: `text` says why
        NotAsked, ///< this computer could not ask: `text` says why, `through` by whose fault
    };

    Kind kind = Kind::Failed;
    std::string text;
    std::int32_t errorStatus = 0;
    AskedThrough through = AskedThrough::Snmp;

    bool hasValue() const { return kind == Kind::Value; }
};

/// One value of one agent, as Live Stat asks for it. Any thread, any number at once; each call blocks its
/// caller until the answer, the time-out (after the look-up of a name, which has its own) or a stop request.
/// Never throws but for want of memory.
class SNMPProbe {
public:
    virtual ~SNMPProbe() = default;
    virtual SNMPAnswer SnmpGet(const SNMPQuery& query, std::stop_token stop) = 0;
};

/// Over the network: each query has its own agent and session.
class CSystemSNMPProbe final : public SNMPProbe {
public:
    /// The manager outlives this; the first query starts it.
    explicit CSystemSNMPProbe(SNMPManager& manager) : manager_(manager) {}

    SNMPAnswer SnmpGet(const SNMPQuery& query, std::stop_token stop) override;

private:
    SNMPAnswer ask(const SNMPQuery& query, const std::string& address, const std::stop_token& stop);

    SNMPManager& manager_;
};

/// What it says about the host.
ProbeAnswer answerOf(const SNMPAnswer& answer, const SNMPQuery& query);

/// For people: "no answer within 1000 ms", "error status 2 (no such name)"; empty for a value.
std::string describeSnmpAnswer(const SNMPAnswer& answer, const SNMPQuery& query);

} // namespace mirovane
