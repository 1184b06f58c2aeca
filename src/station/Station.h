#pragma once

#include "livestat/Discover.h"
#include "livestat/DiscoverNow.h"
#include "livestat/Scheduler.h"
#include "livestat/StepProbes.h"
#include "livestat/Workers.h"
#include "model/Document.h"
#include "model/ListRows.h"
#include "model/MessageLog.h"
#include "model/Settings.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Host.h"
#include "platform/Timers.h"
#include "station/ReminderCheck.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace mirovane {

class CExportWriter;
struct ExportSettings;

/// Yes/No questions to the user, and hard failures shown to him. The desktop program answers with message
/// boxes (the station's timers do not tick while one is open), the headless station with No unless it was
/// told to take over.
class StationDialogs {
public:
    virtual ~StationDialogs() = default;
    virtual bool ask(const std::string& question) = 0;
    virtual void fail(const std::string& text) = 0;
};

/// What a station needs from outside; all of it outlives the station.
struct StationServices {
    Files& files;
    const Clock& clock;
    TimerFactory& timers;
    CSettings& settings;
    CMessageLog& log;
    StationDialogs& dialogs;
    StepProbes probes;
    StationIdentity identity;

    /// False: LSAutoStart is ignored, at open and when another owner falls silent. For a headless station
    /// that was not told to run Live Stat.
    bool autoStart = true;

    /// Where the steps run; null: on a pool of threads of the station's own.
    Workers* workers = nullptr;

    /// Where a thread that writes exports writes them; called once for each such thread. Null: the system's
    /// files.
    std::function<std::shared_ptr<Files>()> makeExportFiles = nullptr;

    /// What Discover Now asks the network with; null: this station has none.
    SweepProbes* sweepProbes = nullptr;
};

/// One station on one datafile: document, datafile watch with periodic save, Live Stat and Live Discover,
/// driven by timers.
/// The desktop program and the headless station are both thin shells over it. Main thread only.
class CStation final : private LiveStatHost, private LiveDiscoverHost, private DiscoverNowHost {
public:
    explicit CStation(StationServices services);
    ~CStation() override;
    CStation(const CStation&) = delete;
    CStation& operator=(const CStation&) = delete;

    CMirovaneDoc& document() { return *doc_; }
    const CMirovaneDoc& document() const { return *doc_; }
    CLiveStatScheduler& liveStat() { return *liveStat_; }
    const CLiveStatScheduler& liveStat() const { return *liveStat_; }
    const CLiveDiscover& liveDiscover() const { return *liveDiscover_; }
    const CReminderCheck& reminders() const { return *reminders_; }
    const StepProbes& probes() const { return services_.probes; }
    CMessageLog& log() { return services_.log; }
    CSettings& settings() { return services_.settings; }

    /// What the List View shows, and what the automatic export writes.
    ListViewState& listView() { return listView_; }
    const ListViewState& listView() const { return listView_; }

    /// Leaves the datafile (see openDatafile), empties the document and fills it anew.
    void newDatafile();

    /// Opens a datafile, starts the timers and, where the user wants it, Live Stat. A datafile that is left
    /// for it is released first when Live Stat runs on it, and background changes of it are saved. On failure
    /// everything stays as it was; the error has been logged.
    std::optional<Datafile::Error> openDatafile(const std::string& path);

    /// Where another station saved meanwhile, its file is read and this station's changes are put on top of
    /// it and saved: every record is another one then. While a reload waits for Live Stat nothing is saved
    /// and no error returned; the changes are saved with the reload. A save that fails is tried again by the
    /// watch until it succeeds.
    std::optional<FileError> saveDatafile();
    std::optional<FileError> saveDatafileAs(const std::string& path);

    /// Devices changed: has the List View filled anew, then writes the automatic export where this user wants
    /// it for this datafile. What this class itself saves or loads, it follows up; whoever changes devices
    /// through the document calls this, or saveDatafile().
    void refillListView();

    /// Writes the List View's rows as these settings say, at the user's command. Waits some seconds for a
    /// share that does not answer, not longer.
    std::optional<FileError> exportNow(const ExportSettings& settings);

    /// Why the last export failed; nothing when it did not. The log does not tell.
    std::optional<FileError> exportError() const;

    /// Null where the station was given no network for it.
    CDiscoverNow* discoverNow() { return discoverNow_.get(); }

    void toggleLiveStat() { liveStat_->toggle(); }
    void toggleLiveDiscover() { liveDiscover_->toggle(); }

    /// Live Stat Now on the selected devices.
    void liveStatNow() { liveStat_->performNow(); }

    /// As read from the settings at construction, or as set last.
    const LiveStatSettings& liveStatSettings() const { return liveStatSettings_; }

    /// Takes effect at once; does not write them to the user's settings.
    void setLiveStatSettings(const LiveStatSettings& settings);

    /// The user agreed to delete these devices: waits for the jobs, removes them, saves. Returns the save's
    /// error.
    std::optional<FileError> deleteDevices(std::span<const std::int32_t> recIDs);

    /// The user changes these devices: waits for the jobs where they are concerned, calls `change` for each
    /// device that still exists, stamps it and saves. Returns the save's error.
    std::optional<FileError> updateDevices(std::span<const std::int32_t> recIDs,
                                           const std::function<void(CHardware&)>& change);

    /// While one exists, no timer of the station does anything: for dialogs that run an event loop of their
    /// own.
    class [[nodiscard]] Pause {
    public:
        explicit Pause(CStation& station) : station_(station) { ++station_.pauses_; }
        ~Pause() { --station_.pauses_; }
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        CStation& station_;
    };

    /// Once a Live Stat run or a reload changed what is seen; never more often than the runs.
    std::function<void()> onRedraw;

    /// The List View's rows are to be made anew.
    std::function<void()> onListRefill;

    /// Live Stat or Live Discover went on or off, a device was discovered, a run ended (other devices are
    /// held now), or the status text changed.
    std::function<void()> onIndicators;

    /// A reminder check found due reminders, or found that none is due any more.
    std::function<void()> onReminders;

    /// Track Live Stat is on and the check of this device begins.
    std::function<void(std::int32_t recID)> onTrack;

    /// Every few milliseconds while a command waits for Live Stat's jobs: lets the window repaint.
    std::function<void()> onWaiting;

    /// Switches Live Stat off, waits for the jobs (milliseconds: they are told to stop), releases the owner
    /// record and saves; then the same with Live Discover. Returns the save's error: then the station goes on
    /// without them and may be shut down again. The destructor does the same when nobody did.
    std::optional<FileError> shutDown();

private:
    // LiveStatHost
    bool askUser(const std::string& question) override;
    void failUser(const std::string& text) override;
    bool holdsStill() const override { return busy_ || pauses_ > 0; }
    SaveResult saveDatafile(const std::string& note) override;
    void redraw() override;
    void indicatorsChanged() override;
    void track(std::int32_t recID) override;
    void waiting() override;

    // LiveDiscoverHost
    void deviceDiscovered() override;
    // DiscoverNowHost
    bool liveDiscoverRuns() const override { return liveDiscover_->enabled(); }

    void autoExport();
    std::size_t writeRows(std::unique_ptr<CExportWriter>& writer, const ExportSettings& settings,
                          std::chrono::milliseconds patience);
    std::optional<FileError> save(CMirovaneDoc::Attempt attempt = CMirovaneDoc::Attempt::First);
    void afterReadAgain();
    void tellOfReadAgain();
    void settleReload();
    std::optional<FileError> saveEdit(bool reloadWaited);
    void saveBackgroundChanges();
    void leaveDatafile();
    void endDiscoverNow();
    void begin();
    void startTimers(std::chrono::milliseconds reminderPeriod);
    void stopTimers();
    void waitForLiveStat();

    void watchTick();
    void retryOwedSave();
    void periodicSave(const Result<FileIdentity, FileError>& status);
    void reload();
    bool mayStopJobs();
    void finishReload();
    void readAgain();
    void reportUnreadable(const Datafile::Error& error);
    void reminderTick();
    void checkReminders();
    void keepOwnerAlive();
    bool wantsLiveStat() const { return services_.autoStart && liveStatSettings_.LSAutoStart; }

    static constexpr std::chrono::milliseconds watchPeriod{3000};
    static constexpr std::chrono::milliseconds reminderPeriodAfterReload{4000};

    StationServices services_;
    LiveStatSettings liveStatSettings_;
    ListViewState listView_;
    std::unique_ptr<CMirovaneDoc> doc_;
    std::unique_ptr<CReminderCheck> reminders_;
    std::unique_ptr<Workers> ownWorkers_;
    std::unique_ptr<Workers>
        discoverWorkers_; ///< whoever waits for Live Stat's steps waits for no ping of a walk
    std::unique_ptr<CLiveStatScheduler> liveStat_;
    std::unique_ptr<CLiveDiscover> liveDiscover_;
    std::unique_ptr<CDiscoverNow> discoverNow_;
    std::unique_ptr<Timer> watchTimer_;
    std::unique_ptr<Timer> reminderTimer_;
    std::unique_ptr<CExportWriter> autoWriter_;
    std::unique_ptr<CExportWriter> commandWriter_; ///< a dead share of the other must not hold it up
    const CExportWriter* lastWriter_ = nullptr;

    bool busy_ = false; ///< a reload, an update or a delete is under way; nothing is saved
    std::optional<std::chrono::steady_clock::time_point> jobsStopped_; ///< for a reload, the last time
    bool reloadWaiting_ = false; ///< busy_, because a reload waits for Live Stat's jobs
    bool reloading_ = false; ///< the records are being replaced, or the owner is being asked about afterwards
    bool readAgainMeanwhile_ = false; ///< a save read the file again since the owners were looked at
    bool unreadable_ = false;         ///< the last reload failed; reported once
    bool saveOwed_ = false; ///< a save failed or was left out, and what it was for is in no datafile yet
    int ticksToRetry_ = 0;  ///< watch ticks until the owed save is tried again
    int retryPause_ = 0;    ///< what ticksToRetry_ begins with; grows with every try that fails
    bool shutDown_ = false;
    int pauses_ = 0;
    int saveTicks_ = 0;
    std::optional<FileError> lastSaveError_;
};

} // namespace mirovane
