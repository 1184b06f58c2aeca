#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace mirovane {

/// Turns signals into calls on the main thread's event loop. Make it before any thread starts: the signals
/// are blocked for this thread and those that it starts from then on, and arrive here alone.
class CSignals {
public:
    /// `onSignal` gets SIGTERM, SIGINT or SIGHUP.
    explicit CSignals(std::function<void(int)> onSignal);
    ~CSignals();
    CSignals(const CSignals&) = delete;
    CSignals& operator=(const CSignals&) = delete;

private:
    void take();

    std::function<void(int)> onSignal_;
    int descriptor_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace mirovane
