#include "app/EndSignals.h"

#include <atomic>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>
#include <utility>

namespace mirovane {

namespace {

constexpr std::array<int, 3> signals{SIGTERM, SIGHUP, SIGINT};

// A signal handler is given nothing but a number: this is how it finds the pipe.
std::atomic<int> writeEnd{-1};

extern "C" void mirovaneOnEndSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(writeEnd.load(), &byte, 1);
}

} // namespace

CEndSignals::CEndSignals(std::function<void()> onEnd) : onEnd_(std::move(onEnd)) {
    if (::pipe2(pipe_.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // without it the signals keep ending the program the hard way
    writeEnd = pipe_[1];
    notifier_ = std::make_unique<QSocketNotifier>(pipe_[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        char byte = 0;
        while (::read(pipe_[0], &byte, 1) == 1) {
        }
        onEnd_();
    });
    for (const int number : signals) {
        struct sigaction action = {};
        action.sa_handler = mirovaneOnEndSignal;
        action.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
        ::sigaction(number, &action, nullptr);
    }
}

CEndSignals::~CEndSignals() {
    if (pipe_[0] < 0)
        return;
    for (const int number : signals)
        ::signal(number, SIG_DFL);
    writeEnd = -1;
    ::close(pipe_[0]);
    ::close(pipe_[1]);
}

} // namespace mirovane
