#pragma once

#include "discover/sweep/FoundHosts.h"
#include "discover/sweep/Sweep.h"
#include "discover/sweep/SweepResult.h"
#include "discover/sweep/SweepSetup.h"
#include "feature/FeatureClaim.h"
#include "feature/FeatureHost.h"
#include "feature/FeatureServices.h"
#include "feature/StartRefusal.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace mirovane {

/// What Discover Now asks of the station besides what every feature does.
class DiscoverNowHost : public virtual FeatureHost {
public:
    /// `change` adds devices, at the user's command: it is one of his edits, under this name.
    virtual void recordEdit(const std::string& name, const std::function<void()>& change) = 0;

    /// So many devices were added and saved: show them.
    virtual void hostsDiscovered(std::size_t count) = 0;
};

/// Is told what becomes of a sweep. Main thread.
class DiscoverNowObserver {
public:
    virtual ~DiscoverNowObserver() = default;

    /// A few times a second while a sweep runs; `changed` are the places in found() that are new or got a
    /// name.
    virtual void sweepProgressed(const std::vector<std::size_t>& changed) = 0;

    virtual void sweepBegan() = 0;
    virtual void sweepEnded() = 0;
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
    CDiscoverNow(const FeatureServices& services, CFeatureOwnership& ownership, SweepProbes& probes,
                 DiscoverNowHost& host);
    ~CDiscoverNow();
    CDiscoverNow(const CDiscoverNow&) = delete;
    CDiscoverNow& operator=(const CDiscoverNow&) = delete;

    /// Observers stay until removed.
    void addObserver(DiscoverNowObserver& observer) { observers_.push_back(&observer); }
    void removeObserver(DiscoverNowObserver& observer) { std::erase(observers_, &observer); }

    /// Why no echo can be sent on this computer; nothing while all is well. May open a socket, never waits.
    std::optional<std::string> echoUnusable() { return probes_.echoUnusable(); }

    /// Asks where another station runs Live Discover, makes this one the owner, saves and begins. Nothing: it
    /// has begun.
    std::optional<StartRefusal> start(int perSecond);

    bool running() const { return phase_ != Phase::Idle; }

    /// Ends a running sweep. Returns when what was found has been added and saved, or, while the document
    /// holds still, leaves that to one of the next ticks.
    void end(Found found);

    /// As end(Keep), whatever the document does: before the datafile is left.
    void endNow();

    /// The document was reloaded: another station may have taken Live Discover over.
    void afterReload();

    /// Of the running sweep, or of the last one.
    const SweepProgress& progress() const { return progress_; }
    const std::vector<FoundHost>& found() const { return found_.hosts(); }
    const std::optional<SweepResult>& result() const { return result_; }

private:
    /// Behind Sweeping come the ways to be ended early; what is left to do waits until the document may be
    /// changed.
    enum class Phase { Idle, Sweeping, EndedKeeping, EndedDiscarding, EndedByOther };

    void begin(CSweepPlan plan, int perSecond);
    void tick();
    void takeNews();
    void endAs(Phase how);
    void finish();
    void addFound(SweepResult& result);

    CMirovaneDoc& document_;
    CMessageLog& log_;
    const Clock& clock_;
    SweepProbes& probes_;
    DiscoverNowHost& host_;
    CFeatureClaim claim_;
    std::unique_ptr<Timer> timer_;
    std::vector<DiscoverNowObserver*> observers_;
    Phase phase_ = Phase::Idle;
    std::unique_ptr<CSweep> sweep_; ///< while running
    CFoundHosts found_;
    SweepProgress progress_;
    std::optional<SweepResult> result_;
};

} // namespace mirovane
