#pragma once

#include "livestat/schedule/Scheduler.h"
#include "model/CriteriaEdit.h"
#include "platform/files/PosixFiles.h"
#include "tests/support/FakeTime.h"
#include "tests/support/InlineWorkers.h"
#include "tests/support/LogLines.h"
#include "tests/support/NewFloor.h"
#include "tests/support/ScriptedProbes.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mirovane::test {

/// A station reduced to notes of what the scheduler asked of it.
class NotedHost final : public LiveStatHost {
public:
    bool ask(const Question& question) override {
        questions.push_back(question.text);
        return answer;
    }
    void failUser(const std::string& text) override { failures.push_back(text); }
    bool holdsStill() const override { return still; }
    SaveResult saveNow(SaveNote note) override {
        saves.push_back(note);
        return saved;
    }
    void changesPending() override { pending = true; }
    void redraw() override { ++redraws; }
    void indicatorsChanged() override {}
    void track(std::int32_t recID) override { tracked.push_back(recID); }

    SaveResult saved = SaveResult::Saved;
    bool answer = false;
    bool still = false;
    bool pending = false; ///< changes wait for the periodic save
    std::vector<std::string> questions, failures;
    std::vector<SaveNote> saves;
    std::vector<std::int32_t> tracked;
    int redraws = 0;
};

class SchedulerFixture : public testing::Test {
protected:
    explicit SchedulerFixture(Workers* other = nullptr) : workers(other ? *other : inlineWorkers) {
        test::newFloor(doc);
        pool(3);
    }

    /// A scheduler with this many slots and a run period of 3 s.
    void pool(std::int32_t slots) {
        liveStatSettings.LSNumPerRun = slots;
        scheduler.reset();
        const FeatureServices services{doc, timers, log, clock};
        scheduler = std::make_unique<CLiveStatScheduler>(services, probes, workers, host, liveStatSettings);
    }

    std::int32_t add(std::int32_t type, const std::string& address = {}, std::int32_t priority = 5) {
        const auto fill = [&](CHardware& device) {
            device.IPAddress = address;
            device.Priority = priority;
        };
        return doc.addDevice(type, fill)->RecID;
    }
    void addPrinters(int count, std::int32_t priority = 5) {
        for (int i = 0; i < count; ++i)
            add(DeviceType::Printer, "127.0.0." + std::to_string(i + 1), priority);
    }
    const CHardware& device(std::int32_t recID) const { return *doc.findDevice(recID); }
    void select(std::int32_t recID) { doc.setSelected(device(recID), true); }
    void rule(std::int32_t type, int row, std::string_view command, const std::string& argument,
              const std::string& condition = "On/Off") {
        setCriteria(doc, type, row, CriteriaColumn::Command, std::string(command));
        setCriteria(doc, type, row, CriteriaColumn::Argument, argument);
        setCriteria(doc, type, row, CriteriaColumn::Condition, condition);
    }

    void pass(int milliseconds) { timers.advance(std::chrono::milliseconds(milliseconds)); }

    /// The pause, then every slot once, then the tick that ends the run.
    void run() { pass(3000 + static_cast<int>(scheduler->slotCount())); }

    /// The log's lines since the last call, without their dates.
    std::vector<std::string> logged() { return logLines.next(); }

    FakeClock clock;
    FakeTimers timers{clock};
    CPosixFiles files;
    CMessageLog log{clock};
    CMirovaneDoc doc{clock, log, {"host", "user"}};
    ScriptedProbes probes;
    NotedHost host;
    InlineWorkers inlineWorkers;
    Workers& workers;
    LiveStatSettings liveStatSettings;
    std::unique_ptr<CLiveStatScheduler> scheduler;
    LogLines logLines{log};
};

} // namespace mirovane::test
