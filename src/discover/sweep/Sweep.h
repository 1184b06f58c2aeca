#pragma once

#include "discover/sweep/SweepRun.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace mirovane {

/// A sweep on a thread of its own, so that its pace does not depend on what else its owner does. Touches no
/// record: it takes a plan and gives out values. Made, asked and destroyed by one thread; no call waits for
/// the network. Destroying it ends the thread within milliseconds.
class CSweep {
public:
    /// Begins at once. `probes` and `clock` outlive the sweep.
    CSweep(CSweepPlan plan, const SweepOptions& options, SweepProbes& probes, const Clock& clock);
    ~CSweep();
    CSweep(const CSweep&) = delete;
    CSweep& operator=(const CSweep&) = delete;

    /// Ends it where it is; what was found until now can still be taken.
    void stop();

    /// Complete, stopped, or there was no thread for it: progress().phase is then Over, too.
    bool over() const;

    SweepProgress progress() const;

    /// As CSweepRun::takeNews().
    std::vector<FoundHost> takeNews();

private:
    void work(const std::stop_token& stop);
    void publish();

    CSweepRun run_; ///< the thread's own while it lives
    const Clock& clock_;
    mutable std::mutex mutex_;
    std::condition_variable_any stopped_;
    SweepProgress progress_;
    std::vector<FoundHost> news_;
    std::jthread thread_; ///< last: it uses all of the above
};

} // namespace mirovane
