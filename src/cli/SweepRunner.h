#pragma once

#include "cli/Output.h"
#include "cli/Signals.h"
#include "livestat/DiscoverNow.h"

#include <functional>

namespace mirovane {

/// SIGINT, SIGTERM and SIGHUP end a command's work. Make it before any thread starts.
class Interrupt {
public:
    Interrupt();

    /// At most one action at a time; called at once where the signal came already.
    void setAction(std::function<void()> action);

private:
    std::function<void()> action_;
    bool arrived_ = false;
    Signals signals_;
};

/// How far a sweep has come, in few words that fit a narrow terminal.
std::string describeProgress(const SweepProgress& progress);

/// Runs it to its end on the event loop of the QCoreApplication, with a line of progress on a terminal. An
/// interrupted sweep ends with what it found until then. Nothing is added: `added` of the result holds all
/// that were found, without record IDs.
SweepResult runDrySweep(Output& out, CSweep& sweep, Interrupt& interrupt);

/// The same for one that has begun on a station; what it found has been added when this returns.
SweepResult runSweepOn(Output& out, CDiscoverNow& discoverNow, Interrupt& interrupt);

} // namespace mirovane
