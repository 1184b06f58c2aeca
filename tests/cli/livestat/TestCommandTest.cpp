#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;

class TestCommandTest : public testing::Test {
protected:
    TestCommandTest()
        : file(folder.datafile({{"Printer", "Name=lp1", "IPAddress=127.0.0.1", "State=On", "Comment=old"}})) {
        writeBytes(folder.path("hosts"), "other;1\nLP1;Room 8\n");
        set({"6", "Command",   "Search in Text File",
             "6", "Argument",  folder.path("hosts"),
             "6", "SearchFor", "^$mvN;",
             "6", "Delimiter", ";",
             "6", "FieldPos",  "2",
             "7", "Command",   "Set Value",
             "7", "Argument",  "x",
             "7", "Condition", "Off"});
    }
    void set(const Words& values) {
        Words words{"criteria", file, "--type", "Printer"};
        for (std::size_t i = 0; i + 2 < values.size(); i += 3)
            words.insert(words.end(), {"--set", values[i], values[i + 1], values[i + 2]});
        const CliResult result = cli(words);
        ASSERT_EQ(result.status, 0) << result.err;
    }

    CliFolder folder;
    std::string file;
};

TEST_F(TestCommandTest, TellsWhatARowWouldWriteAndWritesNothing) {
    const std::string before = readBytes(file);
    const CliResult row = cli({"test", file, "1", "comment/marker"});
    EXPECT_EQ(row.status, 0) << row.err;
    EXPECT_EQ(row.out, "6 Comment/Marker: Search in Text File\n"
                       "  argument: " +
                           folder.path("hosts") +
                           "\n"
                           "  pattern:  ^lp1;\n"
                           "  answer:   " +
                           folder.path("hosts") +
                           ", line 2: LP1;Room 8\n"
                           "  answer:   field 2: Room 8\n"
                           "  outcome:  match\n"
                           "  writes:   Comment: Room 8 (was: old)\n");
    EXPECT_EQ(cli({"test", file, "1", "7"}).out,
              "7 / Text: Set Value\n"
              "  argument: x\n"
              "  answer:   not run: the row is for devices that are Off, and this one is On\n"
              "  outcome:  nothing is done\n");
    EXPECT_THAT(cli({"test", file, "1", "11"}).out, HasSubstr("the row does nothing"));
    EXPECT_EQ(readBytes(file), before);
}

TEST_F(TestCommandTest, WithoutARowEveryActionIsTriedAndAMissIsTheAnswerNo) {
    set({"6", "SearchFor", "nobody", "0", "Command", "Search for File", "0", "Argument", folder.path("h*")});
    const CliResult all = cli({"test", file, "1", "--json"});
    EXPECT_EQ(all.status, 1) << all.err;
    const QJsonArray rows = jsonArray(all.out);
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[0].toObject()[QLatin1String("Label")].toString().toStdString(), "Live Stat Status (LSS)");
    EXPECT_FALSE(rows[0].toObject()[QLatin1String("Failed")].toBool());
    const QJsonObject search = rows[1].toObject();
    EXPECT_TRUE(search[QLatin1String("Failed")].toBool());
    EXPECT_EQ(search[QLatin1String("SearchFor")].toString().toStdString(), "nobody");
    const QJsonObject change = search[QLatin1String("Changes")].toArray().at(0).toObject();
    EXPECT_EQ(change[QLatin1String("Field")].toString().toStdString(), "Comment");
    EXPECT_EQ(change[QLatin1String("After")].toString().toStdString(), "");
    EXPECT_FALSE(rows[2].toObject()[QLatin1String("ConditionAllows")].toBool());
}

TEST_F(TestCommandTest, SaysWhatItCannotTry) {
    EXPECT_EQ(cli({"test", file, "99"}).status, 1);
    EXPECT_THAT(cli({"test", file, "99"}).err, HasSubstr("no device has the RecID 99"));
    EXPECT_EQ(cli({"test", file, "1", "12"}).status, 2);
    EXPECT_EQ(cli({"test", file, "first"}).status, 2);
    EXPECT_EQ(cli({"test", folder.path("missing.mv"), "1"}).status, 3);
}

} // namespace
} // namespace mirovane::test
