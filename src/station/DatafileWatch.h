#pragma once

#include "model/datafile/DatafileLink.h"
#include "platform/Clock.h"
#include "platform/Timers.h"
#include "station/OwedSave.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace mirovane {

/// What the watch asks of the station around it. Main thread.
class DatafileWatchHost : public SharePatience {
public:
    /// An edit is under way or a question is open: the watch does nothing.
    virtual bool paused() const = 0;

    virtual bool jobsInProgress() const = 0;

    /// Tells Live Stat's jobs to stop; returns at once.
    virtual void stopJobs() = 0;

    /// The reminder check rests while the records are read, and begins anew afterwards.
    virtual void stopReminders() = 0;
    virtual void startReminders(std::chrono::milliseconds period) = 0;

    /// The records were read again. Whoever runs something looks whether another station has claimed it; that
    /// may ask the user, and save.
    virtual void datafileRead() = 0;

    /// A save was tried: what is saved needs to be kept elsewhere no longer, what is not does.
    virtual void saveTried() = 0;

    /// What the records say has changed; no more changes follow at once.
    virtual void listChanged() = 0;

    /// What was begun in the background is over.
    virtual void answered() = 0;
};

/// Who waits for an answer of the datafile's share.
enum class WaitFor {
    Frame,  ///< nobody, beyond the moment that a disk takes which is well: the answer comes with a later tick
    Answer, ///< the user, for a command of his; or a station that has nothing better to do
};

/// Keeps the document and its datafile together: notices when another station saved, reads the file again,
/// saves background changes from time to time and failed saves again. Timer: every 3 s; 100 ms while a reload
/// waits for Live Stat's jobs.
///
/// A question to the file that is not answered within a frame goes on in the background, one at a time; a
/// second timer looks every 10 ms whether its answer is there. Meanwhile everything can be edited: what is
/// edited while a save is under way is in no datafile yet when it is over, and is saved next. Main thread;
/// all references outlive the watch.
class CDatafileWatch {
public:
    enum class Phase {
        Closed,        ///< no datafile yet, or shut down: no timer runs, saves are made
        Watching,      ///< the file is as this station knows it, or the next tick finds that it is not
        ReloadWaiting, ///< another station saved; the reload waits for Live Stat's jobs, and saves wait for
                       ///< it
        Fetching,      ///< the file is being read in the background; saves wait for it
        Reading,       ///< the records are being replaced; saves wait
        Unreadable,    ///< the last reload failed; each tick tries again
        Asking,        ///< the records were replaced, and who runs what is looked at, and maybe asked about
    };

    CDatafileWatch(CDatafileLink& link, CMirovaneDoc& document, const Clock& clock, TimerFactory& timers,
                   CMessageLog& log, DatafileWatchHost& host);

    /// A datafile was opened or made: forgets everything of the one before.
    void begin();

    /// No more ticks. What waits for a reload is merged by the saves that follow.
    void close();

    /// After close(): the user stays with the datafile, because its last save failed.
    void resume();

    Phase phase() const { return state_.phase; }

    /// Nothing may change the records now: they are about to be replaced.
    bool busy() const { return phase() == Phase::ReloadWaiting || phase() == Phase::Reading; }

    // ---- saving

    /// As CDatafileLink::save(). Deferred while a reload is under way, and where the share takes longer than
    /// a frame: lastError() then tells how it ended. One that fails is tried again by the ticks.
    SaveReport save(SaveNote note = SaveNote::None, Attempt attempt = Attempt::First,
                    WaitFor waitFor = WaitFor::Frame);
    SaveReport saveAs(const std::string& path);

    /// Waits until nothing is under way in the background.
    void settle();

    /// Of the last save or Save As; nothing when it went well.
    const std::optional<FileError>& lastError() const { return state_.lastError; }
    void forgetLastError() { state_.lastError.reset(); }

    /// Background work changed records: they are saved with the sixth tick after the last save, so that a
    /// busy Live Stat does not make every station reload every 3 s.
    bool pendingChanges() const { return state_.pending; }
    void setPendingChanges(bool pending) { state_.pending = state_.pendingSince = pending; }

    // ---- edits

    /// A user's edit begins: no tick until endEdit(). Where a reload waited, the edit is made on the records
    /// of before, and its save puts it on top of the file: then the log names what it met there. Made on
    /// records that were reloaded under the user's hands it would replace another station's work without a
    /// line.
    void beginEdit();
    void endEdit();

    /// Another station has saved what this one has not read yet. Asks the disk, and waits for it.
    bool behind();

    /// Reads it now: before a copy of the datafile is made or an edit is undone. No job may be in progress.
    void catchUp();

private:
    /// All that one datafile leaves behind; the next one begins with a fresh one.
    struct State {
        Phase phase = Phase::Closed;
        bool pending = false;
        bool pendingSince = false;      ///< since the save under way began
        bool pendingInSave = false;     ///< when it began
        std::optional<SaveNote> wanted; ///< a save, when the one under way is over
        bool fetchedAgain = false;      ///< the reload before failed, too, which was told
        bool unanswered = false;        ///< the last question what the file is like
        bool editing = false;           ///< the records may not be replaced from outside
        bool editTookReload = false;    ///< the edit under way began while a reload waited
        int ticksSinceSave = 0;
        std::optional<OwedSave> owed;
        std::optional<FileError> lastError;
        std::optional<std::chrono::steady_clock::time_point> jobsStopped; ///< for a reload, the last time
    };

    void tick();
    void poll();
    std::optional<DatafileNews> awaited(WaitFor waitFor);
    void deliver(const DatafileNews& news);
    void looked(const Result<FileIdentity, FileError>& status);
    void saved(const SaveReport& report);
    void goOnSaving();
    void retryOwedSave();
    void periodicSave(const Result<FileIdentity, FileError>& status);
    void reload();
    bool mayStopJobs();
    void fetch(WaitFor waitFor);
    void takeRead(const std::optional<Datafile::Error>& error);
    void reportUnreadable(const Datafile::Error& error);
    void takeIn(const SaveReport& report);
    void savedOnTop();
    void lookAtOwners();
    void startTimers(std::chrono::milliseconds reminderPeriod);

    CDatafileLink& link_;
    CMirovaneDoc& document_;
    const Clock& clock_;
    CMessageLog& log_;
    DatafileWatchHost& host_;
    std::unique_ptr<Timer> timer_;
    std::unique_ptr<Timer> answers_; ///< runs while something is under way
    State state_;
    std::size_t readings_ = 0; ///< how often the records were read again
};

} // namespace mirovane
