#include "probes/EchoCore.h"

#include "probes/BlockedSignals.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>

namespace mirovane {

namespace {

/// How soon requests that found the buffers full are tried again.
constexpr std::chrono::milliseconds retryPause{1};

/// No more requests than this go out before somebody has read; fewer where the receive buffer is small.
constexpr std::size_t mostSendsPerReceive = 192;

/// Replies keep coming in while callbacks wake their waiters.
constexpr std::size_t callsPerReceive = 16;

/// Twice as many messages as there can be probes: a flood does not keep the thread from its deadlines.
constexpr std::size_t mostBatches = std::size_t{2} * 65536 / echoBatch;

bool temporary(int error) {
    return error == EAGAIN || error == ENOBUFS || error == ENOMEM;
}

} // namespace

/// Marks the time in which a thread sends many requests in a row. It then also does the reading, every so
/// many requests, and the engine's thread looks every millisecond instead of being woken for every few
/// replies: two threads that take turns at one socket cost more than half as much again.
class EchoCore::Bulk {
public:
    Bulk(EchoCore& core, std::size_t requests) : core_(core), large_(core.socket_ && requests > echoBatch) {
        core_.bulkSenders_ += large_ ? 1 : 0;
    }
    ~Bulk() {
        if (large_) {
            --core_.bulkSenders_;
            core_.wakeUp();
        }
    }
    Bulk(const Bulk&) = delete;
    Bulk& operator=(const Bulk&) = delete;

private:
    EchoCore& core_;
    const bool large_;
};

EchoCore::EchoCore(EchoSocketOpener opener) : opener_(std::move(opener)) {}

EchoCore::~EchoCore() {
    close();
}

void EchoCore::open() {
    std::call_once(opened_, [this] {
        EchoSocketOpening opening = opener_();
        reason_ = std::move(opening.reason);
        if (!opening.socket) {
            return;
        }
        wake_ = Descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
        if (!wake_) {
            reason_ = "Ping is not possible: " + std::generic_category().message(errno) + ".";
            return;
        }
        try {
            const BlockedSignals noSignals;
            socket_ = std::move(opening.socket);
            const std::size_t capacity = socket_->receiveCapacity();
            budget_.setCapacity(capacity);
            sendsPerReceive_ = std::clamp<std::size_t>(capacity / 8, 16, mostSendsPerReceive);
            thread_ = std::thread([this] { run(); });
        } catch (const std::system_error& error) {
            socket_.reset();
            reason_ = std::string("Ping is not possible, no thread for it: ") + error.what() + ".";
        }
    });
}

void EchoCore::close() {
    {
        const std::lock_guard lock(mutex_);
        closing_ = true;
    }
    if (thread_.joinable()) {
        wakeUp();
        thread_.join();
    }
}

void EchoCore::start(std::span<const std::uint32_t> addresses, const EchoOptions& options,
                     EchoCallback callback, std::vector<ProbeId>& ids) {
    open();
    const auto shared = std::make_shared<const EchoCallback>(std::move(callback));
    const Bulk bulk(*this, addresses.size());
    while (!addresses.empty()) {
        const auto batch = addresses.first(std::min(addresses.size(), echoBatch));
        if (!socket_ || !startBatch(batch, options, shared, ids)) {
            ids.resize(ids.size() + addresses.size());
            refuse(addresses, *shared);
            return;
        }
        addresses = addresses.subspan(batch.size());
    }
}

/// False when the engine is going away.
bool EchoCore::startBatch(std::span<const std::uint32_t> addresses, const EchoOptions& options,
                          const std::shared_ptr<const EchoCallback>& callback, std::vector<ProbeId>& ids) {
    std::array<Departure, echoBatch> departures;
    std::size_t count = 0;
    bool wake = false;
    {
        const std::lock_guard lock(mutex_);
        if (closing_) {
            return false;
        }
        const Time now = std::chrono::steady_clock::now();
        for (const std::uint32_t address : addresses) {
            const bool mayLeave = table_.inLine() == 0 && budget_.take(now);
            const EchoTable::Added added = table_.add(address, options, callback, now, mayLeave);
            ids.push_back(added.id);
            if (added.request) {
                departures[count++] = {added.id, *added.request};
            }
        }
        wake = std::min(now + std::chrono::milliseconds(options.timeoutMs), nextLook(now)) < wakesAt_;
        if (!heldBack_.empty()) { // those who came first go first
            holdBackLocked(std::span(departures).first(count), EAGAIN);
            count = 0;
        }
    }
    if (wake) {
        wakeUp();
    }
    transmit(std::span(departures).first(count));
    return true;
}

void EchoCore::refuse(std::span<const std::uint32_t> addresses, const EchoCallback& callback) const {
    EchoResult result;
    result.kind = socket_ ? EchoKind::Stopped : EchoKind::NotPermitted;
    for (const std::uint32_t address : addresses) {
        result.target = address;
        callback(result);
    }
}

void EchoCore::transmit(std::span<const Departure> departures) {
    while (!departures.empty()) {
        std::array<EchoRequest, echoBatch> requests;
        const std::size_t count = std::min(departures.size(), echoBatch);
        std::transform(departures.begin(), departures.begin() + static_cast<std::ptrdiff_t>(count),
                       requests.begin(), [](const Departure& departure) { return departure.request; });
        int error = 0;
        const std::size_t sent = socket_->send(std::span(requests).first(count), error);
        relieveReceiveBuffer(sent);
        departures = departures.subspan(sent);
        if (sent > 0) {
            continue;
        }
        if (temporary(error)) {
            holdBack(departures, error);
            return;
        }
        departureFailed(departures.first(1), error);
        departures = departures.subspan(1);
    }
}

void EchoCore::departureFailed(std::span<const Departure> rest, int error) {
    {
        const std::lock_guard lock(mutex_);
        for (const Departure& departure : rest) {
            if (auto completion = table_.end(departure.id, EchoKind::SendFailed, error)) {
                completed_.push_back(std::move(*completion));
            }
        }
    }
    wakeUp();
}

void EchoCore::holdBack(std::span<const Departure> rest, int error) {
    {
        const std::lock_guard lock(mutex_);
        holdBackLocked(rest, error);
    }
    wakeUp();
}

void EchoCore::holdBackLocked(std::span<const Departure> rest, int error) {
    const Time now = std::chrono::steady_clock::now();
    for (const Departure& departure : rest) {
        if (table_.noteSending(departure.id, departure.request.sequence, now, error)) {
            heldBack_.push_back(departure);
        }
    }
}

/// Somebody who sends faster than the engine's thread gets to read does the reading himself: replies that no
/// buffer holds are lost, and a lost reply shows a living device as Off.
void EchoCore::relieveReceiveBuffer(std::size_t requests) {
    if (sentSinceReceive_.fetch_add(requests, std::memory_order_relaxed) + requests < sendsPerReceive_) {
        return;
    }
    receiveAll();
    if (bulkSenders_ > 0) {
        return;
    }
    const std::lock_guard lock(mutex_);
    if (!completed_.empty()) {
        wakeUp();
    }
}

bool EchoCore::cancel(ProbeId id) {
    {
        const std::lock_guard lock(mutex_);
        auto completion = table_.end(id, EchoKind::Stopped);
        if (!completion) {
            return false;
        }
        completed_.push_back(std::move(*completion));
    }
    wakeUp();
    return true;
}

void EchoCore::wakeUp() {
    const std::uint64_t one = 1;
    // The only failure is a counter that is full, and then the thread is being woken already.
    [[maybe_unused]] const auto written = ::write(wake_.get(), &one, sizeof one);
}

void EchoCore::run() {
    while (true) {
        waitForWork();
        // Deadlines are judged by the time before the reading, so that a reply which came in time counts
        // however late this thread gets to run.
        const Time now = std::chrono::steady_clock::now();
        receiveAll();
        endOverdue(now);
        const std::vector<Departure> departures = departuresDue(std::chrono::steady_clock::now());
        transmit(departures);
        callBack();
        const std::lock_guard lock(mutex_);
        if (closing_) {
            break;
        }
    }
    endEverything();
}

void EchoCore::waitForWork() {
    std::array<pollfd, 2> watched{{{socket_->descriptor(), POLLIN, 0}, {wake_.get(), POLLIN, 0}}};
    int timeout = pollTimeout(std::chrono::steady_clock::now());
    if (bulkSenders_ > 0) {
        watched[0].fd = -1;
        timeout = timeout == 0 ? 0 : 1;
    }
    ::poll(watched.data(), watched.size(), timeout);
    if (watched[1].revents != 0) {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto drained = ::read(wake_.get(), &count, sizeof count);
    }
}

/// When to try again what could not leave yet. With the mutex held.
EchoCore::Time EchoCore::nextLook(Time now) const {
    const bool somebodyMayLeave = !heldBack_.empty() || (table_.inLine() > 0 && table_.canAdmit());
    return somebodyMayLeave ? now + retryPause : Time::max();
}

int EchoCore::pollTimeout(Time now) {
    const std::lock_guard lock(mutex_);
    if (closing_ || !completed_.empty()) {
        return 0;
    }
    wakesAt_ = std::min(nextLook(now), table_.nextDeadline().value_or(Time::max()));
    if (wakesAt_ == Time::max()) {
        return -1;
    }
    // Rounded up: waking a moment too early would only spin.
    const auto pause = std::chrono::ceil<std::chrono::milliseconds>(wakesAt_ - now).count();
    return static_cast<int>(std::clamp<std::int64_t>(pause, 0, INT_MAX));
}

void EchoCore::receiveAll() {
    const std::lock_guard reader(receiving_);
    sentSinceReceive_.store(0, std::memory_order_relaxed);
    bool more = true;
    for (std::size_t batch = 0; more && batch < mostBatches; ++batch) {
        arrivals_.clear();
        more = socket_->receive(arrivals_);
        const std::lock_guard lock(mutex_);
        for (const EchoArrival& arrival : arrivals_) {
            if (auto completion = table_.match(arrival)) {
                completed_.push_back(std::move(*completion));
            }
        }
    }
}

void EchoCore::endOverdue(Time now) {
    const std::lock_guard lock(mutex_);
    while (auto completion = table_.expireOne(now)) {
        completed_.push_back(std::move(*completion));
    }
}

/// What was held back and what got a number from those in line.
std::vector<EchoCore::Departure> EchoCore::departuresDue(Time now) {
    const std::lock_guard lock(mutex_);
    std::vector<Departure> departures;
    for (const Departure& departure : heldBack_) {
        if (table_.noteSending(departure.id, departure.request.sequence, now, 0)) {
            departures.push_back(departure);
        }
    }
    heldBack_.clear();
    while (table_.inLine() > 0 && table_.canAdmit() && budget_.take(now)) {
        const auto request = table_.admitOne(now);
        departures.push_back({table_.holder(request->sequence), *request});
    }
    return departures;
}

void EchoCore::callBack() {
    std::vector<EchoCompletion> completed;
    {
        const std::lock_guard lock(mutex_);
        completed.swap(completed_);
    }
    std::size_t called = 0;
    for (const EchoCompletion& completion : completed) {
        (*completion.callback)(completion.result);
        if (++called % callsPerReceive == 0) {
            receiveAll();
        }
    }
}

void EchoCore::endEverything() {
    {
        const std::lock_guard lock(mutex_);
        while (auto completion = table_.endAny()) {
            completed_.push_back(std::move(*completion));
        }
    }
    callBack();
}

} // namespace mirovane
