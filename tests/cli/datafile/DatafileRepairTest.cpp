#include "model/format/Datafile.h"
#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace mirovane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A damaged datafile: the Phone and the Jack have the RecID of the Printer.
class DatafileRepairTest : public testing::Test {
protected:
    DatafileRepairTest() {
        auto content = std::move(Datafile::decode(readBytes(file)).value());
        for (const auto& record : content.records) {
            if (!record->isDevice() || record->Name == "bystander")
                continue;
            record->RecID = 1;
            record->Modified = 1'000'000'000;
        }
        damaged = Datafile::encode(content.records);
        writeBytes(file, damaged);
        ::chmod(file.c_str(), 0640);
    }

    std::string kept(const std::string& number = "") const { return file + ".before-repair" + number; }

    const CliFolder folder;
    const std::string file = folder.datafile({{"Printer", "Name=caf\xE9", "IPAddress=127.0.0.1"},
                                              {"Phone", "Name=hall"},
                                              {"Computer", "Name=bystander"},
                                              {"Jack", "ToJack=J-7"}});
    std::string damaged;
};

TEST_F(DatafileRepairTest, NoCommandTakesOneOfTwoThatHaveTheRecID) {
    for (const Words& words : {Words{"delete", file, "3", "1"},
                               {"set", file, "1", "Name=x"},
                               {"copy", file, "1"},
                               {"test", file, "1"},
                               {"station", file, "--now", "1", "--for", "1", "--config", folder.config()}}) {
        const CliResult refused = cli(words);
        EXPECT_EQ(refused.status, 3) << words[0];
        EXPECT_THAT(refused.err,
                    HasSubstr("Printer \"caf\u00E9\", Phone \"hall\" and Jack \"J-7\" have the same RecID 1; "
                              "mirovanectl check " +
                              file + " --repair gives each its own\n"));
        EXPECT_THAT(refused.out, IsEmpty());
        EXPECT_EQ(readBytes(file), damaged) << words[0];
    }
    EXPECT_EQ(cli({"set", file, "3", "Comment=x"}).status, 0) << "the others can be worked on";
    EXPECT_EQ(cli({"copy", file}).status, 0);
}

TEST_F(DatafileRepairTest, GivesEachTwinARecIDAndKeepsTheOldFile) {
    EXPECT_EQ(cli({"check", file}).status, 1);
    EXPECT_EQ(readBytes(file), damaged) << "only --repair writes";
    const CliResult repaired = cli({"check", file, "--repair"});
    EXPECT_EQ(repaired.status, 0) << repaired.out << repaired.err;
    EXPECT_THAT(repaired.out, AllOf(HasSubstr("repaired: 2\n  \"hall\": RecID 1 is now 2\n"
                                              "  \"J-7\": RecID 1 is now 4\n  the file as it was: " +
                                              kept() + "\n"),
                                    HasSubstr("oddities: 0\n")));
    EXPECT_EQ(readBytes(kept()), damaged);
    struct stat status = {};
    ASSERT_EQ(::stat(kept().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0640U);
    const auto content = Datafile::decode(readBytes(file));
    for (const auto& record : content.value().records)
        if (record->Name == "hall" || record->ToJack == "J-7")
            EXPECT_GT(record->Modified, 1'000'000'000);
        else if (record->isDevice() && record->RecID == 1)
            EXPECT_EQ(record->Modified, 1'000'000'000) << "the one that kept its RecID is as it was";
    EXPECT_EQ(cli({"delete", file, "2"}).out, "2\n");
    EXPECT_THAT(cli({"list", file}).out,
                AllOf(Not(HasSubstr("hall")), HasSubstr("J-7"), HasSubstr("127.0.0.1")));
}

TEST_F(DatafileRepairTest, WritesNothingWithNothingToMendAndOverNoOlderCopy) {
    writeBytes(kept(), "older");
    const QJsonObject report =
        QJsonDocument::fromJson(QByteArray::fromStdString(cli({"check", file, "--repair", "--json"}).out))
            .object();
    const QJsonObject repair = report.value(QLatin1String("repaired")).toObject();
    EXPECT_EQ(textOf(repair, "copy"), kept("-2"));
    const QJsonArray renumbered = repair.value(QLatin1String("renumbered")).toArray();
    ASSERT_EQ(renumbered.size(), 2);
    EXPECT_EQ(textOf(renumbered[1], "Name"), "J-7");
    EXPECT_EQ(numberOf(renumbered[1], "From"), 1);
    EXPECT_EQ(numberOf(renumbered[1], "To"), 4);
    EXPECT_EQ(readBytes(kept()), "older");
    EXPECT_EQ(readBytes(kept("-2")), damaged);

    const std::string mended = readBytes(file);
    const CliResult again = cli({"check", file, "--repair"});
    EXPECT_EQ(again.status, 0);
    EXPECT_THAT(again.out, HasSubstr("repaired: nothing"));
    EXPECT_EQ(readBytes(file), mended);
    EXPECT_FALSE(std::filesystem::exists(kept("-3")));
}

TEST_F(DatafileRepairTest, WhatCannotBeMendedIsReportedAndAFailureLeavesEverything) {
    auto content = std::move(Datafile::decode(damaged).value());
    content.records.back()->Priority = 9;
    writeBytes(file, Datafile::encode(content.records));
    const CliResult odd = cli({"check", file, "--repair"});
    EXPECT_EQ(odd.status, 1);
    EXPECT_THAT(odd.out,
                AllOf(HasSubstr("repaired: 2\n"), HasSubstr("oddities: 1\n"), HasSubstr("Priority is 9")));

    writeBytes(file, damaged + "tail");
    const CliResult tailed = cli({"check", file, "--repair"});
    EXPECT_EQ(tailed.status, 0);
    EXPECT_THAT(tailed.out, AllOf(HasSubstr("repaired: 3\n  4 byte(s) after"), HasSubstr("oddities: 0\n")));
    EXPECT_EQ(readBytes(kept("-2")), damaged + "tail") << "and no second copy of it";
    EXPECT_FALSE(std::filesystem::exists(kept("-3")));

    // The name of the copy is too long for the folder.
    const std::string longName = folder.path(std::string(250, 'f'));
    writeBytes(longName, damaged);
    const CliResult failed = cli({"check", longName, "--repair"});
    EXPECT_EQ(failed.status, 3);
    EXPECT_THAT(failed.err, HasSubstr(longName + ".before-repair: File name too long"));
    EXPECT_THAT(failed.out, IsEmpty());
    EXPECT_EQ(readBytes(longName), damaged);
}

} // namespace
} // namespace mirovane::test
