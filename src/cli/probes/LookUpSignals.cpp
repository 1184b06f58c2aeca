#include "cli/probes/LookUpSignals.h"

#include <ctime>

namespace mirovane {

CLookUpSignals::CLookUpSignals() {
    sigemptyset(&set_);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&set_, number);
    pthread_sigmask(SIG_BLOCK, &set_, &before_);
    watcher_ = std::jthread([this](const std::stop_token& over) { watch(over); });
}

CLookUpSignals::~CLookUpSignals() {
    watcher_.request_stop();
    watcher_.join();
    if (caught_ > 0)
        std::raise(caught_); // arrives when it is unblocked
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void CLookUpSignals::watch(const std::stop_token& over) {
    constexpr timespec brief{0, 20'000'000};
    while (!over.stop_requested() && caught_ <= 0)
        caught_ = sigtimedwait(&set_, nullptr, &brief);
    if (caught_ > 0)
        stop_.request_stop();
}

} // namespace mirovane
