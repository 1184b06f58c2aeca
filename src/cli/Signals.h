#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace mirovane {

/// Turns signals into calls on the main thread's event loop. Make it before any thread starts: the signals
/// are blocked for this thread and those that it starts from then on, and arrive here alone.
class Signals {
public:
    /// `onSignal` gets SIGTERM, SIGINT or SIGHUP.
    explicit Signals(std::function<void(int)> onSignal);
    ~Signals();
    Signals(const Signals&) = delete;
    Signals& operator=(const Signals&) = delete;

private:
    void take();

    std::function<void(int)> onSignal_;
    int descriptor_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace mirovane
