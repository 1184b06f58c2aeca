#include "probes/SnmpTransportSession.h"

#include <utility>

namespace mirovane {

bool SnmpTransportSession::deliver(const SnmpReceived& message, std::int32_t requestId) {
    {
        const std::lock_guard lock(mutex_);
        if (closed_) {
            return false;
        }
        inbox_.push_back(message);
        calling_ = std::this_thread::get_id();
    }
    callback_(0, requestId);
    const std::lock_guard lock(mutex_);
    calling_.reset();
    idle_.notify_all();
    return true;
}

std::optional<SnmpReceived> SnmpTransportSession::take() {
    const std::lock_guard lock(mutex_);
    if (inbox_.empty()) {
        return std::nullopt;
    }
    const SnmpReceived message = inbox_.front();
    inbox_.pop_front();
    return message;
}

std::deque<SnmpReceived> SnmpTransportSession::close() {
    std::unique_lock lock(mutex_);
    closed_ = true;
    idle_.wait(lock, [this] { return !calling_ || calling_ == std::this_thread::get_id(); });
    return std::exchange(inbox_, {});
}

} // namespace mirovane
