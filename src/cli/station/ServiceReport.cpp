#include "cli/station/ServiceReport.h"

#include <chrono>
#include <utility>

namespace mirovane {

namespace {

/// Of the time that the manager waits: one sign may get lost.
constexpr int signsPerPeriod = 3;

constexpr std::size_t mostWaiting = 20;

} // namespace

CServiceReport::CServiceReport(CServiceManager manager, TimerFactory& timers)
    : manager_(std::move(manager)), watchdog_(timers.makeTimer([this] { manager_.tell("WATCHDOG=1"); })) {
    if (const auto period = manager_.watchdog())
        watchdog_->start(std::chrono::duration_cast<std::chrono::milliseconds>(*period / signsPerPeriod));
}

void CServiceReport::ready() {
    tell("READY=1");
}

void CServiceReport::reloading() {
    tell("RELOADING=1\nMONOTONIC_USEC=" + monotonicMicroseconds());
}

void CServiceReport::reloaded() {
    tell("READY=1");
}

void CServiceReport::stopping() {
    tell("STOPPING=1\nSTATUS=Ends: Live Stat and Live Discover go off, the datafile is saved");
}

void CServiceReport::status(const std::string& line) {
    if (line != status_)
        tell("STATUS=" + line);
    else
        tellWaiting();
    status_ = line;
}

void CServiceReport::tell(std::string lines) {
    if (!manager_.listens())
        return;
    if (waiting_.size() < mostWaiting)
        waiting_.push_back(std::move(lines));
    tellWaiting();
}

void CServiceReport::tellWaiting() {
    while (!waiting_.empty() && manager_.tell(waiting_.front()))
        waiting_.pop_front();
}

} // namespace mirovane
