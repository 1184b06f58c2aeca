#pragma once

#include "probes/EchoSocket.h"
#include "probes/EchoTable.h"
#include "probes/EchoTypes.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace mirovane {

class EchoCore;

/// Sends the echo requests of the whole process through one socket and hands out the answers, any number of
/// probes at once. One of these is enough for a program; it is owned by its main object. Any thread may call
/// it.
///
/// The socket is opened once, by the first call that needs it, in the network namespace of the calling
/// thread. When that fails the engine stays unusable: every probe ends at once as NotPermitted.
///
/// Up to 65,536 probes are in flight, and no more leave at once than the receive buffer takes replies for;
/// the others stand in line and their time-out starts when they are sent. A request that the system can't
/// take for the moment (full buffers) is tried again until its deadline.
///
/// Callbacks run one at a time on the engine's own thread, each exactly once, maybe before start() has
/// returned. They must not block, must not throw and must not destroy the engine; they may start and cancel
/// probes. Only an engine that is unusable or going away calls back from inside start().
class IcmpEngine {
public:
    explicit IcmpEngine(EchoSocketOpener opener = openEchoSocket);

    /// Ends every probe in flight as Stopped, calls back, then returns. Callers blocked in echo() are
    /// released.
    ~IcmpEngine();
    IcmpEngine(const IcmpEngine&) = delete;
    IcmpEngine& operator=(const IcmpEngine&) = delete;

    /// Sends one echo request. `address` is in network byte order.
    ProbeId start(std::uint32_t address, const EchoOptions& options, EchoCallback callback);

    /// The same for many addresses in fewer system calls; `callback` is called once for each. Ids in the same
    /// order.
    std::vector<ProbeId> startAll(std::span<const std::uint32_t> addresses, const EchoOptions& options,
                                  EchoCallback callback);

    /// The probe ends as Stopped (its callback tells so) unless it has ended already: then false.
    bool cancel(ProbeId id);

    /// Sends one request and waits for its end. Not from a callback.
    EchoResult echo(std::uint32_t address, const EchoOptions& options, std::stop_token stop);

    /// One line that says why no echo can be sent and what to do about it; nothing while all is well.
    std::optional<std::string> unusable();

    /// Which kind of socket is in use, for people: "unprivileged ICMP socket", "raw ICMP socket" or "none".
    std::string socketKind();

private:
    std::shared_ptr<EchoCore>
        core_; ///< shared with callers inside echo(), who may leave after the engine has gone
};

} // namespace mirovane
