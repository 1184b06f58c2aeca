#include "probes/icmp/EchoTraffic.h"

#include <algorithm>
#include <cerrno>

namespace mirovane {

namespace {

/// How soon requests are tried again that found the budget spent.
constexpr std::chrono::milliseconds budgetPause{1};

/// And those that the system did not take. A send buffer mostly gets room soon; a table of neighbours that is
/// full stays so until one of them has been given up, and asking it again at once only costs time.
constexpr std::chrono::milliseconds shortestRefusal{1};
constexpr std::chrono::milliseconds shortestFullTable{20};
constexpr std::chrono::milliseconds longestRefusal{50};

/// Callbacks wake threads, which may keep this one from running; replies come in all the while.
constexpr std::size_t callsPerReceive = 16;

/// Twice as many messages as there can be requests: a flood does not keep the thread from its deadlines.
constexpr std::size_t mostBatches = std::size_t{2} * 65536 / echoBatch;

bool temporary(int error) {
    return error == EAGAIN || error == ENOBUFS || error == ENOMEM;
}

EndedEcho endedUnsent(std::shared_ptr<const EchoOrder> order, std::uint32_t address, EchoKind kind,
                      int error) {
    EndedEcho ended{std::move(order), {}};
    ended.result.kind = kind;
    ended.result.target = address;
    ended.result.systemError = error;
    return ended;
}

} // namespace

CEchoTraffic::CEchoTraffic(EchoSocket& socket, const Clock& clock)
    : socket_(socket), clock_(clock), budget_(socket.receiveCapacity()) {}

void CEchoTraffic::add(EchoOrder order) {
    if (!order.addresses.empty())
        line_.push_back({std::make_shared<const EchoOrder>(std::move(order))});
}

void CEchoTraffic::turn() {
    // Deadlines are judged by the time before the reading, so that a reply that came in time counts however
    // late the thread gets to run.
    const Time beforeReading = clock_.monotonic();
    receive();
    endOverdue(beforeReading);
    send(clock_.monotonic());
    callBack();
}

void CEchoTraffic::receive() {
    bool more = true;
    for (std::size_t batch = 0; more && batch < mostBatches; ++batch) {
        arrivals_.clear();
        more = socket_.receive(arrivals_);
        for (const EchoArrival& arrival : arrivals_)
            if (auto ended = outstanding_.match(arrival))
                ended_.push_back(std::move(*ended));
    }
}

void CEchoTraffic::endOverdue(Time now) {
    while (auto ended = outstanding_.expireOne(now)) {
        if (ended->result.kind == EchoKind::SendFailed)
            ended->result.systemError = lastRefusal_;
        ended_.push_back(std::move(*ended));
    }
    // Before anybody else gets their numbers.
    std::erase_if(leaving_, [this](const EchoRequest& request) {
        return !outstanding_.waitsToLeave(request.sequence);
    });
}

void CEchoTraffic::send(Time now) {
    const std::size_t allowed = std::min(budget_.allowed(now), echoBatch);
    // While the system takes nothing, those in line get their numbers all the same: their time-outs begin,
    // and nobody waits for ever on a network device that is stuck.
    giveNumbers(refusing_ ? echoBatch : allowed - std::min(allowed, leaving_.size()), now);
    if (refusing_ && now < sendAgain_)
        return;
    const std::size_t gone = sendSome(std::span(leaving_).first(std::min(allowed, leaving_.size())), now);
    leaving_.erase(leaving_.begin(), leaving_.begin() + static_cast<std::ptrdiff_t>(gone));
}

void CEchoTraffic::giveNumbers(std::size_t most, Time now) {
    while (most > 0 && !line_.empty() && !outstanding_.full()) {
        InLine& first = line_.front();
        const std::uint32_t address = first.order->addresses[first.next];
        if (address == 0) // the system would take that for itself
            ended_.push_back(endedUnsent(first.order, address, EchoKind::SendFailed, EDESTADDRREQ));
        else
            leaving_.push_back(outstanding_.add(first.order, address, now));
        if (++first.next == first.order->addresses.size())
            line_.pop_front();
        --most;
    }
}

/// Returns how many are done with: sent, or failed for good.
std::size_t CEchoTraffic::sendSome(std::span<const EchoRequest> requests, Time now) {
    std::size_t done = 0;
    while (done < requests.size()) {
        int error = 0;
        const std::size_t sent = socket_.send(requests.subspan(done), error);
        refusing_ = sent == 0 && temporary(error);
        if (refusing_) {
            noteRefusal(error, now);
            break;
        }
        refusalPause_ = {};
        budget_.spend(sent);
        for (const EchoRequest& request : requests.subspan(done, sent))
            outstanding_.noteLeft(request.sequence, now);
        done += sent;
        if (sent == 0)
            ended_.push_back(outstanding_.fail(requests[done++].sequence, error));
    }
    return done;
}

void CEchoTraffic::noteRefusal(int error, Time now) {
    lastRefusal_ = error;
    const auto least = error == ENOBUFS ? shortestFullTable : shortestRefusal;
    refusalPause_ = std::clamp(refusalPause_ * 2, least, longestRefusal);
    sendAgain_ = now + refusalPause_;
}

void CEchoTraffic::callBack() {
    std::size_t called = 0;
    while (!ended_.empty()) {
        std::vector<EndedEcho> ended;
        ended.swap(ended_);
        for (const EndedEcho& echo : ended) {
            echo.order->callback(echo.result);
            if (++called % callsPerReceive == 0)
                receive();
        }
    }
}

bool CEchoTraffic::somebodyCouldLeave() const {
    return !leaving_.empty() || (!line_.empty() && !outstanding_.full());
}

std::optional<std::chrono::milliseconds> CEchoTraffic::pause() {
    using std::chrono::milliseconds;
    const Time now = clock_.monotonic();
    std::optional<Time> next = outstanding_.nextDeadline();
    if (somebodyCouldLeave()) {
        if (!refusing_ && budget_.allowed(now) > 0)
            return milliseconds(0);
        next = std::min(next.value_or(Time::max()), refusing_ ? sendAgain_ : now + budgetPause);
    }
    if (!next)
        return std::nullopt;
    // Rounded up: waking a moment too early would only spin.
    return std::max(std::chrono::ceil<milliseconds>(*next - now), milliseconds(0));
}

void CEchoTraffic::stopAll() {
    while (auto ended = outstanding_.stopOne())
        ended_.push_back(std::move(*ended));
    for (const InLine& waiting : line_)
        for (std::size_t i = waiting.next; i < waiting.order->addresses.size(); ++i)
            ended_.push_back(endedUnsent(waiting.order, waiting.order->addresses[i], EchoKind::Stopped, 0));
    callBack();
}

} // namespace mirovane
