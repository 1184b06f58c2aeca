#pragma once

#include "model/MessageLog.h"
#include "station/DatafileWatch.h"
#include "station/Features.h"
#include "station/KeptState.h"
#include "station/Pauses.h"
#include "station/reminders/Reminders.h"

#include <chrono>

namespace mirovane {

class CStation;

/// What the watch over the datafile asks of the station around it. Main thread; a part of the station.
class CWatchAnswers final : public DatafileWatchHost {
public:
    /// All references outlive it.
    CWatchAnswers(CStation& station, CFeatures& features, CReminders& reminders, KeptState& kept,
                  const CPauses& pauses, CMessageLog& log)
        : station_(station),
          features_(features),
          reminders_(reminders),
          kept_(kept),
          pauses_(pauses),
          log_(log) {}

private:
    bool paused() const override { return pauses_.any(); }
    bool jobsInProgress() const override { return features_.liveStat().anyJobInProgress(); }
    void stopJobs() override { features_.liveStat().stopJobs(); }
    void stopReminders() override { reminders_.stop(); }
    void startReminders(std::chrono::milliseconds period) override;
    void datafileRead() override;
    void saveTried() override;
    void listChanged() override;

    CStation& station_;
    CFeatures& features_;
    CReminders& reminders_;
    KeptState& kept_;
    const CPauses& pauses_;
    CMessageLog& log_;
};

} // namespace mirovane
