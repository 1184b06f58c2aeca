#pragma once

#include "platform/files/PosixFiles.h"
#include "station/Station.h"
#include "tests/support/FakeTime.h"
#include "tests/support/InlineWorkers.h"
#include "tests/support/LogLines.h"
#include "tests/support/ScriptedProbes.h"
#include "tests/support/StationEdits.h"
#include "tests/support/TestFolder.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace mirovane::test {

using Lines = std::vector<std::string>;

class ScriptedDialogs final : public StationDialogs {
public:
    bool ask(const Question& question) override {
        questions.push_back(question.text);
        if (whileAsking)
            whileAsking();
        return answer;
    }
    void fail(const std::string& text) override { failures.push_back(text); }
    bool keepWaiting(const std::string&) override { return !whileWaiting || whileWaiting(); }

    bool answer = false;
    std::function<void()> whileAsking;
    std::function<bool()> whileWaiting; ///< for a share; false: the user gives up
    Lines questions, failures;
};

/// What a station tells, counted.
class StationNews final : public StationObserver {
public:
    explicit StationNews(CStation& station) : station_(station) { station_.addObserver(*this); }
    ~StationNews() override { station_.removeObserver(*this); }

    int redraws = 0, settled = 0;
    std::vector<bool> phases; ///< of the reminders

private:
    void redrawNeeded() override { ++redraws; }
    void listSettled() override { ++settled; }
    void remindersChanged() override { phases.push_back(station_.reminders().ReminderPhase()); }

    CStation& station_;
};

/// One station with a user, a clock and settings of its own.
class Site {
public:
    Site(FakeClock& clock, FakeTimers& timers, const StationIdentity& identity, bool autoStart,
         Workers* other = nullptr, SweepProbes* sweepProbes = nullptr)
        : log(clock) {
        settings.initialise();
        station = std::make_unique<CStation>(StationServices{files, clock, timers, settings, log, dialogs,
                                                             probes, identity, autoStart,
                                                             other ? other : &workers, nullptr, sweepProbes});
    }

    /// To change as background work does, and as an edit does that is not saved yet.
    CMirovaneDoc& doc() { return const_cast<CMirovaneDoc&>(station->document()); }
    const CLiveStatScheduler& liveStat() { return station->features().liveStat(); }
    const CHardware& owner() { return *doc().findSpecial(SpecialType::LiveStatOwnerRecord); }
    const CHardware& device(std::int32_t recID) { return *doc().findDevice(recID); }

    /// The log's lines since the last call, without their dates.
    Lines logged() { return logLines.next(); }

    CPosixFiles files;
    CMessageLog log;
    CMemorySettingsStore store;
    CSettings settings{store};
    ScriptedDialogs dialogs;
    ScriptedProbes probes;
    InlineWorkers workers;
    std::unique_ptr<CStation> station;
    LogLines logLines{log};
};

/// Two stations, A and B, and a datafile on disk with three printers.
class StationFixture : public testing::Test {
protected:
    StationFixture() {
        Site maker(clock, timers, {"maker", "m"}, false);
        maker.station->newDatafile();
        for (int i = 1; i <= 3; ++i)
            maker.doc().addDevice(DeviceType::Printer, [i](CHardware& device) {
                device.IPAddress = "127.0.0." + std::to_string(i);
                device.Priority = 5;
            });
        maker.station->saveDatafileAs(path);
    }

    Site& open(Site& site) {
        EXPECT_FALSE(site.station->openDatafile(path));
        site.logged();
        return site;
    }
    void pass(int milliseconds) { timers.advance(std::chrono::milliseconds(milliseconds)); }
    void rename(Site& site, std::int32_t recID, const std::string& name) {
        site.doc().editByUser(
            site.device(recID), [&name](CHardware& device) { device.Name = name; });
    }

    /// For a second station in A's place, which reaches the datafile by way of `files`.
    StationServices servicesOfA(Files& files) {
        return {files, clock,     timers, a.settings, a.log, a.dialogs, a.probes, {"A-HOST", "a-user"},
                false, &a.workers};
    }

    TestFolder folder;
    std::string path = folder.file("floor.mv");
    FakeClock clock;
    FakeTimers timers{clock};
    Site a{clock, timers, {"A-HOST", "a-user"}, false};
    Site b{clock, timers, {"B-HOST", "b-user"}, false};
};

} // namespace mirovane::test
