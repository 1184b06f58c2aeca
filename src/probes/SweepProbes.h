#pragma once

#include "probes/icmp/EchoTypes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace mirovane {

/// What a sweep asks of the network: many probes in flight from one thread, nothing waited for. Addresses are
/// in network byte order. Callbacks come from any thread, maybe before the call returns, and must neither
/// block nor throw. Any thread may call.
class SweepProbes {
public:
    using NameCallback = std::function<void(std::optional<std::string> name)>;

    virtual ~SweepProbes() = default;

    /// Why no echo can be sent on this computer and what to do about it, one line; nothing while echoes work.
    virtual std::optional<std::string> echoUnusable() = 0;

    /// Sends one echo request to each address; `callback` is called once for each.
    virtual void startEchoes(std::span<const std::uint32_t> addresses, const EchoOptions& options,
                             EchoCallback callback) = 0;

    /// Begins a reverse look-up. `callback` is called when the name system answers, with the name or nothing;
    /// that may take as long as it likes, or never happen.
    virtual void startNameLookUp(std::uint32_t address, NameCallback callback) = 0;
};

} // namespace mirovane
