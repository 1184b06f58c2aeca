#pragma once

#include "livestat/Discover.h"
#include "platform/PosixFiles.h"
#include "tests/support/FakeTime.h"
#include "tests/support/InlineWorkers.h"
#include "tests/support/LogLines.h"
#include "tests/support/ScriptedProbes.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace mirovane::test {

/// A station reduced to notes of what Live Discover asked of it.
class NotedDiscoverHost final : public LiveDiscoverHost {
public:
    bool askUser(const std::string& question) override {
        questions.push_back(question);
        return answer;
    }
    void failUser(const std::string& text) override { failures.push_back(text); }
    bool holdsStill() const override { return still; }
    SaveResult saveDatafile(const std::string&) override {
        ++saves;
        return SaveResult::Saved;
    }
    void indicatorsChanged() override { ++indications; }
    void waiting() override {
        if (whileWaiting)
            whileWaiting();
    }
    void deviceDiscovered() override {
        ++discoveries;
        if (whileSaving)
            whileSaving();
    }

    bool answer = false;
    bool still = false;
    std::function<void()> whileWaiting, whileSaving;
    std::vector<std::string> questions, failures;
    int saves = 0;
    int discoveries = 0;
    int indications = 0;
};

class DiscoverFixture : public testing::Test {
protected:
    explicit DiscoverFixture(Workers* other = nullptr)
        : discover(doc, probes, other ? *other : inlineWorkers, timers, host) {
        doc.newDatafile();
    }

    const CHardware& addRange(const std::string& from, const std::string& to) {
        CHardware range;
        range.Type = SpecialType::DiscoverRangeRecord;
        range.Name = from;
        range.IPAddress = to;
        return *doc.append(range);
    }
    const CHardware& addDevice(const std::string& address) {
        return *doc.addDevice(DeviceType::Printer, [&](CHardware& device) { device.IPAddress = address; });
    }
    const CHardware& owner() const { return *doc.findSpecial(SpecialType::LiveDiscoverOwnerRecord); }
    std::string walk() const { return owner().MACAddress + "-" + owner().Comment + " " + owner().IPAddress; }

    void pass(int milliseconds) { timers.advance(std::chrono::milliseconds(milliseconds)); }

    /// The log's lines since the last call, without their dates.
    std::vector<std::string> logged() { return logLines.next(); }

    FakeClock clock;
    FakeTimers timers{clock};
    PosixFiles files;
    CMessageLog log{clock};
    MemorySettingsStore store;
    CSettings settings{store};
    CMirovaneDoc doc{files, clock, log, settings, {"host", "user"}};
    ScriptedProbes probes;
    NotedDiscoverHost host;
    InlineWorkers inlineWorkers;
    CLiveDiscover discover;
    LogLines logLines{log};
};

} // namespace mirovane::test
