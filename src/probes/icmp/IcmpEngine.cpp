#include "probes/icmp/IcmpEngine.h"

#include "platform/BlockedSignals.h"
#include "probes/icmp/EchoTraffic.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <condition_variable>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <utility>

namespace mirovane {

namespace {

/// Where a blocked caller waits for the engine's thread. The callback shares it, because the caller may leave
/// first.
class CEchoWait {
public:
    void finish(const EchoResult& result) {
        const std::lock_guard lock(mutex_);
        result_ = result;
        done_.notify_one();
    }

    /// Nothing when the stop came first.
    std::optional<EchoResult> wait(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        done_.wait(lock, stop, [this] { return result_.has_value(); });
        return result_;
    }

private:
    std::mutex mutex_;
    std::condition_variable_any done_;
    std::optional<EchoResult> result_;
};

EchoResult unsentResult(std::uint32_t address, EchoKind kind) {
    EchoResult result;
    result.kind = kind;
    result.target = address;
    return result;
}

} // namespace

// What callers do.

CIcmpEngine::CIcmpEngine(EchoSocketOpener opener) : opener_(std::move(opener)) {}

CIcmpEngine::~CIcmpEngine() {
    if (!thread_.joinable())
        return;
    {
        const std::lock_guard lock(mutex_);
        closing_ = true;
        wakeThread();
    }
    thread_.join();
}

void CIcmpEngine::startAll(std::span<const std::uint32_t> addresses, const EchoOptions& options,
                           EchoCallback callback) {
    EchoOrder order{{addresses.begin(), addresses.end()}, options, std::move(callback)};
    open();
    if (socket_ && enqueue(order))
        return;
    const EchoKind kind = socket_ ? EchoKind::Stopped : EchoKind::NotPermitted;
    for (const std::uint32_t address : addresses)
        order.callback(unsentResult(address, kind));
}

void CIcmpEngine::start(std::uint32_t address, const EchoOptions& options, EchoCallback callback) {
    startAll(std::span(&address, 1), options, std::move(callback));
}

EchoResult CIcmpEngine::echo(std::uint32_t address, const EchoOptions& options, const std::stop_token& stop) {
    if (stop.stop_requested())
        return unsentResult(address, EchoKind::Stopped);
    const auto waiting = std::make_shared<CEchoWait>();
    start(address, options, [waiting](const EchoResult& result) { waiting->finish(result); });
    return waiting->wait(stop).value_or(unsentResult(address, EchoKind::Stopped));
}

std::optional<std::string> CIcmpEngine::unusable() {
    open();
    return socket_ ? std::nullopt : std::optional(reason_);
}

std::string CIcmpEngine::socketKind() {
    open();
    return socket_ ? socket_->kind() : "none";
}

void CIcmpEngine::open() {
    std::call_once(
        opened_, [this] { openOnce(); });
}

void CIcmpEngine::openOnce() {
    EchoSocketOpening opening = opener_();
    reason_ = std::move(opening.reason);
    if (!opening.socket)
        return;
    bell_ = CDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!bell_) {
        reason_ = "Ping is not possible: " + std::generic_category().message(errno) + ".";
        return;
    }
    socket_ = std::move(opening.socket);
    try {
        const CBlockedSignals noSignals;
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error& error) {
        socket_.reset();
        reason_ = std::string("Ping is not possible, no thread for it: ") + error.what() + ".";
    }
}

/// False when the engine is going away; the order is then still the caller's. The bell rings under the mutex,
/// because the engine may be gone a moment later.
bool CIcmpEngine::enqueue(EchoOrder& order) {
    const std::lock_guard lock(mutex_);
    if (closing_)
        return false;
    if (queue_.empty()) // the thread takes all there is at once
        wakeThread();
    queue_.push_back(std::move(order));
    return true;
}

void CIcmpEngine::wakeThread() {
    const std::uint64_t one = 1;
    // The only failure is a counter that is full, and then the thread is being woken already.
    [[maybe_unused]] const auto written = ::write(bell_.get(), &one, sizeof one);
}

// What the thread does.

void CIcmpEngine::run() {
    const CSystemClock clock;
    CEchoTraffic traffic(*socket_, clock);
    while (takeOrders(traffic)) {
        traffic.turn();
        sleep(traffic.pause());
    }
    traffic.stopAll();
}

/// False when the engine is going away.
bool CIcmpEngine::takeOrders(CEchoTraffic& traffic) {
    std::vector<EchoOrder> orders;
    bool goOn = false;
    {
        const std::lock_guard lock(mutex_);
        orders.swap(queue_);
        goOn = !closing_;
    }
    for (EchoOrder& order : orders)
        traffic.add(std::move(order));
    return goOn;
}

void CIcmpEngine::sleep(std::optional<std::chrono::milliseconds> pause) {
    if (pause && pause->count() == 0)
        return;
    std::array<pollfd, 2> watched{{{socket_->descriptor(), POLLIN, 0}, {bell_.get(), POLLIN, 0}}};
    const int timeout = pause ? static_cast<int>(std::min<std::int64_t>(pause->count(), INT_MAX)) : -1;
    ::poll(watched.data(), watched.size(), timeout);
    if (watched[1].revents != 0) {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto drained = ::read(bell_.get(), &count, sizeof count);
    }
}

} // namespace mirovane
