#pragma once

#include "platform/Timers.h"
#include "platform/process/ServiceManager.h"

#include <deque>
#include <memory>
#include <string>

namespace mirovane {

/// Tells the service manager what the station does, from the main loop: a manager that waits for signs of
/// life hears none from a loop that is stuck, and starts the station anew. What a busy manager does not take
/// is told again later, in order. Main thread; the timers outlive it.
class CServiceReport {
public:
    CServiceReport(CServiceManager manager, TimerFactory& timers);

    void ready();
    void reloading();
    void reloaded();
    void stopping();

    /// One line for people. Tells it only where it has changed, so it may be called at every turn.
    void status(const std::string& line);

private:
    void tell(std::string lines);
    void tellWaiting();

    CServiceManager manager_;
    std::unique_ptr<Timer> watchdog_;
    std::deque<std::string> waiting_;
    std::string status_;
};

} // namespace mirovane
