#include "station/Features.h"

#include "platform/WorkerPool.h"

namespace mirovane {

CFeatures::CFeatures(const FeatureServices& services, const FeatureTools& tools, const FeatureHosts& hosts,
                     const LiveStatSettings& settings)
    : discoverOwner_(Feature::LiveDiscover, services, hosts.liveDiscover) {
    if (!tools.workers) {
        stepWorkers_ = std::make_unique<CWorkerPool>(1); // the scheduler sets the limit
        walkWorkers_ = std::make_unique<CWorkerPool>(1);
    }
    Workers& stepWorkers = tools.workers ? *tools.workers : *stepWorkers_;
    Workers& walkWorkers = tools.workers ? *tools.workers : *walkWorkers_;
    liveStat_ =
        std::make_unique<CLiveStatScheduler>(services, tools.probes, stepWorkers, hosts.liveStat, settings);
    liveDiscover_ = std::make_unique<CLiveDiscover>(services, discoverOwner_, tools.probes.hosts, walkWorkers,
                                                    hosts.liveDiscover);
    if (tools.sweepProbes)
        discoverNow_ =
            std::make_unique<CDiscoverNow>(services, discoverOwner_, *tools.sweepProbes, hosts.discoverNow);
}

bool CFeatures::running() const {
    return liveStat_->enabled() || liveStat_->nowActive() || liveDiscover_->enabled() ||
           (discoverNow_ && discoverNow_->running());
}

void CFeatures::end() {
    if (discoverNow_)
        discoverNow_->endNow();
    liveStat_->disableNow();
    liveDiscover_->disableNow();
}

void CFeatures::reset() {
    liveStat_->reset();
    liveDiscover_->reset();
}

void CFeatures::afterReload() {
    liveStat_->afterReload();
    liveDiscover_->afterReload();
    if (discoverNow_)
        discoverNow_->afterReload();
}

CFeatures::Moving CFeatures::leaveDatafile() {
    const Moving moving{liveStat_->enabled(), liveDiscover_->enabled()};
    if (discoverNow_)
        discoverNow_->endNow();
    if (moving.liveStat)
        liveStat_->disableNow();
    if (moving.liveDiscover)
        liveDiscover_->disableNow();
    return moving;
}

void CFeatures::goOn(const Moving& moving) {
    if (moving.liveStat)
        liveStat_->toggle();
    if (moving.liveDiscover)
        liveDiscover_->toggle();
}

} // namespace mirovane
