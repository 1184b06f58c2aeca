#pragma once

#include "feature/FeatureServices.h"
#include "feature/FeatureSwitch.h"
#include "livestat/schedule/DevicePicker.h"
#include "livestat/schedule/DeviceSteps.h"
#include "livestat/schedule/JobSlots.h"
#include "livestat/schedule/NowPass.h"
#include "livestat/schedule/RunCursor.h"
#include "livestat/schedule/Tracking.h"
#include "model/Settings.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace mirovane {

/// Checks the devices one after the other in the background: ticks, and at each tick decides which slot is
/// visited. Which device is next the picker knows, which of its criteria rows the device steps. Main thread
/// only; the steps themselves run on `workers`, which see copies.
///
/// Timer: LSRunSec between two runs, 1 ms between two slots of a run, 300 ms while going off. One tick visits
/// one slot: it applies what came back, moves the slot on to its next row or device and starts at most one
/// step. Its own work does not grow with the list.
///
/// Live Stat (Off, On, GoingOff) and Live Stat Now (active or not) share timer and slots; each may run
/// without the other. Live Stat that goes off waits for the end of Live Stat Now.
class CLiveStatScheduler {
public:
    /// All references must outlive the scheduler. The destructor stops the jobs and waits for them.
    CLiveStatScheduler(const FeatureServices& services, const StepProbes& probes, Workers& workers,
                       LiveStatHost& host, const LiveStatSettings& settings);
    ~CLiveStatScheduler();
    CLiveStatScheduler(const CLiveStatScheduler&) = delete;
    CLiveStatScheduler& operator=(const CLiveStatScheduler&) = delete;

    bool enabled() const { return switch_.on(); }
    bool disabling() const { return switch_.goingOff(); }
    bool nowActive() const { return now_.active(); }

    /// True while a job slot holds this device: the floor draws the Live Stat ring around it.
    bool holdsDevice(std::int32_t recID) const { return picker_.holds(recID); }

    /// Record IDs of all of them, in no particular order.
    std::vector<std::int32_t> heldDevices() const { return picker_.heldDevices(); }

    /// "LIVE!:%d"; empty while Live Stat is off.
    std::string statusText() const;

    bool anyJobInProgress() const { return slots_.anyInProgress(); }

    /// Completed loops since Live Stat went on.
    int loops() const { return picker_.loops(); }

    /// How long the last complete loop took.
    std::int64_t lastLoopSeconds() const { return picker_.lastLoopSeconds(); }

    std::size_t slotCount() const { return slots_.count(); }

    // ---- commands

    /// Enables or disables. Enabling asks when another station runs Live Stat, claims the datafile and saves
    /// it. Says why it was not enabled.
    std::optional<StartRefusal> toggle();

    /// Marks the selected devices and checks them first. Nothing happens without a selection.
    void performNow();

    /// Takes new settings over: run period, Discovered/Misc devices, and the number of slots, which is logged
    /// when it changes. Removing slots waits for their jobs.
    void setSettings(const LiveStatSettings& settings);
    const LiveStatSettings& settings() const { return settings_; }

    /// The criteria of this type are being changed: none of its devices is checked until the next call.
    void holdType(std::optional<std::int32_t> type);

    /// What each field rule found last at this station.
    const CLatestFinds& finds() const { return steps_.finds(); }

    /// Goes off with Live Stat.
    bool tracking() const { return tracking_.on(); }
    void toggleTracking();
    void endTracking() { tracking_.end(); }

    // ---- for the station

    /// Off at once: stops the jobs, waits for them, releases the datafile and saves it.
    void disableNow();

    /// The records were read again: slots whose device is gone are freed, and a datafile that another station
    /// claimed meanwhile is asked about.
    void afterReload();

    /// Slots whose device is gone are freed.
    void rebind() { slots_.freeOrphans(); }

    /// Another document: off, every slot free, nothing released, nothing logged.
    void reset();

    /// Whole hours in which the owner of Live Stat gave no sign of life.
    std::int64_t ownerSilentHours() { return ownerSilence_.hours(document_); }

    /// Tells the jobs to stop. A stopped step changes nothing; its row is run again.
    void stopJobs() { slots_.stopJobs(); }

    /// Returns when no job is in progress any more.
    void waitForJobs();

    /// No tick until resume().
    void pause() { timer_->stop(); }

    /// Ticks again after a run period, where anything is to do.
    void resume();

private:
    std::optional<StartRefusal> enable();
    void disable();
    void finishDisabling();
    bool atWork() const { return switch_.on() || now_.active(); }

    void tick();
    void collect();
    void visit(std::size_t index);
    void moveOn(JobSlot& slot);
    void pick(JobSlot& slot);
    void startStep(std::size_t index);
    void endRun();
    void reportRun();
    void publishChanges();
    void finishNow();
    void resizeSlots(std::size_t count);

    CMirovaneDoc& document_;
    CMessageLog& log_;
    LiveStatHost& host_;
    LiveStatSettings settings_;
    std::unique_ptr<Timer> timer_;
    CFeatureOwnership ownership_;
    COwnerSilence ownerSilence_;
    CFeatureSwitch switch_;
    CDevicePicker picker_;
    CDeviceSteps steps_;
    CJobSlots slots_;
    CRunCursor run_;
    CNowPass now_;
    CTracking tracking_;
    std::optional<int> shownCount_; ///< in the status text
};

} // namespace mirovane
