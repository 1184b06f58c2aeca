#pragma once

#include "probes/Descriptor.h"
#include "probes/IcmpEngine.h"
#include "probes/SendBudget.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace mirovane {

/// The inside of IcmpEngine: the socket, the table of probes and the thread that receives, watches deadlines
/// and calls back. Requests are sent by the threads that start the probes.
class EchoCore {
public:
    explicit EchoCore(EchoSocketOpener opener);
    ~EchoCore();
    EchoCore(const EchoCore&) = delete;
    EchoCore& operator=(const EchoCore&) = delete;

    /// Opens the socket and starts the thread, the first time.
    void open();
    void close();

    void start(std::span<const std::uint32_t> addresses, const EchoOptions& options, EchoCallback callback,
               std::vector<ProbeId>& ids);
    bool cancel(ProbeId id);

    /// For threads that have sent requests or were woken by a reply: reads the socket once there were enough
    /// of them since the last reading. They may be what keeps the engine's thread from running, and replies
    /// that no buffer holds are lost: a living device would be shown as Off.
    void relieveReceiveBuffer(std::size_t requests);

    const std::string& reason() const { return reason_; }
    const EchoSocket* socket() const { return socket_.get(); }

private:
    class Bulk;
    using Time = EchoTable::Time;
    struct Departure {
        ProbeId id = 0;
        EchoRequest request;
    };

    bool startBatch(std::span<const std::uint32_t> addresses, const EchoOptions& options,
                    const std::shared_ptr<const EchoCallback>& callback, std::vector<ProbeId>& ids);
    void refuse(std::span<const std::uint32_t> addresses, const EchoCallback& callback) const;
    void transmit(std::span<const Departure> departures);
    void departureFailed(std::span<const Departure> rest, int error);
    void holdBack(std::span<const Departure> rest, int error);
    void holdBackLocked(std::span<const Departure> rest, int error);

    void run();
    void waitForWork();
    Time nextLook(Time now) const;
    int pollTimeout(Time now);
    void receiveAll();
    void endOverdue(Time now);
    std::vector<Departure> departuresDue(Time now);
    void callBack();
    void endEverything();
    void wakeUp();

    const EchoSocketOpener opener_;
    std::once_flag opened_;
    std::unique_ptr<EchoSocket> socket_;
    std::string reason_; ///< why there is no socket
    Descriptor wake_;
    std::thread thread_;

    std::mutex receiving_; ///< one reader of the socket at a time; taken before mutex_
    std::vector<EchoArrival> arrivals_;
    std::atomic<std::size_t> sentSinceReceive_{0};
    std::size_t sendsPerReceive_ = 0; ///< set by open()
    std::atomic<int> bulkSenders_{0};

    std::mutex mutex_; ///< guards what follows
    EchoTable table_;
    SendBudget budget_;
    std::vector<EchoCompletion> completed_;
    std::vector<Departure> heldBack_; ///< requests that the system could not take yet, in order
    Time wakesAt_ = Time::max();      ///< when the thread will look again by itself
    bool closing_ = false;
};

} // namespace mirovane
