#pragma once

#include "platform/Clock.h"
#include "probes/icmp/OutstandingEchoes.h"
#include "probes/icmp/SendBudget.h"

#include <deque>

namespace mirovane {

/// What the engine's thread does: it sends the requests of all orders through one socket, matches what comes
/// back, watches the time-outs and tells the callers. It owns no thread and never waits: its owner calls
/// turn() again and again and sleeps as long as pause() allows. One thread uses it.
///
/// Orders wait in line until the send budget and the sequence numbers let their requests leave. What the
/// system can't take for the moment (full buffers) keeps its place at the front and is tried again until its
/// deadline.
class CEchoTraffic {
public:
    /// Both outlive this object.
    CEchoTraffic(EchoSocket& socket, const Clock& clock);

    void add(EchoOrder order);

    /// Reads everything that has arrived, ends what is overdue, sends at most one batch, calls back.
    void turn();

    /// How long nothing has to be done unless the socket gets readable or an order comes; nothing for ever.
    std::optional<std::chrono::milliseconds> pause();

    /// Ends everything that has not ended as Stopped and calls back: the last call before destruction.
    void stopAll();

private:
    using Time = COutstandingEchoes::Time;
    struct InLine {
        std::shared_ptr<const EchoOrder> order;
        std::size_t next = 0; ///< its first address that has no number yet
    };

    void receive();
    void endOverdue(Time now);
    void send(Time now);
    void giveNumbers(std::size_t most, Time now);
    std::size_t sendSome(std::span<const EchoRequest> requests, Time now);
    void noteRefusal(int error, Time now);
    void callBack();
    bool somebodyCouldLeave() const;

    EchoSocket& socket_;
    const Clock& clock_;
    CSendBudget budget_;
    COutstandingEchoes outstanding_;
    std::deque<InLine> line_;
    std::vector<EchoRequest> leaving_; ///< have their numbers and leave next, in order
    bool refusing_ = false;            ///< the system took nothing at the last attempt
    int lastRefusal_ = 0;              ///< its errno
    std::chrono::milliseconds refusalPause_{0};
    Time sendAgain_{}; ///< not before, while it is refusing
    std::vector<EchoArrival> arrivals_;
    std::vector<EndedEcho> ended_;
};

} // namespace mirovane
