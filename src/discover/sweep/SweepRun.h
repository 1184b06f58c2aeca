#pragma once

#include "discover/sweep/Inbox.h"
#include "discover/sweep/SweepNames.h"
#include "discover/sweep/SweepPace.h"
#include "discover/sweep/SweepPlan.h"
#include "discover/sweep/SweepProgress.h"
#include "discover/sweep/SweepQueue.h"
#include "discover/sweep/SweepWindow.h"
#include "model/format/Datafile.h"
#include "platform/Clock.h"
#include "probes/SweepProbes.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace mirovane {

struct SweepOptions {
    int perSecond = usualSweepRate;

    /// All probes wait at once, so a generous time-out costs its length once at the end, and hosts behind
    /// slow links are found.
    EchoOptions echo;

    /// The sweep ends when it has found so many: the datafile takes no more.
    std::size_t mostFound = Datafile::maxRecords;
};

/// One pass over a plan: what leaves when, who answered, what they are called. Does what is due each time it
/// is told to go on, waits for nothing and has no thread of its own; calls come from one thread at a time.
/// Destroying it at any moment abandons what is in flight: late answers are ignored.
///
/// An address is asked once. A request that the system could not take (a full neighbour table, no memory) did
/// not leave: its address comes again later, a few times.
///
/// Names are looked up beside the probing.
class CSweepRun {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::seconds mostNaming{60}; ///< after the last probe

    /// References outlive the run; `plan` is kept.
    CSweepRun(CSweepPlan plan, const SweepOptions& options, SweepProbes& probes, const Clock& clock);
    ~CSweepRun();
    CSweepRun(const CSweepRun&) = delete;
    CSweepRun& operator=(const CSweepRun&) = delete;

    /// Does what is due. When to call again, at the latest; nothing once the sweep is over.
    std::optional<Time> goOn();

    const SweepProgress& progress() const { return progress_; }

    /// Hosts found and names learned since the last call. A host comes once when it is found, and again when
    /// its name is known.
    std::vector<FoundHost> takeNews();

private:
    void collect(Time now);
    void takeEcho(const EchoResult& echo);
    void countFailure(int error);
    void send(Time now);
    std::chrono::milliseconds expectedLeft(Time now) const;
    double expectedPace(Time now) const;
    void updatePhase(Time now);

    const CSweepPlan plan_;
    const SweepOptions options_;
    SweepProbes& probes_;
    const Clock& clock_;
    const std::shared_ptr<CInbox<EchoResult>> inbox_;
    CSweepQueue queue_;
    CSweepPace pace_;
    CSweepWindow window_;
    const Time begun_;
    CSweepNames names_;
    std::uint64_t inFlight_ = 0;
    Time lastSent_{};
    Time namingSince_{};
    std::vector<FoundHost> news_;
    SweepProgress progress_;
};

} // namespace mirovane
