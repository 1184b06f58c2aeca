#pragma once

#include "livestat/DevicePicker.h"
#include "livestat/FeatureHost.h"
#include "livestat/JackIndex.h"
#include "livestat/StepJobs.h"
#include "model/Document.h"
#include "model/Settings.h"
#include "platform/Timers.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace mirovane {

/// Checks the devices one after the other in the background: which device is next, which of its criteria
/// rows, in which job slot, and when. Main thread only; the steps themselves run on `workers`, which see
/// copies.
///
/// Timer: LSRunSec between two runs, 1 ms between two slots of a run, 300 ms while going off. One tick visits
/// one slot: it applies what came back, moves the slot on to its next row or device and starts at most one
/// step. Its own work does not grow with the list.
///
/// Settings hold until setSettings(); the slot pool is an array whose surplus end goes when it shrinks.
class CLiveStatScheduler final : private DocumentObserver {
public:
    /// All references must outlive the scheduler. The destructor stops the jobs and waits for them.
    CLiveStatScheduler(CMirovaneDoc& document, const StepProbes& probes, Workers& workers,
                       TimerFactory& timers, LiveStatHost& host, const LiveStatSettings& settings);
    ~CLiveStatScheduler() override;
    CLiveStatScheduler(const CLiveStatScheduler&) = delete;
    CLiveStatScheduler& operator=(const CLiveStatScheduler&) = delete;

    bool enabled() const { return enabled_; }
    bool disabling() const { return disabling_; }
    bool nowActive() const { return nowActive_; }

    /// True while a job slot holds this device: the floor draws the Live Stat ring around it.
    bool holdsDevice(std::int32_t recID) const { return picker_.holds(recID); }

    /// "LIVE!:%d"; empty while Live Stat is off.
    const std::string& statusText() const { return statusText_; }

    bool anyJobInProgress() const { return jobs_.anyInProgress(); }

    /// Completed loops since Live Stat went on.
    int loops() const { return picker_.loops(); }

    std::size_t slotCount() const { return slots_.size(); }

    // ---- commands

    /// Enables or disables. Enabling asks when another station runs Live Stat, claims the datafile and saves
    /// it.
    void toggle();

    /// Marks the selected devices and checks them first. Nothing happens without a selection.
    void performNow();

    /// Takes new settings over: run period, Discovered/Misc devices, and the number of slots, which is logged
    /// when it changes. Removing slots waits for their jobs.
    void setSettings(const LiveStatSettings& settings);

    /// Goes off with Live Stat.
    bool tracking() const { return tracking_; }
    void toggleTracking();
    void endTracking();

    // ---- for the station

    /// Off at once: stops the jobs, waits for them, releases the datafile and saves it.
    void disableNow();

    /// The records were read again: slots whose device is gone are freed, and a datafile that another station
    /// claimed meanwhile is asked about.
    void afterReload();

    /// Slots whose device is gone are freed.
    void rebind();

    /// Another document: off, every slot free, nothing released, nothing logged.
    void reset();

    /// Tells the jobs to stop. A stopped step changes nothing; its row is run again.
    void stopJobs();

    /// Returns when no job is in progress any more.
    void waitForJobs();

    /// No tick until resume().
    void pause() { timer_->stop(); }

    /// Ticks again after a run period, where anything is to do.
    void resume();

private:
    struct JobSlot {
        std::optional<std::int32_t> recID;
        int row = -1;
        std::shared_ptr<StepJob> job;
        TimeStamp stepBegan = 0;
    };

    /// One criteria row of one device.
    using DeviceRow = std::pair<std::int32_t, int>;

    void recordRenumbered(std::int32_t oldRecID, std::int32_t newRecID) override;

    void enable();
    void disable();
    void stopHere();

    void tick();
    void finishDisabling();
    void endRun();
    void reportRun();
    void publishChanges();
    void visit(std::size_t index);
    void collect();
    void takeBack(JobSlot& slot, const StepJob& job);
    void noteSearch(const JobSlot& slot, const StepJob& job);
    void moveOn(JobSlot& slot);
    void pick(JobSlot& slot);
    void startStep(JobSlot& slot, std::size_t index);
    StepInput inputFor(const CHardware& device, int row);
    void finishRound();
    void finishNow();
    void clearLeftMarks();
    void freeSlot(JobSlot& slot);
    void freeAllSlots();
    void clearMark(std::int32_t recID);
    std::optional<int> nextRow(const CHardware& device, int from) const;
    void reportBrokenPattern(const StepJob& job);
    void resizeSlots(std::size_t count);
    std::size_t wantedSlots() const;
    std::chrono::milliseconds runPeriod() const;
    void arm(std::chrono::milliseconds period);
    void reportProbeTroubles();
    void setStatusText(int count);

    CMirovaneDoc& document_;
    LiveStatHost& host_;
    StepProbes probes_;
    LiveStatSettings settings_;
    CStepJobs jobs_;
    CDevicePicker picker_;
    CJackIndex jacks_;
    std::unique_ptr<Timer> timer_;

    std::vector<JobSlot> slots_;
    std::optional<std::size_t> slotCursor_; ///< slot visited last in this run
    int devicesThisRun_ = 0;
    bool enabled_ = false;
    bool disabling_ = false;
    bool nowActive_ = false;
    bool tracking_ = false;
    bool changed_ = false; ///< a device changed since the last publishChanges()
    std::string statusText_;
    std::set<std::string> brokenPatterns_; ///< already reported
    std::set<DeviceRow> searchAgain_;      ///< although the text file's stamp says that it has not changed
    bool threadShortageReported_ = false;
};

} // namespace mirovane
