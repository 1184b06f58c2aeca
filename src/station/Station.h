#pragma once

#include "livestat/Scheduler.h"
#include "model/Document.h"
#include "model/MessageLog.h"
#include "model/Settings.h"
#include "platform/Clock.h"
#include "platform/Files.h"
#include "platform/Host.h"
#include "platform/Timers.h"
#include "probes/HostProbes.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace mirovane {

/// Yes/No questions to the user, and hard failures shown to him. The desktop program answers with message boxes (the
/// station's timers do not tick while one is open), the headless station with No unless it was told to take over.
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
    HostProbes& probes;
    StationIdentity identity;
};

/// One station on one datafile: document, datafile watch with periodic save, and Live Stat, driven by timers. The
/// desktop program and the headless station are both thin shells over it. Main thread only.
class CStation {
public:
    explicit CStation(StationServices services);
    ~CStation();
    CStation(const CStation&) = delete;
    CStation& operator=(const CStation&) = delete;

    CMirovaneDoc& document() { return *doc_; }
    const CMirovaneDoc& document() const { return *doc_; }
    CLiveStatScheduler& liveStat() { return *liveStat_; }
    const CLiveStatScheduler& liveStat() const { return *liveStat_; }
    CMessageLog& log() { return services_.log; }
    CSettings& settings() { return services_.settings; }

    /// Waits until no Live Stat job is in progress, then empties the document and fills it anew.
    void newDatafile();

    /// Opens a datafile, starts the timers and, where the user wants it, Live Stat. On failure everything stays as it
    /// was; the error has been logged.
    std::optional<Datafile::Error> openDatafile(const std::string& path);
    std::optional<FileError> saveDatafile();
    std::optional<FileError> saveDatafileAs(const std::string& path);

    void toggleLiveStat();

    /// Live Stat Now on the selected devices.
    void liveStatNow();

    /// Once a Live Stat run or a reload changed what is seen; never more often than the runs.
    std::function<void()> onRedraw;

    /// Switches Live Stat off, waits for the jobs (milliseconds: they are told to stop), releases the owner record and
    /// saves. Returns the save's error. The destructor does the same when nobody did.
    std::optional<FileError> shutDown();

private:
    StationServices services_;
    std::unique_ptr<CMirovaneDoc> doc_;
    std::unique_ptr<CLiveStatScheduler> liveStat_;
};

} // namespace mirovane
