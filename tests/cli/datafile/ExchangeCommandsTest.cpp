#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mirovane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

/// With this file as standard input.
CliResult cliReading(const std::string& file, const Words& words) {
    return cli(
        words,
        [&file] {
            const int descriptor = open(file.c_str(), O_RDONLY);
            dup2(descriptor, STDIN_FILENO);
        });
}

std::vector<Words> office() {
    return {{"Printer", "Name=prn", "Comment=one\r\ntwo\tthree", "State=Off", "ReminderOn=1",
             "ReminderDate=2026-11-22 14:30", "ToDo=toner", "BackslashDraw=1", "BackslashText=b"},
            {"Computer", "Name=caf\xE9", "State=On", "Priority=2", "Position=40,50"},
            {"Location Marker", "ToJack=1,1,2,2,", "Comment=Hall"}};
}

QJsonObject deviceAt(const std::string& file, int place) {
    return jsonArray(cli({"records", file, "--json"}).out)[159 + place].toObject();
}

TEST(CopyCommandTest, WhatItPrintsImportsAsTheSameLines) {
    const CliFolder folder;
    const std::string file = folder.datafile(office());
    const std::string other = folder.datafile("other.mv");
    const CliResult copied = cli({"copy", file});
    EXPECT_THAT(copied.out, HasSubstr("\tPrinter\tprn\t\t\t\t\tone two three\t\t\tCheck\tb\t\t\t\t\r\n"));
    writeBytes(folder.path("devices.txt"), copied.out);

    const CliResult imported =
        cliReading(folder.path("devices.txt"), {"import", other, "-", "--position", "7,8"});
    EXPECT_EQ(imported.status, 0) << imported.err;
    EXPECT_EQ(imported.out, "1\n2\n3\n");
    EXPECT_EQ(cli({"copy", other}).out, copied.out) << "dates and bytes included";
    const QJsonObject computer = deviceAt(other, 1);
    EXPECT_EQ(numberOf(computer, "Priority"), 5) << "the type's, as for every new device";
    EXPECT_EQ(computer.value(QLatin1String("Position")), (QJsonArray{7, 8}));
    EXPECT_EQ(numberOf(computer, "Modified"), numberOf(deviceAt(file, 1), "Modified"));
    EXPECT_EQ(cli({"check", other}).status, 0);
}

TEST(CopyCommandTest, TakesTheDevicesNamedOrNone) {
    const CliFolder folder;
    const std::string file = folder.datafile(office());
    const CliResult two = cli({"copy", file, "3", "1"});
    EXPECT_EQ(std::count(two.out.begin(), two.out.end(), '\n'), 2);
    EXPECT_LT(two.out.find("Printer"), two.out.find("Location Marker")) << "in list order";
    const CliResult missing = cli({"copy", file, "1", "99"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.out, "");
    EXPECT_THAT(missing.err, HasSubstr("99"));
}

TEST(ImportCommandTest, AllOrNothingWithLineNumbers) {
    const CliFolder folder;
    const std::string file = folder.datafile(office());
    const std::string before = readBytes(file);
    writeBytes(folder.path("bad.txt"),
               "\t\t\t\tJack\tj-1\r\n\r\n\t\t\t\tToaster\tt\r\n\t\tsoon\t\tJack\tj-2\r\n");
    const CliResult bad = cli({"import", file, folder.path("bad.txt")});
    EXPECT_EQ(bad.status, 3);
    EXPECT_EQ(bad.out, "");
    EXPECT_THAT(bad.err, AllOf(HasSubstr("bad.txt line 3: "), HasSubstr("\"Toaster\""),
                               HasSubstr("bad.txt line 4: "), HasSubstr("\"soon\"")));
    EXPECT_EQ(cli({"import", file, folder.path("none.txt")}).status, 3);
    writeBytes(folder.path("wide.txt"), std::string("\xFF\xFE\t\0\t\0", 6));
    const CliResult wide = cli({"import", file, folder.path("wide.txt")});
    EXPECT_EQ(wide.status, 3);
    EXPECT_THAT(wide.err, HasSubstr("UTF-16"));
    writeBytes(folder.path("empty.txt"), "\r\n");
    EXPECT_EQ(cli({"import", file, folder.path("empty.txt")}).status, 1);
    EXPECT_EQ(cli({"import", file, folder.path("empty.txt"), "--position", "here"}).status, 2);
    EXPECT_EQ(readBytes(file), before);

    writeBytes(folder.path("good.txt"), "\t\t\t\tJack\tj-1\n");
    const CliResult good = cli({"import", file, folder.path("good.txt"), "--misc"});
    EXPECT_EQ(good.out, "4\n");
    EXPECT_EQ(numberOf(deviceAt(file, 3), "Type"), 1001);
    EXPECT_GT(numberOf(deviceAt(file, 3), "Modified"), 1'700'000'000);
}

TEST(ExportCommandTest, WritesTheRowsThatAreAskedFor) {
    const CliFolder folder;
    const std::string file = folder.datafile(office());
    const std::string out = folder.path("list.csv");
    writeBytes(out, "older and longer than anything that is to come, so that a rest of it would show" +
                        std::string(5000, '.'));
    const CliResult written = cli({"export", file, out, "--delimiter", ";", "--quote-comment", "--header",
                                   "--sort", "ID", "--type", "printer", "--type", "Computer"});
    EXPECT_EQ(written.status, 0) << written.err;
    EXPECT_EQ(written.out, "");
    const std::string text = readBytes(out);
    EXPECT_THAT(text, StartsWith("Modified;LS;"));
    EXPECT_THAT(text, HasSubstr(";Inactive;4;Sun Nov 22 14:30:00 2026;toner;Printer;prn;;;;;\"one "));
    EXPECT_LT(text.find(";Printer;"), text.find(";Computer;caf\xE9;")) << "sorted by ID";
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3);
    EXPECT_EQ(cli({"export", file, "-", "--delimiter", ";", "--quote-comment", "--header", "--sort", "ID",
                   "--type", "printer", "--type", "Computer"})
                  .out,
              text);
}

TEST(ExportCommandTest, NeverOverADatafile) {
    const CliFolder folder;
    const std::string file = folder.datafile(office());
    const std::string other = folder.datafile("other.mv");
    const std::string before = readBytes(other);
    for (const std::string& target : {file, other, folder.path("no/folder/list.txt")}) {
        const CliResult refused = cli({"export", file, target});
        EXPECT_EQ(refused.status, 3);
        EXPECT_THAT(refused.err, HasSubstr(target));
    }
    EXPECT_EQ(readBytes(other), before);
    EXPECT_EQ(cli({"check", file}).status, 0);
}

} // namespace
} // namespace mirovane::test
