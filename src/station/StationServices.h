#pragma once

#include "model/MessageLog.h"
#include "model/Settings.h"
#include "platform/Clock.h"
#include "platform/Host.h"
#include "platform/Timers.h"
#include "platform/Workers.h"
#include "platform/files/Files.h"
#include "platform/files/ProgramClaims.h"
#include "probes/StepProbes.h"
#include "station/StationDialogs.h"
#include "station/export/ListExport.h"

#include <string>

namespace mirovane {

class SweepProbes;

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

    /// Where the datafile's file system is asked, one question at a time; null: on the main thread, which
    /// then waits for it. Must end before `files`.
    Workers* datafileWorkers = nullptr;
};

} // namespace mirovane
