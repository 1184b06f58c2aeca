#pragma once

#include "model/MessageLog.h"
#include "station/DatafileWatch.h"
#include "station/Features.h"
#include "station/KeptState.h"
#include "station/Pauses.h"
#include "station/StationDialogs.h"
#include "station/StationNews.h"
#include "station/reminders/Reminders.h"

#include <chrono>
#include <string>

namespace mirovane {

class CStation;

/// What the watch over the datafile asks of the station around it. Main thread; a part of the station.
class CWatchAnswers final : public DatafileWatchHost {
public:
    /// All of it outlives this object.
    struct Parts {
        CFeatures& features;
        CReminders& reminders;
        KeptState& kept;
        CPauses& pauses;
        CStationNews& news;
        StationDialogs& dialogs;
        CMessageLog& log;
    };

    CWatchAnswers(CStation& station, const Parts& parts) : station_(station), parts_(parts) {}

private:
    bool paused() const override { return parts_.pauses.any(); }
    bool jobsInProgress() const override { return parts_.features.liveStat().anyJobInProgress(); }
    void stopJobs() override { parts_.features.liveStat().stopJobs(); }
    void stopReminders() override { parts_.reminders.stop(); }
    void startReminders(std::chrono::milliseconds period) override;
    void datafileRead() override;
    void saveTried() override;
    void listChanged() override;
    void answered() override;
    bool keepWaiting(const std::string& path) override;

    CStation& station_;
    Parts parts_;
};

} // namespace mirovane
