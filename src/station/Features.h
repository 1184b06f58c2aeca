#pragma once

#include "discover/Discover.h"
#include "discover/sweep/DiscoverNow.h"
#include "feature/FeatureServices.h"
#include "livestat/schedule/Scheduler.h"
#include "platform/Workers.h"
#include "probes/StepProbes.h"

#include <memory>

namespace mirovane {

/// What they ask of the station, which is all three at once.
struct FeatureHosts {
    LiveStatHost& liveStat;
    LiveDiscoverHost& liveDiscover;
    DiscoverNowHost& discoverNow;
};

/// What they ask the network with, and where. The threads are the features' own where none are given.
struct FeatureTools {
    const StepProbes& probes;
    Workers* workers;
    SweepProbes* sweepProbes; ///< null: there is no Discover Now
};

/// What a station runs on its datafile in the background: Live Stat, Live Discover and Discover Now. Main
/// thread.
class CFeatures {
public:
    /// All references outlive the features.
    CFeatures(const FeatureServices& services, const FeatureTools& tools, const FeatureHosts& hosts,
              const LiveStatSettings& settings);

    CLiveStatScheduler& liveStat() { return *liveStat_; }
    const CLiveStatScheduler& liveStat() const { return *liveStat_; }
    CLiveDiscover& liveDiscover() { return *liveDiscover_; }
    const CLiveDiscover& liveDiscover() const { return *liveDiscover_; }
    CDiscoverNow* discoverNow() { return discoverNow_.get(); }

    bool running() const;

    /// All off at once; the datafile is released and saved where one of them held it. What was found is kept.
    void end();

    /// Another document: off, nothing released.
    void reset();

    /// Each looks whether another station has claimed it.
    void afterReload();

    /// Those that go on in the next datafile, where the user saves the floor under another name.
    struct Moving {
        bool liveStat = false;
        bool liveDiscover = false;
    };

    /// The file that is left must not go on naming this station as the one that works on it.
    Moving leaveDatafile();
    void goOn(const Moving& moving);

private:
    /// Whoever waits for Live Stat's steps waits for no ping of a walk.
    std::unique_ptr<Workers> stepWorkers_;
    std::unique_ptr<Workers> walkWorkers_;
    CFeatureOwnership discoverOwner_; ///< held by Live Discover and by Discover Now
    std::unique_ptr<CLiveStatScheduler> liveStat_;
    std::unique_ptr<CLiveDiscover> liveDiscover_;
    std::unique_ptr<CDiscoverNow> discoverNow_;
};

} // namespace mirovane
