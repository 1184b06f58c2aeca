#include "platform/BlockedSignals.h"

#include <cerrno>
#include <ctime>

namespace mirovane {

CBlockedSignals::CBlockedSignals() {
    sigfillset(&signals_);
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
}

CBlockedSignals::CBlockedSignals(std::initializer_list<int> signals) {
    sigemptyset(&signals_);
    for (const int signal : signals)
        sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
}

CBlockedSignals::~CBlockedSignals() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr); // returns its error, and sets no errno
}

void CBlockedSignals::discardPending() {
    const int kept = errno;
    sigset_t ours = signals_;
    for (int signal = 1; signal < NSIG; ++signal)
        if (sigismember(&before_, signal) == 1)
            sigdelset(&ours, signal);
    const timespec none{};
    while (sigtimedwait(&ours, nullptr, &none) > 0) {
    }
    errno = kept;
}

} // namespace mirovane
