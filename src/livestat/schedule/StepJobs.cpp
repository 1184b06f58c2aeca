#include "livestat/schedule/StepJobs.h"

#include "livestat/steps/Engine.h"
#include "model/records/Placeholders.h"
#include "platform/files/FilePaths.h"

#include <algorithm>
#include <chrono>
#include <new>
#include <utility>

namespace mirovane {

namespace {

/// A large text on a slow share takes its time; one that went away takes minutes.
constexpr std::chrono::seconds longestFileStep{30};

/// Without memory it is as if the step had been stopped: nothing changes, the row is run again.
template <typename Step>
StepOutcome cancelledWithoutMemory(const Step& step) {
    try {
        return step();
    } catch (const std::bad_alloc&) {
        StepOutcome outcome;
        outcome.cancelled = true;
        return outcome;
    }
}

bool asksAShare(const StepInput& input) {
    return input.criteria.Command == Action::SearchInTextFile ||
           input.criteria.Command == Action::SearchForFile;
}

/// What hangs together.
std::string folderAsked(const StepInput& input) {
    std::string path = Expand(input.criteria.Argument, input.device, ExpandMode::Argument);
    std::ranges::replace(path, '\\', '/');
    return folderOf(path);
}

/// A step that hangs is left behind and changes nothing; its late outcome goes nowhere. While as many hang in
/// its folder as may, a step is not begun.
StepOutcome runAbandonably(const StepInput& input, const StepProbes& probes, CAbandonableCalls& calls) {
    const auto outcome = std::make_shared<StepOutcome>();
    const auto step = [outcome, input, probes] {
        *outcome = cancelledWithoutMemory([&] { return runStep(input, probes); });
    };
    const std::string folder = folderAsked(input);
    if (calls.run(folder, step, longestFileStep, input.stop) == CAbandonableCalls::End::Done)
        return std::move(*outcome);
    const auto nothing = std::make_shared<StepOutcome>();
    if (input.stop.stop_requested())
        nothing->cancelled = true;
    else
        nothing->notAsked = NotAsked{AskedThrough::File, folder, "it does not answer"};
    return std::move(*nothing);
}

} // namespace

std::shared_ptr<StepJob> CStepJobs::start(StepInput input, std::size_t slot) {
    auto job = std::make_shared<StepJob>();
    job->input = std::move(input);
    job->input.stop = job->stop.get_token();
    job->slot = slot;
    ++inbox_->inProgress;
    const bool started = workers_.start([job, inbox = inbox_, probes = probes_, calls = fileCalls_] {
        work(*job, probes, calls);
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

void CStepJobs::work(StepJob& job, const StepProbes& probes, CAbandonableCalls calls) {
    job.takenUp = true;
    job.outcome = cancelledWithoutMemory([&] {
        return asksAShare(job.input) ? runAbandonably(job.input, probes, calls) : runStep(job.input, probes);
    });
}

std::vector<std::shared_ptr<StepJob>> CStepJobs::takeFinished() {
    std::vector<std::shared_ptr<StepJob>> finished;
    const std::lock_guard lock(inbox_->mutex);
    finished.swap(inbox_->finished);
    return finished;
}

} // namespace mirovane
