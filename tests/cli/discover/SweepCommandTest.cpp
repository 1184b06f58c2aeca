#include "model/format/Datafile.h"
#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"
#include "tests/support/OwnNetwork.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <thread>

namespace mirovane::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class SweepCommandTest : public testing::Test {
protected:
    void SetUp() override {
        if (network_.refused())
            GTEST_SKIP() << *network_.refused();
        if (cli({"ping", "127.0.0.1"}).status != 0)
            GTEST_SKIP() << "this process may not send echoes";
    }

    Words sweep(const Words& options = {}) const {
        Words words{"sweep", file_, "--config", folder_.config()};
        words.insert(words.end(), options.begin(), options.end());
        return words;
    }

    void addRanges(const std::vector<std::pair<std::string, std::string>>& ranges) const {
        auto content = std::move(Datafile::decode(readBytes(file_)).value());
        for (const auto& [from, to] : ranges) {
            auto record = std::make_unique<CHardware>();
            record->Type = SpecialType::DiscoverRangeRecord;
            record->Name = from;
            record->IPAddress = to;
            content.records.push_back(std::move(record));
        }
        writeBytes(file_, Datafile::encode(content.records));
    }

    CHardware owner() const {
        const auto content = Datafile::decode(readBytes(file_));
        for (const auto& record : content.value().records)
            if (record->Type == SpecialType::LiveDiscoverOwnerRecord)
                return *record;
        return {};
    }

    void claimForOther() const {
        auto content = std::move(Datafile::decode(readBytes(file_)).value());
        for (const auto& record : content.records) {
            if (record->Type != SpecialType::LiveDiscoverOwnerRecord)
                continue;
            record->State = 1;
            record->Name = "OTHER-HOST";
            record->Username = "somebody";
        }
        writeBytes(file_, Datafile::encode(content.records));
    }

    std::vector<std::string> addresses(const std::string& json) const {
        std::vector<std::string> list;
        for (const QJsonValue& host : jsonArray(json))
            list.push_back(textOf(host, "IPAddress"));
        return list;
    }

    OwnNetwork network_; ///< the look-ups of names must not leave this computer
    const CliFolder folder_;
    const std::string file_ = folder_.datafile({{"Printer", "Name=known", "IPAddress=127.0.1.1>>"}});
};

TEST_F(SweepCommandTest, AddsWhoAnswersAndPrintsTheRecIDs) {
    addRanges({{"127.0.1.0", "127.0.1.2"}});
    const CliResult first = cli(sweep({"--json"}));
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_THAT(first.err, IsEmpty());
    EXPECT_THAT(addresses(first.out), ElementsAre("127.0.1.0", "127.0.1.2")) << "one is known";
    const std::string recID = std::to_string(numberOf(jsonArray(first.out)[1], "RecID"));
    EXPECT_THAT(cli({"copy", file_, recID}).out, HasSubstr("\t127.0.1.2\t"));
    EXPECT_EQ(owner().State, 0);
    const CliResult second = cli(sweep());
    EXPECT_EQ(second.status, 1);
    EXPECT_THAT(second.err, HasSubstr("Every address of the ranges belongs to a device already."));
}

TEST_F(SweepCommandTest, ADryRunWritesNothingAtAll) {
    addRanges({{"127.0.0.5", "127.0.0.7"}});
    const auto before = readBytes(file_);
    const CliResult result = cli(sweep({"--dry-run"}));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_THAT(result.out, AllOf(HasSubstr("127.0.0.5"), HasSubstr("127.0.0.7"), Not(HasSubstr("RecID"))));
    EXPECT_EQ(readBytes(file_), before);
    EXPECT_TRUE(std::filesystem::is_empty(folder_.config())) << "no settings either";
    claimForOther();
    EXPECT_EQ(cli(sweep({"--dry-run"})).status, 0) << "looking disturbs nobody";
}

TEST_F(SweepCommandTest, ASignalEndsItWithWhatWasFound) {
    addRanges({{"127.2.0.1", "127.2.255.254"}});
    CliProcess process(sweep({"--rate", "200"}));
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (owner().State == 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    process.signal(SIGINT);
    const CliResult result = process.finish();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("Stopped after "));
    EXPECT_EQ(owner().State, 0);
    if (!result.out.empty())
        EXPECT_THAT(cli({"list", file_}).out, HasSubstr("127.2.0.1 "));
}

TEST_F(SweepCommandTest, LeavesLiveDiscoverToItsOwner) {
    addRanges({{"127.0.0.5", "127.0.0.7"}});
    claimForOther();
    const auto before = readBytes(file_);
    const CliResult refused = cli(sweep());
    EXPECT_EQ(refused.status, 4);
    EXPECT_THAT(refused.err, HasSubstr("Live Discover is enabled by OTHER-HOST\\somebody."));
    EXPECT_EQ(readBytes(file_), before);
    EXPECT_EQ(cli(sweep({"--take-over"})).status, 0);
    EXPECT_EQ(owner().State, 0);
}

TEST_F(SweepCommandTest, RefusesWhatCannotBeMeant) {
    EXPECT_THAT(cli(sweep()).err, HasSubstr("Live Discover does not have IP range(s) to discover."));
    addRanges({{"127.0.0.1", "127.255.255.254"}});
    const CliResult huge = cli(sweep());
    EXPECT_EQ(huge.status, 2);
    EXPECT_THAT(huge.err, AllOf(HasSubstr("16,777,214 addresses"), HasSubstr("--yes")));
    EXPECT_EQ(cli(sweep({"--rate", "0"})).status, 2);
    EXPECT_EQ(cli(sweep({"--rate", "10001"})).status, 2);
    addRanges({{"127.0.0.9", "127.0.0.1"}});
    const CliResult invalid = cli(sweep({"--yes"}));
    EXPECT_EQ(invalid.status, 1);
    EXPECT_THAT(invalid.err,
                HasSubstr("Invalid IP Address/Range or entry cannot be blank (From \"127.0.0.9\""));
}

TEST_F(SweepCommandTest, SaysWhatToDoWhereNoEchoIsAllowed) {
    addRanges({{"127.0.0.5", "127.0.0.7"}});
    const auto before = readBytes(file_);
    constexpr int cannotArrange = 99;
    const CliResult result = cli(sweep(), [] {
        if (::unshare(CLONE_NEWNET) != 0 || !OwnNetwork::set("ipv4/ping_group_range", "1 0") ||
            ::prctl(PR_CAPBSET_DROP, CAP_NET_RAW) != 0)
            ::_exit(cannotArrange);
    });
    if (result.status == cannotArrange)
        GTEST_SKIP() << "no network namespace without the right can be made";
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.err, HasSubstr("cap_net_raw"));
    EXPECT_EQ(readBytes(file_), before);
}

} // namespace
} // namespace mirovane::test
