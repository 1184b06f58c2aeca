#pragma once

#include "livestat/schedule/DevicePicker.h"
#include "livestat/schedule/StepJobs.h"
#include "model/Document.h"
#include "model/MessageLog.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace mirovane {

/// A device on its way through its criteria rows; free without one.
struct JobSlot {
    /// Behind the last row: the device is done, whoever has its number by now.
    static constexpr int goneRow = 9999;

    std::optional<std::int32_t> recID;
    int row = -1;                 ///< of the current step
    std::shared_ptr<StepJob> job; ///< while a worker is at it
    TimeStamp stepBegan = 0;
};

/// The device checks per run: an array of slots, each with at most one device and one job. A device is in one
/// slot at most; the picker knows which are taken. Main thread only.
class CJobSlots final : private DocumentObserver {
public:
    /// All references must outlive the slots. The destructor stops the jobs and waits for them.
    CJobSlots(CMirovaneDoc& document, CMessageLog& log, CDevicePicker& picker, const StepProbes& probes,
              Workers& workers);
    ~CJobSlots() override;
    CJobSlots(const CJobSlots&) = delete;
    CJobSlots& operator=(const CJobSlots&) = delete;

    std::size_t count() const { return slots_.size(); }
    JobSlot& at(std::size_t index) { return slots_[index]; }

    /// Surplus slots go from the end and let go of their devices, which keep their marks: other slots take
    /// them. No job may be in progress in those.
    void setCount(std::size_t count);

    /// The slot takes the device and begins at this row.
    void take(JobSlot& slot, const CHardware& device, int row);

    /// Starts the slot's step. Without a thread for it the row is tried again at the slot's next visit, and
    /// the log says so once.
    void start(std::size_t index, StepInput input);

    struct Finished {
        JobSlot& slot;
        std::shared_ptr<const StepJob> job;
    };

    /// What came back since the last call. Outcomes whose slot went or was freed meanwhile are dropped.
    std::vector<Finished> takeFinished();

    /// Lets go of the device, which loses its mark for Live Stat Now: its check is over.
    void free(JobSlot& slot);
    void freeAll();
    void freeOrphans(); ///< those whose device is gone

    /// The job started last has not reached a worker yet.
    bool workerStarting() const { return jobs_.workerStarting(); }
    bool anyInProgress() const { return jobs_.anyInProgress(); }

    /// Tells the jobs to stop. A stopped step changes nothing; its row is run again.
    void stopJobs();

    /// Returns when no job is in progress any more: milliseconds after stopJobs().
    void waitForJobs();

private:
    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;

    CMirovaneDoc& document_;
    CMessageLog& log_;
    CDevicePicker& picker_;
    CStepJobs jobs_;
    std::vector<JobSlot> slots_;
    bool threadShortageReported_ = false;
};

/// The device's check is over, or nothing is to be checked about it.
void clearNowMark(CMirovaneDoc& document, std::int32_t recID);

} // namespace mirovane
