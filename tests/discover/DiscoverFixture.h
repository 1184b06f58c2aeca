#pragma once

#include "discover/Discover.h"
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

/// A station reduced to notes of what Live Discover asked of it.
class NotedDiscoverHost final : public LiveDiscoverHost {
public:
    bool ask(const Question& question) override {
        questions.push_back(question.text);
        return answer;
    }
    void failUser(const std::string& text) override { failures.push_back(text); }
    bool holdsStill() const override { return still; }
    SaveResult saveNow(SaveNote) override {
        ++saves;
        return SaveResult::Saved;
    }
    void changesPending() override { pending = true; }
    void indicatorsChanged() override { ++indications; }
    void deviceDiscovered() override {
        ++discoveries;
        if (whileSaving)
            whileSaving();
    }

    bool answer = false;
    bool still = false;
    bool pending = false; ///< changes wait for the periodic save
    std::function<void()> whileSaving;
    std::vector<std::string> questions, failures;
    int saves = 0;
    int discoveries = 0;
    int indications = 0;
};

class DiscoverFixture : public testing::Test {
protected:
    explicit DiscoverFixture(Workers* other = nullptr)
        : discover(services, ownership, probes, other ? *other : inlineWorkers, host) {
        test::newFloor(doc);
    }

    const CHardware& addRange(const std::string& from, const std::string& to) {
        CHardware range;
        range.Type = SpecialType::DiscoverRangeRecord;
        range.Name = from;
        range.IPAddress = to;
        return *doc.append(range);
    }
    const CHardware& addDevice(const std::string& address) {
        return *doc.addDevice(
            DeviceType::Printer, [&](CHardware& device) { device.IPAddress = address; });
    }
    const CHardware& owner() const { return *doc.findSpecial(SpecialType::LiveDiscoverOwnerRecord); }
    std::string walk() const { return owner().MACAddress + "-" + owner().Comment + " " + owner().IPAddress; }

    void pass(int milliseconds) { timers.advance(std::chrono::milliseconds(milliseconds)); }

    /// The log's lines since the last call, without their dates.
    std::vector<std::string> logged() { return logLines.next(); }

    FakeClock clock;
    FakeTimers timers{clock};
    CPosixFiles files;
    CMessageLog log{clock};
    CMirovaneDoc doc{clock, log, {"host", "user"}};
    ScriptedProbes probes;
    NotedDiscoverHost host;
    InlineWorkers inlineWorkers;
    FeatureServices services{doc, timers, log, clock};
    CFeatureOwnership ownership{Feature::LiveDiscover, services, host};
    CLiveDiscover discover;
    LogLines logLines{log};
};

} // namespace mirovane::test
