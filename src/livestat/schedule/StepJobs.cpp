#include "livestat/schedule/StepJobs.h"

#include "livestat/steps/Engine.h"

#include <new>

namespace mirovane {

std::shared_ptr<StepJob> CStepJobs::start(StepInput input, std::size_t slot) {
    auto job = std::make_shared<StepJob>();
    job->input = std::move(input);
    job->input.stop = job->stop.get_token();
    job->slot = slot;
    ++inbox_->inProgress;
    const bool started = workers_.start([job, inbox = inbox_, probes = probes_] {
        work(*job, probes);
        const std::lock_guard lock(inbox->mutex);
        inbox->finished.push_back(job);
        --inbox->inProgress;
    });
    if (!started) {
        --inbox_->inProgress;
        return nullptr;
    }
    newest_ = job;
    return job;
}

void CStepJobs::work(StepJob& job, const StepProbes& probes) {
    job.takenUp = true;
    try {
        job.outcome = runStep(job.input, probes);
    } catch (const std::bad_alloc&) {
        // As if it had been stopped: nothing changes, the row is run again.
        job.outcome = {};
        job.outcome.cancelled = true;
    }
}

std::vector<std::shared_ptr<StepJob>> CStepJobs::takeFinished() {
    std::vector<std::shared_ptr<StepJob>> finished;
    const std::lock_guard lock(inbox_->mutex);
    finished.swap(inbox_->finished);
    return finished;
}

} // namespace mirovane
