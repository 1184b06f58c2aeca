#pragma once

#include "cli/base/Output.h"
#include "cli/base/Signals.h"
#include "discover/sweep/DiscoverNow.h"

#include <functional>

namespace mirovane {

/// SIGINT, SIGTERM and SIGHUP end a command's work. Make it before any thread starts.
class CInterrupt {
public:
    CInterrupt();

    /// At most one action at a time; called at once where the signal came already.
    void setAction(std::function<void()> action);

private:
    std::function<void()> action_;
    bool arrived_ = false;
    CSignals signals_;
};

/// How far a sweep has come, in few words that fit a narrow terminal.
std::string describeProgress(const SweepProgress& progress);

/// Runs it to its end on the event loop of the QCoreApplication, with a line of progress on a terminal. An
/// interrupted sweep ends with what it found until then. Nothing is added: `added` of the result holds all
/// that were found, without record IDs.
SweepResult runDrySweep(COutput& out, CSweep& sweep, CInterrupt& interrupt);

/// The same for one that has begun on a station; what it found has been added when this returns.
SweepResult runSweepOn(COutput& out, CDiscoverNow& discoverNow, CInterrupt& interrupt);

} // namespace mirovane
