#pragma once

#include "livestat/FeatureHost.h"
#include "livestat/Sweep.h"
#include "model/Document.h"
#include "model/Settings.h"
#include "platform/Result.h"
#include "platform/Timers.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace mirovane {

/// The user's own setting, probes a second; kept within its bounds.
constexpr std::string_view sweepRateSetting = "DiscoverNowPerSec";
int readSweepRate(const CSettings& settings);

/// What a sweep of this document's ranges would ask, or why there can be none, as a sentence for people.
Result<SweepPlan, std::string> planSweep(const CMirovaneDoc& document);

/// For a sweep that would take many minutes, most likely because a range was mistyped: how large it is and
/// how long it takes, as a sentence. Nothing for all others.
std::optional<std::string> sweepWarning(const SweepPlan& plan, int perSecond);

/// How a sweep ended.
struct SweepResult {
    struct Added {
        std::int32_t recID = 0;
        FoundHost host;
    };

    SweepProgress progress;
    std::vector<Added> added;     ///< by address
    bool complete = false;        ///< it was not ended before every address had its answer
    bool kept = false;            ///< what was found was to be added
    bool datafileFull = false;    ///< not all found hosts have room
    bool saveFailed = false;      ///< what was added is in memory; the log says why it is not in the datafile
    bool takenOver = false;       ///< ended because another station took Live Discover over
    std::size_t alreadyKnown = 0; ///< found, but devices have got these addresses meanwhile
};

/// "Asked 254 addresses: 3 hosts answered, 3 were added to the Discovered/Misc window." and what went wrong.
std::string describeResult(const SweepResult& result);

/// What Discover Now asks of the station besides what every feature does.
class DiscoverNowHost : public virtual FeatureHost {
public:
    /// Live Discover is on at this station.
    virtual bool liveDiscoverRuns() const = 0;

    /// Devices were added and saved: show them.
    virtual void redraw() = 0;
};

/// "Discover Now": one pass over all Live Discover ranges at once. Found hosts that no device has become
/// devices in the Discovered/Misc window, all with one save at the end. Between start and end no record is
/// touched but the owner record of Live Discover, which says to the other stations that somebody discovers
/// here: so the document may be edited, saved and reloaded meanwhile. Main thread only; the probing has a
/// thread of its own.
class CDiscoverNow {
public:
    enum class Found { Keep, Discard };

    /// All references outlive the object.
    CDiscoverNow(CMirovaneDoc& document, SweepProbes& probes, TimerFactory& timers, DiscoverNowHost& host);
    ~CDiscoverNow();
    CDiscoverNow(const CDiscoverNow&) = delete;
    CDiscoverNow& operator=(const CDiscoverNow&) = delete;

    /// Why no echo can be sent on this computer; nothing while all is well. May open a socket, never waits.
    std::optional<std::string> echoUnusable() { return probes_.echoUnusable(); }

    /// Asks where another station runs Live Discover, makes this one the owner, saves and begins. An error
    /// says why it did not begin; it is empty when the user said No.
    std::optional<std::string> start(int perSecond);

    bool running() const { return sweep_ != nullptr; }

    /// Ends a running sweep. Returns when what was found has been added and saved, or, while the document
    /// holds still, leaves that to one of the next ticks.
    void end(Found found);

    /// As end(Keep), whatever the document does: before the datafile is left.
    void endNow();

    /// The document was reloaded: another station may have taken Live Discover over.
    void afterReload();

    /// Of the running sweep, or of the last one.
    const SweepProgress& progress() const { return progress_; }
    const std::vector<FoundHost>& found() const { return found_; } ///< in the order in which they answered
    const std::optional<SweepResult>& result() const { return result_; }

    /// A few times a second while a sweep runs; `changed` are the places in found() that are new or got a
    /// name.
    std::function<void(const std::vector<std::size_t>& changed)> onProgress;

    /// A sweep began or ended.
    std::function<void()> onRunning;

private:
    void tick();
    void takeNews();
    void finish();
    void addFound(SweepResult& result);
    void addOnce(const std::vector<FoundHost>& hosts, SweepResult& result);
    std::unordered_map<std::uint32_t, std::int32_t>
    stillThere(const std::vector<SweepResult::Added>& added) const;
    bool shallRelease() const;
    void releaseOwner();

    CMirovaneDoc& document_;
    SweepProbes& probes_;
    DiscoverNowHost& host_;
    std::unique_ptr<Timer> timer_;
    std::unique_ptr<CSweep> sweep_;
    std::vector<FoundHost> found_;
    std::unordered_map<std::uint32_t, std::size_t> places_; ///< in found_, by address
    SweepProgress progress_;
    std::optional<SweepResult> result_;
    std::optional<Found> ending_;
    bool ownedBefore_ = false; ///< the owner record named this station already
    bool takenOver_ = false;
};

} // namespace mirovane
