#pragma once

#include "platform/Descriptor.h"
#include "probes/icmp/EchoSocket.h"
#include "probes/icmp/EchoTypes.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

namespace mirovane {

class CEchoTraffic;

/// Sends the echo requests of the whole process through one socket and hands out the results, any number of
/// requests at once. One of these is enough for a program; its main object owns it. Any thread may call it:
/// callers put their orders into a queue, and one thread does all the rest (see CEchoTraffic).
///
/// The first call that needs the socket opens it, once, in the network namespace of the calling thread. When
/// that fails the engine stays unusable: every request ends at once as NotPermitted.
///
/// Up to 65,536 requests wait for their replies, and no more leave at once than the receive buffer takes
/// replies for; the others wait in line, and their time-out starts when they leave.
///
/// Callbacks run one at a time on the engine's thread, exactly once for each address. They must not block,
/// must not throw and must not destroy the engine; they may start requests. Only an engine that is unusable
/// or going away calls back on the caller's thread, before start() returns.
class CIcmpEngine {
public:
    explicit CIcmpEngine(EchoSocketOpener opener = openEchoSocket);

    /// Ends every request as Stopped, calls back, then returns. Callers blocked in echo() are released.
    ~CIcmpEngine();
    CIcmpEngine(const CIcmpEngine&) = delete;
    CIcmpEngine& operator=(const CIcmpEngine&) = delete;

    /// Sends one request to each address (network byte order). `callback` is called once for each.
    void startAll(std::span<const std::uint32_t> addresses, const EchoOptions& options,
                  EchoCallback callback);

    /// The same for one address.
    void start(std::uint32_t address, const EchoOptions& options, EchoCallback callback);

    /// Sends one request and waits for its end. A requested stop ends the wait at once; a reply that comes
    /// later goes nowhere. Not from a callback.
    EchoResult echo(std::uint32_t address, const EchoOptions& options, const std::stop_token& stop);

    /// One line that says why no echo can be sent and what to do about it; nothing while all is well.
    std::optional<std::string> unusable();

    /// Which kind of socket is in use, for people: "unprivileged ICMP socket", "raw ICMP socket" or "none".
    std::string socketKind();

private:
    void open();
    void openOnce();
    bool enqueue(EchoOrder& order);
    void wakeThread();

    void run();
    bool takeOrders(CEchoTraffic& traffic);
    void sleep(std::optional<std::chrono::milliseconds> pause);

    const EchoSocketOpener opener_;
    std::once_flag opened_;
    std::unique_ptr<EchoSocket> socket_; ///< the thread's, once it runs
    std::string reason_;                 ///< why there is no socket
    CDescriptor bell_;                   ///< an event that wakes the thread
    std::thread thread_;

    std::mutex mutex_; ///< guards what follows
    std::vector<EchoOrder> queue_;
    bool closing_ = false;
};

} // namespace mirovane
