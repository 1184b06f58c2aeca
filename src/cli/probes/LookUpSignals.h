#pragma once

#include <csignal>
#include <stop_token>
#include <thread>

namespace mirovane {

/// SIGINT, SIGTERM and SIGHUP end the look-up, and with it the process that it runs; then they end the
/// program as they always do. Make it before any other thread starts.
class CLookUpSignals {
public:
    CLookUpSignals();
    ~CLookUpSignals();
    CLookUpSignals(const CLookUpSignals&) = delete;
    CLookUpSignals& operator=(const CLookUpSignals&) = delete;

    std::stop_token token() const { return stop_.get_token(); }

private:
    void watch(const std::stop_token& over);

    sigset_t set_{};
    sigset_t before_{};
    std::stop_source stop_;
    int caught_ = 0; ///< the watcher's until it has ended
    std::jthread watcher_;
};

} // namespace mirovane
