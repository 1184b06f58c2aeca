#pragma once

#include "livestat/SweepRun.h"

#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace mirovane {

/// A sweep on a thread of its own, so that its pace does not depend on what else its owner does. Touches no
/// record: it takes a plan and gives out values. Made, asked and destroyed by one thread; no call waits for
/// the network. Destroying it ends the thread within milliseconds.
class CSweep {
public:
    /// Begins at once. `probes` and `clock` outlive the sweep.
    CSweep(SweepPlan plan, const SweepOptions& options, SweepProbes& probes, const Clock& clock);
    ~CSweep();
    CSweep(const CSweep&) = delete;
    CSweep& operator=(const CSweep&) = delete;

    /// Ends it where it is; what was found until now can still be taken.
    void stop();

    /// Complete, stopped, or there was no thread for it: progress().phase is then Over, too.
    bool over() const;

    SweepProgress progress() const;

    /// As SweepRun::takeNews().
    std::vector<FoundHost> takeNews();

private:
    void work(const std::stop_token& stop);
    void publish();

    SweepRun run_; ///< the thread's own while it lives
    const Clock& clock_;
    mutable std::mutex mutex_;
    std::condition_variable_any stopped_;
    SweepProgress progress_;
    std::vector<FoundHost> news_;
    std::jthread thread_; ///< last: it uses all of the above
};

/// "Some addresses could not be asked" as a sentence for people; empty when all could.
std::string describeFailures(const SweepProgress& progress);

/// "4 s", "1:05 min", "9:19 h": for people who wait.
std::string describeDuration(std::chrono::milliseconds span);

/// "16,777,216".
std::string groupedNumber(std::uint64_t number);

/// How long a sweep takes at most, without the names.
std::chrono::milliseconds sweepDuration(std::uint64_t probes, int perSecond, const EchoOptions& echo = {});

} // namespace mirovane
