#pragma once

#include "livestat/steps/Step.h"
#include "platform/AbandonableCalls.h"
#include "platform/Workers.h"
#include "probes/StepProbes.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>
#include <stop_token>
#include <vector>

namespace mirovane {

/// One criteria row of one device on its way through a worker. The main thread writes it before the start and
/// reads the outcome once it has been handed back by takeFinished(); in between it belongs to the worker.
struct StepJob {
    StepInput input;
    StepOutcome outcome;
    std::size_t slot = 0;
    std::stop_source stop;
    std::atomic<bool> takenUp = false;
};

/// Hands steps to the workers and takes the outcomes back. All calls come from the main thread. Jobs may
/// outlive this object; the probes must outlive the jobs.
class CStepJobs {
public:
    CStepJobs(const StepProbes& probes, Workers& workers) : probes_(probes), workers_(workers) {}

    /// Null when the system has no thread for it.
    std::shared_ptr<StepJob> start(StepInput input, std::size_t slot);

    /// The job started last has not reached a worker yet.
    bool workerStarting() const { return newest_ && !newest_->takenUp; }

    /// A worker has not finished its step yet.
    bool anyInProgress() const { return inbox_->inProgress > 0; }

    /// Outcomes that have come in since the last call.
    std::vector<std::shared_ptr<StepJob>> takeFinished();

    /// True once no worker is at a step any more; false when that takes longer than `patience`.
    bool waitUntilIdle(std::chrono::milliseconds patience) { return workers_.waitUntilIdle(patience); }

    void setLimit(std::size_t limit) { workers_.setLimit(limit); }

private:
    /// Shared with the workers, so that one that comes late finds somewhere to put its outcome.
    struct Inbox {
        std::mutex mutex;
        std::vector<std::shared_ptr<StepJob>> finished;
        std::atomic<std::size_t> inProgress = 0;
    };

    static void work(StepJob& job, const StepProbes& probes, CAbandonableCalls calls);

    StepProbes probes_;
    Workers& workers_;
    CAbandonableCalls fileCalls_; ///< for the steps that a share may hold
    std::shared_ptr<Inbox> inbox_ = std::make_shared<Inbox>();
    std::shared_ptr<StepJob> newest_;
};

} // namespace mirovane
