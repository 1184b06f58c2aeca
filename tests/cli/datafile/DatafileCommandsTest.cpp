#include "model/format/Datafile.h"
#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"
#include "tests/support/Paths.h"

#include <ctime>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace mirovane::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

std::vector<std::string> names(const Words& options, const std::string& file) {
    Words words{"list", file, "--json"};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<std::string> found;
    for (const QJsonValue& row : jsonArray(cli(words).out))
        found.push_back(textOf(row, "Name"));
    return found;
}

TEST(NewCommandTest, MakesTheWholeDatafileOnce) {
    const CliFolder folder;
    const std::string file = folder.datafile();
    const QJsonArray records = jsonArray(cli({"records", file, "--json"}).out);
    ASSERT_EQ(records.size(), 159);
    EXPECT_EQ(numberOf(records[0], "Type"), -6);
    EXPECT_EQ(numberOf(records[0], "State"), 2008);
    EXPECT_EQ(numberOf(records[158], "Type"), -351);
    EXPECT_EQ(cli({"check", file}).status, 0);

    ASSERT_EQ(cli({"add", file, "--type", "Jack"}).status, 0);
    const std::string before = readBytes(file);
    const CliResult again = cli({"new", file});
    EXPECT_EQ(again.status, 3);
    EXPECT_THAT(again.err, HasSubstr("it exists already"));
    EXPECT_EQ(readBytes(file), before);
    EXPECT_EQ(cli({"new", file, "--force"}).status, 0);
    EXPECT_THAT(names({}, file), IsEmpty());
}

TEST(RecordsCommandTest, ShowsEveryStoredField) {
    const CliFolder folder;
    const std::string file =
        folder.datafile({{"Camera", "Name=gate", "Position=-5,70000", "State=off", "ReminderOn=1",
                          "ReminderDate=2026-11-22 12:00", "SlashDraw=1", "SlashText=a/b"}});
    const QJsonObject record = jsonArray(cli({"records", file, "--json"}).out)[159].toObject();
    EXPECT_EQ(record.size(), 25) << "as many fields as are stored";
    EXPECT_EQ(record.value(QLatin1String("Position")), (QJsonArray{-5, 70000}));
    EXPECT_EQ(record.value(QLatin1String("RuleStamps")).toArray().size(), 12);
    const QJsonObject reminder = record.value(QLatin1String("ReminderDate")).toObject();
    EXPECT_EQ(reminder.value(QLatin1String("status")), 0);
    EXPECT_EQ(reminder.value(QLatin1String("value")), 46348.5);
    EXPECT_EQ(numberOf(record, "Type"), 8);
    EXPECT_EQ(numberOf(record, "State"), 2);
    EXPECT_EQ(numberOf(record, "Priority"), 3);
    EXPECT_EQ(numberOf(record, "RecID"), 1);
    EXPECT_GT(numberOf(record, "Modified"), 1'700'000'000);
}

TEST(RecordsCommandTest, JsonIsUtf8AndValidWhateverTheFileHolds) {
    const CliFolder folder;
    const std::string file =
        folder.datafile({{"Printer", "Name=caf\xE9 \x81", "Comment=tab\there \"q\" $mvN \\"}});
    std::string bytes = readBytes(file);
    const std::string notANumber("\x00\x00\x00\x00\x00\x00\xF8\x7F", 8);
    // The last record ends with ReminderDate's value, an empty ToDo and the Priority.
    bytes.replace(bytes.size() - 13, 8, notANumber);
    writeBytes(file, bytes);
    const CliResult result = cli({"records", file, "--json"});
    EXPECT_EQ(result.status, 0);
    const QJsonObject record = jsonArray(result.out)[159].toObject();
    EXPECT_THAT(textOf(record, "Name"), StartsWith("caf\u00E9"));
    EXPECT_EQ(textOf(record, "Comment"), "tab\there \"q\" $mvN \\");
    EXPECT_TRUE(
        record.value(QLatin1String("ReminderDate")).toObject().value(QLatin1String("value")).isNull());

    const CliResult check = cli({"check", file});
    EXPECT_EQ(check.status, 1);
    EXPECT_THAT(check.out, AllOf(HasSubstr("oddities: 2"), HasSubstr("ReminderDate is not a date"),
                                 HasSubstr("record 159 (RecID 1): Name holds text that is neither")));
    EXPECT_EQ(readBytes(file), bytes) << "reading changes nothing";
}

TEST(ListCommandTest, FiltersAndSorts) {
    const CliFolder folder;
    const std::string file = folder.datafile({{"Printer", "Name=b", "IPAddress=127.0.0.9"},
                                              {"Computer", "Name=a", "IPAddress=127.0.0.10"},
                                              {"Computer", "--misc", "Name=c", "IPAddress=127.0.0.1"}});
    EXPECT_THAT(names({"--sort", "Name"}, file), ElementsAre("a", "b", "c"));
    EXPECT_THAT(names({"--sort", "name", "--descending"}, file), ElementsAre("c", "b", "a"));
    EXPECT_THAT(names({"--floor", "--sort", "ID"}, file), ElementsAre("b", "a"));
    EXPECT_THAT(names({"--misc"}, file), ElementsAre("c"));
    EXPECT_THAT(names({"--type", "computer", "--sort", "ID"}, file), ElementsAre("a", "c"));
    EXPECT_THAT(names({"--type", "Jack", "--type", "Printer"}, file), ElementsAre("b"));
}

TEST(ListCommandTest, ATableHasOneLineForEachDeviceWhateverItsTextHolds) {
    const CliFolder folder;
    const std::string file = folder.datafile(
        {{"Printer", "Name=evil\x1B[31m\x07\nname", "Comment=one\r\ntwo"}, {"Jack", "ToJack=J1"}});
    const CliResult result = cli({"list", file, "--sort", "ID"});
    EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 3);
    EXPECT_THAT(result.out, Not(HasSubstr("\x1B")));
    EXPECT_THAT(result.out, AllOf(StartsWith("ID  Modified"), HasSubstr("| Text"), HasSubstr("one  two")));
}

TEST(EditCommandsTest, PrintTheRecIDsAndStampThem) {
    const CliFolder folder;
    const std::string file = folder.datafile();
    EXPECT_EQ(cli({"add", file, "--type", "UPS", "Name=u1"}).out, "1\n");
    EXPECT_EQ(cli({"add", file, "--type", "UPS", "--misc", "Name=u2"}).out, "2\n");
    EXPECT_EQ(cli({"add", file, "--type", "UPS", "Name=u3", "Priority=5"}).out, "3\n");
    EXPECT_EQ(cli({"delete", file, "2", "1", "2"}).out, "2\n1\n");
    EXPECT_EQ(cli({"add", file, "--type", "Jack"}).out, "1\n") << "the smallest free record ID";

    const std::string quotes = "it's \"$HOME\" `x` \\ \xC3\xA9=";
    EXPECT_EQ(
        cli({"set", file, "3", "Name=" + quotes, "Type=Printer", "Comment=" + std::string(10000, 'x')}).out,
        "3\n");
    const QJsonArray records = jsonArray(cli({"records", file, "--json"}).out);
    ASSERT_EQ(records.size(), 161);
    EXPECT_EQ(textOf(records[159], "Name"), quotes);
    EXPECT_EQ(textOf(records[159], "Comment").size(), 10000U);
    EXPECT_EQ(numberOf(records[159], "Type"), 3);
    EXPECT_EQ(numberOf(records[159], "Priority"), 5);
}

TEST(EditCommandsTest, AnEditThatFailsAnywhereChangesNothing) {
    const CliFolder folder;
    const std::string file = folder.datafile({{"Printer", "Name=a"}, {"Printer", "Name=b"}});
    const std::string before = readBytes(file);
    const struct {
        Words words;
        int status;
        std::string why;
    } cases[] = {
        {{"set", file, "1", "Name=x", "Priority=9"}, 2, "Priority cannot be \"9\""},
        {{"set", file, "7", "Name=x"}, 1, "no device has the RecID 7"},
        {{"delete", file, "1", "7"}, 1, "no device has the RecID 7"},
        {{"criteria", file, "--type", "Printer", "--set", "0", "Command", "Ping", "--set", "1", "Command",
          "Ping"},
         2,
         "the valid ones are \"Do Nothing\", \"NS Lookup\""},
        {{"criteria", file, "--type", "Jack", "--set", "1", "Command", "NS Lookup"},
         2,
         "a jack has actions in the rows 0, 5 and 6 alone"},
        {{"criteria", file, "--type", "Location Marker", "--set", "1", "Argument", "x"},
         2,
         "never checks location markers"},
        {{"criteria", file, "--type", "Jack", "--set", "0", "Condition", "On/Off"},
         2,
         "the valid ones are \"On\", \"Off\""},
        {{"criteria", file, "--type", "Jack", "--set", "1", "IfMatch", "1"}, 2, "rows 7 to 11"},
        {{"criteria", file, "--type", "Jack", "--set", "12", "Argument", "1"}, 2, "unknown row \"12\""},
        {{"criteria", file, "--type", "Jack", "--set", "1", "Colour", "1"}, 2, "\"FieldPos\""},
        {{"criteria", file, "--type", "Jack", "--set", "1", "FieldPos", "two"}, 2, "0 for the whole line"},
    };
    for (const auto& wrong : cases) {
        const CliResult result = cli(wrong.words);
        EXPECT_EQ(result.status, wrong.status) << wrong.why;
        EXPECT_THAT(result.err, HasSubstr(wrong.why));
        EXPECT_THAT(result.out, IsEmpty()) << wrong.why;
    }
    EXPECT_EQ(readBytes(file), before);
}

TEST(EditCommandsTest, FilesThatCannotBeReadOrWrittenAreNamed) {
    const CliFolder folder;
    const std::string missing = folder.path("no/such.mv");
    const std::string damaged = folder.path("damaged.mv");
    writeBytes(damaged, readBytes(folder.datafile()).substr(0, 1000));
    const std::string other = folder.path("other.txt");
    writeBytes(other, "this is no datafile at all, only a text of some length");
    for (const std::string& file : {missing, folder.config(), damaged, other}) {
        for (const Words& words : {Words{"list", file},
                                   {"records", file, "--json"},
                                   {"check", file},
                                   {"upgrade", file},
                                   {"add", file, "--type", "Jack"},
                                   {"delete", file, "1"},
                                   {"criteria", file},
                                   {"station", file, "--for", "1", "--config", folder.config()}}) {
            const CliResult result = cli(words);
            EXPECT_EQ(result.status, 3) << words[0] << " " << file;
            EXPECT_THAT(result.err, AllOf(StartsWith("mirovanectl: "), HasSubstr(file)));
        }
    }
    EXPECT_EQ(cli({"new", missing}).status, 3);
    EXPECT_EQ(cli({"new", ""}).status, 2);
    EXPECT_EQ(readBytes(damaged).size(), 1000U);
    EXPECT_THAT(cli({"check", damaged}).err, AllOf(HasSubstr("byte"), HasSubstr("record")));
}

TEST(EditCommandsTest, ClosedStandardDescriptorsDoNotLetMessagesIntoTheDatafile) {
    const CliFolder folder;
    const std::string file = folder.datafile({{"Printer", "Name=a"}});
    const std::string before = readBytes(file);
    const auto withoutAny = [] {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::close(descriptor);
    };
    EXPECT_EQ(cli({"delete", file, "99"}, [] { ::close(STDERR_FILENO); }).status, 1);
    EXPECT_EQ(cli({"delete", file, "99"}, withoutAny).status, 1);
    EXPECT_EQ(readBytes(file), before);
    EXPECT_EQ(cli({"set", file, "1", "Name=b"}, withoutAny).status, 3) << "its result reached nobody";
    EXPECT_EQ(cli({"check", file}).status, 0);
}

TEST(EditCommandsTest, AReadOnlyDatafileStaysAsItIs) {
    const CliFolder folder;
    const std::string file = folder.datafile({{"Printer", "Name=a"}});
    const std::string before = readBytes(file);
    ::chmod(file.c_str(), 0444);
    ::chmod(std::filesystem::path(file).parent_path().c_str(), 0755);
    const auto asNobody = [] {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0))
            ::_exit(126);
    };
    const CliResult result = cli({"set", file, "1", "Name=b"}, asNobody);
    if (result.status == 127)
        GTEST_SKIP() << "the build folder is closed to the user \"nobody\"";
    EXPECT_EQ(result.status, 3);
    EXPECT_THAT(result.err, HasSubstr("Permission denied"));
    EXPECT_EQ(cli({"list", file}, asNobody).status, 0);
    EXPECT_EQ(readBytes(file), before);
}

TEST(EditCommandsTest, TwentyAtOnceAllSurvive) {
    const CliFolder folder;
    const std::string file = folder.datafile();
    std::vector<std::unique_ptr<CliProcess>> adding;
    for (int i = 0; i < 20; ++i)
        adding.push_back(std::make_unique<CliProcess>(
            Words{"add", file, "--type", "Computer", "Name=pc-" + std::to_string(i)}));
    std::set<std::string> printed;
    for (const auto& process : adding) {
        const CliResult result = process->finish();
        EXPECT_EQ(result.status, 0) << result.err;
        printed.insert(result.out);
    }
    EXPECT_EQ(printed.size(), 20U) << "record IDs are unique";
    const auto found = names({}, file);
    EXPECT_EQ(std::set<std::string>(found.begin(), found.end()).size(), 20U);
}

TEST(UpgradeCommandTest, SavesAnOlderLayoutAsTheCurrentOne) {
    const CliFolder folder;
    const std::string file = folder.path("old.mv");
    const std::string old = readBytes(test::sourceFile("tests/golden/floor-2002.mv"));
    writeBytes(file, old);
    EXPECT_THAT(cli({"check", file}).out, StartsWith("version: 2002\n"));
    EXPECT_EQ(readBytes(file), old) << "looking at it upgrades nothing";
    EXPECT_EQ(cli({"upgrade", file}).out, "version 2002 to 2008\n");
    EXPECT_THAT(cli({"check", file}).out, StartsWith("version: 2008\n"));
}

TEST(CriteriaCommandTest, ChangesWhatItShows) {
    const CliFolder folder;
    const std::string file = folder.datafile();
    EXPECT_EQ(
        cli({"criteria", file, "--type",   "Printer",     "--set", "0",     "Command", "Search in Text File",
             "--set",    "0",  "Argument", "/srv/on.txt", "--set", "to do", "IfMatch", "0",
             "--set",    "3",  "Command",  "Who's Logon"})
            .status,
        0);
    const auto rows = [&] {
        return jsonArray(cli({"criteria", file, "--json", "--type", "printer"}).out);
    };
    ASSERT_EQ(rows().size(), 12);
    EXPECT_EQ(textOf(rows()[0], "Command"), "Search in Text File");
    EXPECT_EQ(textOf(rows()[0], "Argument"), "/srv/on.txt");
    EXPECT_EQ(numberOf(rows()[11], "IfMatch"), 0);
    EXPECT_EQ(textOf(rows()[3], "Argument"), "$mvN $mvI") << "the action's only argument comes with it";
    EXPECT_THAT(cli({"criteria", file, "--type", "printer"}).out,
                HasSubstr("Live Stat Status (LSS)  Search in Text"));

    const CliResult broken = cli({"criteria", file, "--type", "Printer", "--set", "6", "SearchFor", "$mvN("});
    EXPECT_EQ(broken.status, 0);
    EXPECT_EQ(broken.err, "mirovanectl: SearchFor of row 6 will match nothing: mismatched parenthesis\n");
    EXPECT_EQ(textOf(rows()[6], "SearchFor"), "$mvN(");

    EXPECT_EQ(cli({"criteria", file, "--reset"}).status, 0);
    EXPECT_EQ(textOf(rows()[0], "Command"), "Ping");
    EXPECT_EQ(jsonArray(cli({"criteria", file, "--json"}).out).size(), 156);
}

/// Writes a stamp, as the other stations see it, into the Live Stat owner of a new datafile.
void setOwner(const std::string& file, std::int64_t secondsAgo, const std::string& name) {
    std::string bytes = readBytes(file);
    auto content = Datafile::decode(bytes);
    for (const auto& record : content.value().records) {
        if (record->Type != SpecialType::LiveStatOwnerRecord)
            continue;
        record->State = 1;
        record->Name = name;
        record->Username = "a-user";
        record->Modified = static_cast<TimeStamp>(std::time(nullptr) - secondsAgo);
    }
    writeBytes(file, Datafile::encode(content.value().records));
}

TEST(CheckCommandTest, TellsWhoRunsWhatAndWhoseSilenceIsTooLong) {
    const CliFolder folder;
    const std::string file = folder.datafile({{"Jack", "Name=j"}});
    constexpr std::int64_t hour = 3600;
    setOwner(file, 3 * hour + 59 * 60 + 30, "A-HOST");
    const CliResult alive = cli({"check", file});
    EXPECT_THAT(alive.out,
                HasSubstr("  Live Stat: on at A-HOST\\a-user, last sign of life 3 h 59 min ago\n"));
    EXPECT_THAT(alive.out, HasSubstr("  Live Discover: off, last changed 0 h 0 min ago\n"));

    setOwner(file, 4 * hour + 5, "A-HOST");
    EXPECT_THAT(cli({"check", file}).out, HasSubstr("4 h 0 min ago; the next station with"));
    const QJsonObject owners =
        QJsonDocument::fromJson(QByteArray::fromStdString(cli({"check", file, "--json"}).out))
            .object()
            .value(QLatin1String("owners"))
            .toObject();
    EXPECT_TRUE(owners.value(QLatin1String("takeOverDue")).toBool());
    const QJsonObject owner = owners.value(QLatin1String("LiveStat")).toObject();
    EXPECT_EQ(textOf(owner, "Name"), "A-HOST");
    EXPECT_EQ(numberOf(owner, "ageMinutes"), 240);
    setOwner(file, -2 * hour - 30, "A-HOST");
    EXPECT_THAT(cli({"check", file}).out, HasSubstr("2 h 0 min ahead of this computer's clock\n"));
}

} // namespace
} // namespace mirovane::test
