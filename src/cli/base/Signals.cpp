#include "cli/base/Signals.h"

#include <csignal>
#include <sys/signalfd.h>
#include <unistd.h>

namespace mirovane {

namespace {

sigset_t handledSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&set, signal);
    return set;
}

} // namespace

CSignals::CSignals(std::function<void(int)> onSignal) : onSignal_(std::move(onSignal)) {
    const sigset_t set = handledSignals();
    descriptor_ = signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC);
    if (descriptor_ < 0)
        return; // without it the signals end the process as they always do
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { take(); });
}

CSignals::~CSignals() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

void CSignals::take() {
    signalfd_siginfo info{};
    while (read(descriptor_, &info, sizeof info) == static_cast<ssize_t>(sizeof info))
        onSignal_(static_cast<int>(info.ssi_signo));
}

} // namespace mirovane
