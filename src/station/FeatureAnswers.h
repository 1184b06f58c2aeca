#pragma once

#include "discover/sweep/DiscoverNow.h"
#include "feature/FeatureHost.h"
#include "station/DatafileWatch.h"
#include "station/Pauses.h"
#include "station/StationDialogs.h"
#include "station/StationNews.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace mirovane {

class CStation;
class CUserEdits;

/// What Live Stat, Live Discover and Discover Now ask of the station that they run in: a question to the
/// user, a save, a step to undo. Main thread; a part of the station.
class CFeatureAnswers final : public LiveStatHost, public LiveDiscoverHost, public DiscoverNowHost {
public:
    /// All references outlive it.
    CFeatureAnswers(CStation& station, CDatafileWatch& watch, CUserEdits& edits, StationDialogs& dialogs,
                    CPauses& pauses, CStationNews& news)
        : station_(station), watch_(watch), edits_(edits), dialogs_(dialogs), pauses_(pauses), news_(news) {}

    /// Devices that discovery added since forget().
    std::size_t discovered() const { return discovered_; }

    /// Another datafile.
    void forget() { discovered_ = 0; }

private:
    bool ask(const Question& question) override;
    void failUser(const std::string& text) override;
    bool holdsStill() const override;
    SaveResult saveNow(SaveNote note) override { return save(note, WaitFor::Answer); }
    void saveSoon(SaveNote note) override { save(note, WaitFor::Frame); }
    void changesPending() override { watch_.setPendingChanges(true); }
    void indicatorsChanged() override;
    void redraw() override;
    void track(std::int32_t recID) override;
    void deviceDiscovered() override;
    void recordEdit(const std::string& name, const std::function<void()>& change) override;
    void hostsDiscovered(std::size_t count) override;

    SaveResult save(SaveNote note, WaitFor waitFor);

    CStation& station_;
    CDatafileWatch& watch_;
    CUserEdits& edits_;
    StationDialogs& dialogs_;
    CPauses& pauses_;
    CStationNews& news_;
    std::size_t discovered_ = 0;
};

} // namespace mirovane
