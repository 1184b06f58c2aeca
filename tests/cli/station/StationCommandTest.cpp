#include "model/format/Datafile.h"
#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A device that answers and one that never can, and no name to look up.
const std::vector<Words> twoPrinters{{"Printer", "Name=here", "IPAddress=127.0.0.1"},
                                     {"Printer", "Name=gone", "IPAddress=10.1"}};

class StationCommandTest : public testing::Test {
protected:
    Words station(const Words& options) const {
        Words words{"station", file_, "--config", folder_.config()};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }

    static bool mayPing() { return cli({"ping", "127.0.0.1"}).status == 0; }

    std::map<std::string, std::string> states() const {
        std::map<std::string, std::string> byName;
        for (const QJsonValue& row : jsonArray(cli({"list", file_, "--json"}).out))
            byName[textOf(row, "Name")] = textOf(row, "State");
        return byName;
    }

    CHardware owner() const {
        const auto content = Datafile::decode(readBytes(file_));
        for (const auto& record : content.value().records)
            if (record->Type == SpecialType::LiveStatOwnerRecord)
                return *record;
        return {};
    }

    /// Another station says that it runs Live Stat, and has been silent for so long.
    void claimForOther(std::chrono::hours silent = std::chrono::hours(0)) const {
        auto content = std::move(Datafile::decode(readBytes(file_)).value());
        for (const auto& record : content.records) {
            if (record->Type == SpecialType::LiveStatOwnerRecord) {
                record->State = 1;
                record->Name = "OTHER-HOST";
                record->Username = "somebody";
                record->Modified = static_cast<TimeStamp>(
                    std::chrono::system_clock::to_time_t(std::chrono::system_clock::now() - silent));
            }
        }
        writeBytes(file_, Datafile::encode(content.records));
    }

    const CliFolder folder_;
    const std::string file_ = folder_.datafile(twoPrinters);
};

TEST_F(StationCommandTest, RunsLiveStatUntilItIsTold) {
    if (!mayPing())
        GTEST_SKIP() << "this process may not send echoes";
    CliProcess process(station({"--live-stat", "--run-sec", "1", "--per-run", "2"}));
    ASSERT_TRUE(process.waitForOutput("Printer here (127.0.0.1) is On"));
    ASSERT_TRUE(process.waitForOutput("Printer gone (10.1) is Off"));
    EXPECT_EQ(owner().State, 1) << "other stations can see who runs Live Stat";
    process.signal(SIGTERM);
    const CliResult result = process.finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_THAT(result.out, EndsWith("Live Stat disabled\n"));
    EXPECT_EQ(owner().State, 0);
    EXPECT_EQ(states(), (std::map<std::string, std::string>{{"here", "Active"}, {"gone", "Inactive"}}));
    EXPECT_THAT(readBytes(folder_.config() + "/mirovane.ini"),
                AllOf(HasSubstr("LSRunSec=3"), HasSubstr("LSNumPerRun=30")))
        << "the options are for this run only";
}

TEST_F(StationCommandTest, EndsAtItsLimits) {
    if (!mayPing())
        GTEST_SKIP() << "this process may not send echoes";
    EXPECT_EQ(cli(station({"--live-stat", "--run-sec", "1", "--loops", "5"})).status, 0);
    EXPECT_EQ(states()["here"], "Active");
    EXPECT_EQ(owner().State, 0);

    const CliResult now = cli(station({"--now", "2", "--loops", "1", "--run-sec", "1"}));
    EXPECT_EQ(now.status, 0);
    EXPECT_THAT(now.out, HasSubstr("Done processing selected object(s) [LS Now]"));

    const std::string before = readBytes(file_);
    const CliResult unknown = cli(station({"--now", "2", "99"}));
    EXPECT_EQ(unknown.status, 1);
    EXPECT_THAT(unknown.err, HasSubstr("no device has the RecID 99"));
    EXPECT_EQ(readBytes(file_), before);
}

TEST_F(StationCommandTest, OnlyWatchesWithoutLiveStat) {
    CliProcess process(station({"--json"}));
    // The station has opened the datafile when it notices that another one saved it.
    bool reloaded = false;
    for (int attempt = 0; attempt < 5 && !reloaded; ++attempt) {
        ASSERT_EQ(cli({"set", file_, "1", "State=On"}).status, 0);
        reloaded = process.waitForOutput("Loaded from data file", 1, std::chrono::seconds(5));
    }
    ASSERT_TRUE(reloaded);
    process.signal(SIGHUP);
    const std::string before = readBytes(file_);
    process.signal(SIGINT);
    const CliResult result = process.finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(readBytes(file_), before);
    EXPECT_EQ(owner().State, 0);
    for (std::size_t at = 0, end = 0; (end = result.out.find('\n', at)) != std::string::npos; at = end + 1) {
        const QJsonObject line =
            QJsonDocument::fromJson(QByteArray::fromStdString(result.out.substr(at, end - at))).object();
        EXPECT_THAT(textOf(line, "time"), HasSubstr("T"));
        EXPECT_THAT(textOf(line, "message"), Not(IsEmpty()));
    }
}

TEST_F(StationCommandTest, LeavesAnotherStationsLiveStatAlone) {
    claimForOther();
    const std::string before = readBytes(file_);
    const CliResult refused = cli(station({"--live-stat"}));
    EXPECT_EQ(refused.status, 4);
    EXPECT_THAT(refused.err, HasSubstr("Live stat is enabled by OTHER-HOST\\somebody."));
    EXPECT_EQ(readBytes(file_), before);

    CliProcess taking(station({"--live-stat", "--take-over", "--run-sec", "1"}));
    ASSERT_TRUE(taking.waitForOutput("Saved changes to data file"));
    EXPECT_EQ(owner().State, 1);
    EXPECT_NE(owner().Name, "OTHER-HOST");
    taking.signal(SIGHUP);
    taking.signal(SIGTERM);
    EXPECT_EQ(taking.finish().status, 0);
    EXPECT_EQ(owner().State, 0);
}

TEST_F(StationCommandTest, ReplacesAnOwnerThatFellSilent) {
    claimForOther(std::chrono::hours(4));
    CliProcess process(station({"--live-stat", "--run-sec", "1"}));
    ASSERT_TRUE(process.waitForOutput("Saved changes to data file"));
    EXPECT_NE(owner().Name, "OTHER-HOST");
    process.signal(SIGTERM);
    EXPECT_EQ(process.finish().status, 0);
}

/// Two that both insisted would save, and make everybody reload, every three seconds.
TEST_F(StationCommandTest, LeavesLiveStatToWhoTakesItLater) {
    CliProcess process(station({"--live-stat", "--take-over", "--run-sec", "1"}));
    ASSERT_TRUE(process.waitForOutput("Saved changes to data file"));
    claimForOther();
    ASSERT_TRUE(process.waitForOutput("Live Stat disabled"));
    process.signal(SIGTERM);
    const CliResult result = process.finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("Live Stat is left to another station"));
    EXPECT_EQ(owner().Name, "OTHER-HOST");
}

TEST_F(StationCommandTest, ReleasesLiveStatWhenNobodyReadsAnyMore) {
    CliProcess process(station({"--live-stat", "--run-sec", "1"}));
    ASSERT_TRUE(process.waitForOutput("Saved changes to data file"));
    process.closeOutput();
    const CliResult result = process.finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(owner().State, 0);
}

TEST_F(StationCommandTest, StartsWhenTheFirstDeviceArrives) {
    if (!mayPing())
        GTEST_SKIP() << "this process may not send echoes";
    ASSERT_EQ(cli({"delete", file_, "1", "2"}).status, 0);
    CliProcess process(station({"--live-stat", "--run-sec", "1"}));
    bool on = false;
    for (int attempt = 0; attempt < 5 && !on; ++attempt) {
        ASSERT_EQ(cli({"add", file_, "--type", "Phone", "Name=new", "IPAddress=127.0.0.5"}).status, 0);
        on = process.waitForOutput("Phone new (127.0.0.5) is On", 1, std::chrono::seconds(8));
    }
    EXPECT_TRUE(on);
    process.signal(SIGTERM);
    EXPECT_EQ(process.finish().status, 0);
}

} // namespace
} // namespace mirovane::test
