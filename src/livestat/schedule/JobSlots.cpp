#include "livestat/schedule/JobSlots.h"

#include <utility>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds waitSlice{1000};

} // namespace

CJobSlots::CJobSlots(CMirovaneDoc& document, CMessageLog& log, CDevicePicker& picker,
                     const StepProbes& probes, Workers& workers)
    : document_(document), log_(log), picker_(picker), jobs_(probes, workers) {
    document_.addObserver(*this);
}

CJobSlots::~CJobSlots() {
    document_.removeObserver(*this);
    stopJobs();
    waitForJobs();
}

void CJobSlots::setCount(std::size_t count) {
    for (std::size_t i = count; i < slots_.size(); ++i)
        if (slots_[i].recID)
            picker_.release(*slots_[i].recID);
    slots_.resize(count);
    jobs_.setLimit(count);
}

void CJobSlots::take(JobSlot& slot, const CHardware& device, int row) {
    slot.recID = device.RecID;
    slot.row = row;
    picker_.hold(device.RecID);
}

void CJobSlots::start(std::size_t index, StepInput input) {
    JobSlot& slot = slots_[index];
    slot.stepBegan = document_.now();
    slot.job = jobs_.start(std::move(input), index);
    if (slot.job)
        return;
    --slot.row;
    if (!threadShortageReported_)
        log_.LogTrouble("Live Stat cannot start a thread; raise the limit of processes or lower the "
                        "number of devices to check per run.");
    threadShortageReported_ = true;
}

std::vector<CJobSlots::Finished> CJobSlots::takeFinished() {
    std::vector<Finished> finished;
    for (auto& job : jobs_.takeFinished()) {
        if (job->slot >= slots_.size() || slots_[job->slot].job != job)
            continue;
        JobSlot& slot = slots_[job->slot];
        slot.job = nullptr;
        finished.push_back({slot, std::move(job)});
    }
    return finished;
}

void CJobSlots::free(JobSlot& slot) {
    if (slot.job)
        slot.job->stop.request_stop();
    if (slot.recID) {
        clearNowMark(document_, *slot.recID);
        picker_.release(*slot.recID);
    }
    slot = {};
}

void CJobSlots::freeAll() {
    for (JobSlot& slot : slots_)
        free(slot);
}

void CJobSlots::freeOrphans() {
    for (JobSlot& slot : slots_)
        if (slot.recID && !document_.findDevice(*slot.recID))
            free(slot);
}

void CJobSlots::stopJobs() {
    for (JobSlot& slot : slots_)
        if (slot.job)
            slot.job->stop.request_stop();
}

void CJobSlots::waitForJobs() {
    while (!jobs_.waitUntilIdle(waitSlice)) {
    }
}

/// A step that is under way comes back to the device that it was started for.
void CJobSlots::recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) {
    for (JobSlot& slot : slots_)
        if (slot.recID == oldRecID)
            slot.recID = newRecID;
}

void clearNowMark(CMirovaneDoc& document, std::int32_t recID) {
    const CHardware* device = document.findDevice(recID);
    if (device && device->LSNowMark != 0)
        document.setLSNowMark(*device, false);
}

} // namespace mirovane
