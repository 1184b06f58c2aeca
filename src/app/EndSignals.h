#pragma once

#include <QSocketNotifier>

#include <array>
#include <functional>
#include <memory>

namespace mirovane {

/// SIGTERM, SIGHUP and SIGINT as an event of the main thread. A second signal of the same kind ends the
/// program at once. At most one object of this class may live: signals belong to the process.
class CEndSignals {
public:
    explicit CEndSignals(std::function<void()> onEnd);
    ~CEndSignals();
    CEndSignals(const CEndSignals&) = delete;
    CEndSignals& operator=(const CEndSignals&) = delete;

private:
    std::function<void()> onEnd_;
    std::array<int, 2> pipe_{-1, -1};
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace mirovane
