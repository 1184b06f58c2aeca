#pragma once

#include "feature/Question.h"
#include "model/MessageLog.h"
#include "model/Selection.h"
#include "model/Settings.h"
#include "model/datafile/DatafileLink.h"
#include "model/edit/EditDoor.h"
#include "platform/Clock.h"
#include "platform/Host.h"
#include "platform/Timers.h"
#include "platform/files/Files.h"
#include "probes/StepProbes.h"
#include "station/DatafileWatch.h"
#include "station/Features.h"
#include "station/KeptState.h"
#include "station/ListExport.h"
#include "station/LiveMove.h"
#include "station/Reminders.h"
#include "station/StationObserver.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace mirovane {

/// Yes/No questions to the user, and hard failures shown to him. The desktop program answers with message
/// boxes (the station's timers do not tick while one is open), the headless station with No unless it was
/// told to take over.
class StationDialogs {
public:
    virtual ~StationDialogs() = default;
    virtual bool ask(const Question& question) = 0;
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

    /// Where a thread that writes exports writes them; null: the system's files.
    CListExport::MakeFiles makeExportFiles = nullptr;

    /// What Discover Now asks the network with; null: this station has none.
    SweepProbes* sweepProbes = nullptr;

    /// Where this user's programs keep edits that could not be saved and the log of values that gave way;
    /// empty: nowhere.
    std::string stateFolder = {};

    /// Tells this program from others of its user on this computer; null: it is the only one.
    CProgramClaims* programs = nullptr;
};

/// One station on one datafile: a facade over the document, its datafile and the watch over it, the door for
/// edits, Live Stat and Live Discover, reminders and the export. The desktop program and the headless station
/// are both thin shells over it. Main thread only.
class CStation final : private DatafileWatchHost,
                       private EditDoorHost,
                       private DocumentObserver,
                       private LiveStatHost,
                       private LiveDiscoverHost,
                       private DiscoverNowHost {
public:
    explicit CStation(StationServices services);
    ~CStation() override;
    CStation(const CStation&) = delete;
    CStation& operator=(const CStation&) = delete;

    void addObserver(StationObserver& observer) { observers_.push_back(&observer); }
    void removeObserver(StationObserver& observer) { std::erase(observers_, &observer); }

    const CMirovaneDoc& document() const { return document_; }
    const CDatafileLink& datafile() const { return link_; }
    const CLiveStatScheduler& liveStat() const { return features_.liveStat(); }
    const CLiveDiscover& liveDiscover() const { return features_.liveDiscover(); }
    const CReminders& reminders() const { return reminders_; }
    const StepProbes& probes() const { return services_.probes; }
    CListExport& listExport() { return export_; }
    const CListExport& listExport() const { return export_; }

    /// What the floor shows and how large. A command that changes a value also writes it to the settings.
    DisplaySettings& display() { return display_; }
    const DisplaySettings& display() const { return display_; }

    /// The records are being replaced, or must be left alone for another reason.
    bool busy() const { return watch_.busy() || pauses_ > 0; }

    // ---- the datafile

    /// Leaves the datafile (see openDatafile), empties the document and fills it anew.
    void newDatafile();

    /// Opens a datafile, starts the timers and, where the user wants it, Live Stat. A datafile that is left
    /// for it is released first when Live Stat runs on it, and background changes of it are saved. On failure
    /// everything stays as it was; the error has been logged.
    std::optional<Datafile::Error> openDatafile(const std::string& path);

    /// Where another station saved meanwhile, its file is read and this station's changes are put on top of
    /// it and saved: every record is another one then. Deferred while a reload waits for Live Stat; the
    /// changes are saved with the reload. A save that fails is tried again by the watch until it succeeds.
    SaveReport saveDatafile();
    SaveReport saveDatafileAs(const std::string& path);

    /// Changes that were made in the background, and that the periodic save will write.
    bool pendingChanges() const { return watch_.pendingChanges(); }
    void changesPending() override { watch_.setPendingChanges(true); }

    /// Of the last save; nothing when it went well.
    const std::optional<FileError>& lastSaveError() const { return watch_.lastError(); }

    /// What could not be saved is on disk here, and goes to the datafile when it is next opened.
    bool unsavedEditsKept() const { return kept_.unsaved.allKept(); }

    /// The log of values that gave way to others; empty where this station keeps none.
    std::string logFilePath() const;

    /// Switches Live Stat off, waits for the jobs (milliseconds: they are told to stop), releases the owner
    /// record and saves; then the same with Live Discover. Returns the save's error: then the station goes on
    /// without them and may be shut down again. The destructor does the same when nobody did.
    std::optional<FileError> shutDown();

    // ---- edits

    /// The one way in which a user changes the document; see CEditDoor.
    SaveReport edit(const EditRequest& request, const std::function<void(CMirovaneDoc&)>& change);

    /// Devices that follow the pointer.
    CLiveMove& liveMove() { return liveMove_; }

    /// To the end of the list, where nothing is drawn over it. Stays where it is while the device at the end
    /// is being checked: Live Stat goes through the list. Saved with the next save.
    void bringToFront(const CHardware& device);

    /// Takes the user's latest edit back, or makes the one that was undone last again, and saves; see
    /// CEditDoor. What another station has saved is read first. The log names what stays, because somebody
    /// else has written it since.
    SaveReport undo();
    SaveReport redo();

    /// The user's latest edits, and what is undone and redone next.
    const CEditHistory& history() const { return door_.history(); }

    /// Which devices are selected: no edit, and never saved.
    CSelection& selection() { return selection_; }
    const CSelection& selection() const { return selection_; }

    /// Devices changed and no more changes follow at once: has the rows of the List View put in order, then
    /// writes the automatic export.
    void settleList();

    /// At the user's command: the List View's rows in the order that is seen.
    std::optional<FileError> exportNow(const ExportSettings& settings);

    // ---- Live Stat and Live Discover

    /// On or off. Says why one was not switched on.
    std::optional<StartRefusal> toggleLiveStat() { return features_.liveStat().toggle(); }
    std::int64_t ownerSilentHours() { return features_.liveStat().ownerSilentHours(); }
    std::optional<StartRefusal> toggleLiveDiscover() { return features_.liveDiscover().toggle(); }
    void toggleTracking() { features_.liveStat().toggleTracking(); }
    void endTracking() { features_.liveStat().endTracking(); }

    /// A window shows the criteria of this type, or shows none any more: Live Stat runs no rule that is half
    /// typed.
    void showCriteriaOf(std::optional<std::int32_t> type) { features_.liveStat().holdType(type); }

    /// Live Stat Now on the selected devices.
    void liveStatNow() { features_.liveStat().performNow(); }

    /// Null where the station was given no network for it.
    CDiscoverNow* discoverNow() { return features_.discoverNow(); }

    /// Devices that discovery added since the datafile was opened.
    std::size_t discovered() const { return discovered_; }

    /// As read from the settings at construction, or as set last.
    const LiveStatSettings& liveStatSettings() const { return liveStatSettings_; }

    /// Takes effect at once; does not write them to the user's settings.
    void setLiveStatSettings(const LiveStatSettings& settings);

    /// While one exists, no timer of the station does anything: for dialogs that run an event loop of their
    /// own.
    class [[nodiscard]] CPause {
    public:
        explicit CPause(CStation& station) : station_(station) { ++station_.pauses_; }
        ~CPause() { --station_.pauses_; }
        CPause(const CPause&) = delete;
        CPause& operator=(const CPause&) = delete;

    private:
        CStation& station_;
    };

private:
    // DatafileWatchHost
    bool paused() const override { return pauses_ > 0; }
    bool jobsInProgress() const override { return liveStat().anyJobInProgress(); }
    void stopJobs() override { features_.liveStat().stopJobs(); }
    void stopReminders() override { reminders_.stop(); }
    void startReminders(std::chrono::milliseconds period) override;
    void datafileRead() override;
    void saveTried() override { kept_.unsaved.keep(link_.path()); }
    void listChanged() override { settleList(); }

    // EditDoorHost
    void beforeEdit(const EditRequest& request) override;
    SaveReport afterEdit(const EditRequest& request, bool changed) override;
    void historyChanged() override;

    // DocumentObserver
    void documentReplaced() override;

    // LiveStatHost, LiveDiscoverHost, DiscoverNowHost
    bool ask(const Question& question) override;
    void failUser(const std::string& text) override;
    bool holdsStill() const override { return busy(); }
    SaveResult saveNow(SaveNote note) override;
    void redraw() override;
    void indicatorsChanged() override;
    void track(std::int32_t recID) override;
    void waiting() override;
    void deviceDiscovered() override;
    void recordEdit(const std::string& name, const std::function<void()>& change) override;
    void hostsDiscovered(std::size_t count) override;

    void begin();
    void tellProgramsThePath();
    void leaveDatafile();
    void endWork();
    void reminderTick();
    void keepOwnerAlive();
    void waitForLiveStat();
    void readNews();
    bool wantsLiveStat() const { return services_.autoStart && liveStatSettings_.LSAutoStart; }
    template <typename... Parameters, typename... Arguments>
    void tell(void (StationObserver::*news)(Parameters...), Arguments... arguments);

    StationServices services_;
    std::vector<StationObserver*> observers_;
    LiveStatSettings liveStatSettings_;
    DisplaySettings display_;
    CMirovaneDoc document_;
    CSelection selection_;
    CDatafileLink link_;
    KeptState kept_;
    CDatafileWatch watch_;
    CEditDoor door_;
    CLiveMove liveMove_;
    CListExport export_;
    CReminders reminders_;
    CFeatures features_;
    std::size_t discovered_ = 0;
    int pauses_ = 0;
};

} // namespace mirovane
