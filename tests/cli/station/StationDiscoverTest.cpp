#include "model/format/Datafile.h"
#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class StationDiscoverTest : public testing::Test {
protected:
    Words station(const Words& options) const {
        Words words{"station", file_, "--config", folder_.config()};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }

    void addRange(const char* from, const char* to) const {
        ASSERT_EQ(cli({"ranges", file_, "--add", from, to}).status, 0);
    }

    CHardware owner(std::int32_t type = SpecialType::LiveDiscoverOwnerRecord) const {
        const auto content = Datafile::decode(readBytes(file_));
        for (const auto& record : content.value().records)
            if (record->Type == type)
                return *record;
        return {};
    }

    const CliFolder folder_;
    const std::string file_ = folder_.datafile({{"Printer", "IPAddress=127.1.2.2>>"}});
};

TEST_F(StationDiscoverTest, FindsAHostThatNoDeviceHas) {
    if (cli({"ping", "127.0.0.1"}).status != 0)
        GTEST_SKIP() << "this process may not send echoes";
    addRange("127.1.2.1", "127.1.2.1");
    CliProcess process(station({"--discover"}));
    ASSERT_TRUE(process.waitForOutput("Discover added a new device"));
    process.signal(SIGTERM);
    const CliResult result = process.finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, IsEmpty());
    EXPECT_EQ(owner().State, 0);
    EXPECT_THAT(cli({"list", file_, "--misc"}).out, HasSubstr("127.1.2.1 "));
}

TEST_F(StationDiscoverTest, TakesBothOverOrNeither) {
    addRange("127.1.2.1", "127.1.2.3");
    auto content = std::move(Datafile::decode(readBytes(file_)).value());
    for (const auto& record : content.records) {
        if (record->Type == SpecialType::LiveDiscoverOwnerRecord ||
            record->Type == SpecialType::LiveStatOwnerRecord) {
            record->State = 1;
            record->Name = "OTHER-HOST";
            record->Username = "somebody";
            record->Modified = static_cast<TimeStamp>(
                std::chrono::system_clock::to_time_t(std::chrono::system_clock::now()));
        }
    }
    writeBytes(file_, Datafile::encode(content.records));
    const std::string before = readBytes(file_);
    const CliResult refused = cli(station({"--discover"}));
    EXPECT_EQ(refused.status, 4);
    EXPECT_THAT(refused.err, HasSubstr("Live Discover is enabled by OTHER-HOST\\somebody."));
    EXPECT_EQ(cli(station({"--discover", "--live-stat"})).status, 4);
    EXPECT_EQ(readBytes(file_), before);

    CliProcess taking(station({"--discover", "--live-stat", "--take-over"}));
    ASSERT_TRUE(taking.waitForOutput("Saved changes to data file", 2));
    EXPECT_EQ(owner().State, 1);
    EXPECT_NE(owner().Name, "OTHER-HOST");
    EXPECT_NE(owner(SpecialType::LiveStatOwnerRecord).Name, "OTHER-HOST");
    taking.signal(SIGTERM);
    EXPECT_EQ(taking.finish().status, 0);
    EXPECT_EQ(owner().State + owner(SpecialType::LiveStatOwnerRecord).State, 0);
}

TEST_F(StationDiscoverTest, BeginsWithTheFirstRange) {
    CliProcess process(station({"--discover"}));
    // The station has opened the datafile when it notices that another one saved it.
    bool opened = false;
    for (int attempt = 0; attempt < 5 && !opened; ++attempt) {
        ASSERT_EQ(cli({"set", file_, "1", "Comment=" + std::to_string(attempt)}).status, 0);
        opened = process.waitForOutput("Loaded from data file", 1, std::chrono::seconds(5));
    }
    ASSERT_TRUE(opened);
    addRange("127.1.2.1", "127.1.2.3");
    EXPECT_TRUE(process.waitForOutput("Saved changes to data file"));
    EXPECT_EQ(owner().State, 1);
    process.signal(SIGTERM);
    const CliResult result = process.finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.err, HasSubstr("the datafile holds no address range yet"));
    EXPECT_EQ(owner().State, 0);
}

} // namespace
} // namespace mirovane::test
