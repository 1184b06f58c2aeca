#include "cli/Commands.h"
#include "model/records/FieldNames.h"
#include "model/rows/ListRows.h"
#include "tests/cli/CliRunner.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST(UsageTest, HelpNamesEveryCommandAndEachHasItsOwn) {
    const CliResult overall = cli({"--help"});
    EXPECT_EQ(overall.status, 0);
    EXPECT_THAT(overall.err, IsEmpty());
    for (const Command* each : commands()) {
        const std::string command(each->name);
        EXPECT_THAT(overall.out, HasSubstr("\n  " + command + " "));
        const CliResult help = cli({command, "--help"});
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_THAT(help.out, StartsWith("usage: mirovanectl " + command + " "));
        for (const OptionDefinition& option : each->options)
            EXPECT_THAT(help.out, HasSubstr("\n  " + std::string(option.name))) << command;
        EXPECT_THAT(help.err, IsEmpty());
    }
    EXPECT_THAT(cli({"--version"}).out, StartsWith("mirovanectl 0."));
}

TEST(UsageTest, HelpNamesEveryFieldAndColumn) {
    const std::string fields = cli({"set", "--help"}).out;
    for (const RecordField& field : recordFields())
        if (field.keeper.empty())
            EXPECT_THAT(fields, HasSubstr(std::string(field.name)));
    const std::string columns = cli({"list", "--help"}).out;
    for (const ListColumnDefinition& column : listColumns())
        EXPECT_THAT(columns, HasSubstr(std::string(column.title)));
}

TEST(UsageTest, AWrongCommandLineSaysWhatIsWrongAndTouchesNothing) {
    const CliFolder folder;
    const std::string file = folder.datafile();
    const std::string before = readBytes(file);
    const struct {
        Words words;
        std::string why;
    } cases[] = {
        {{}, "no command"},
        {{"lst", file}, "unknown command lst"},
        {{"list"}, "too few arguments"},
        {{"list", file, file}, "too many arguments"},
        {{"list", file, "--colour"}, "unknown option --colour"},
        {{"list", file, "--json=1"}, "it takes no value"},
        {{"list", file, "--sort"}, "it needs COLUMN"},
        {{"list", file, "--sort", "Colour"}, "unknown column \"Colour\""},
        {{"list", file, "--type", "Toaster"}, "the types are Jack, Computer"},
        {{"list", file, "--config"}, "it needs DIR"},
        {{"add", file}, "--type is missing"},
        {{"add", file, "--type", "VersionRecord"}, "unknown type"},
        {{"add", file, "--type", "Printer", "Name"}, "is not a FIELD=VALUE pair"},
        {{"add", file, "--type", "Printer", "Nmae=x"}, "unknown field \"Nmae\""},
        {{"add", file, "--type", "Printer", "RecID=7"}, "RecID cannot be set"},
        {{"add", file, "--type", "Printer", "Type=Jack"}, "--type says it already"},
        {{"add", file, "--type", "Printer", "Name=x", "Priority=0"}, "give a number from 1 to 5"},
        {{"set", file, "0", "Name=x"}, "invalid RECID \"0\""},
        {{"set", file, "1x", "Name=x"}, "invalid RECID \"1x\""},
        {{"set", file, "99999999999", "Name=x"}, "invalid RECID"},
        {{"delete", file, "-1"}, "unknown option -1"},
        {{"delete", file, "--", "-1"}, "invalid RECID \"-1\""},
        {{"criteria", file, "--set", "0", "Command", "Ping"}, "needs --type"},
        {{"criteria", file, "--type", "Jack", "--set", "0", "Command"}, "it needs ROW COLUMN VALUE"},
        {{"station", file, "--loops", "0", "--live-stat"}, "--loops"},
        {{"station", file, "--loops", "2"}, "no loops to count"},
        {{"station", file, "--now"}, "at least one record ID"},
        {{"station", file, "--per-run", "many"}, "not a number from 1"},
        {{"ping"}, "too few arguments"},
    };
    for (const auto& wrong : cases) {
        const CliResult result = cli(wrong.words);
        EXPECT_EQ(result.status, 2) << wrong.why;
        EXPECT_THAT(result.err, StartsWith("mirovanectl: "));
        EXPECT_THAT(result.err, HasSubstr(wrong.why));
        EXPECT_THAT(result.out, IsEmpty()) << wrong.why;
    }
    EXPECT_EQ(readBytes(file), before);
}

TEST(UsageTest, OptionsStandAnywhere) {
    const CliFolder folder;
    const std::string file = folder.datafile({{"Printer", "Name=laser"}});
    const Words orders[] = {{"--config", folder.config(), "list", "--json", file},
                            {"list", file, "--json", "--config=" + folder.config()},
                            {"list", "--json", "--", file}};
    for (const Words& words : orders)
        EXPECT_THAT(cli(words).out, HasSubstr("\"Name\":\"laser\""));
}

TEST(UsageTest, ResultsThatCannotBeWrittenAreAFailure) {
    const CliFolder folder;
    const std::string file = folder.datafile();
    const CliResult full = cli({"records", file, "--json"}, [] {
        const int device = ::open("/dev/full", O_WRONLY);
        ::dup2(device, STDOUT_FILENO);
    });
    EXPECT_EQ(full.status, 3);
    EXPECT_THAT(full.err, HasSubstr("cannot write the results: No space left on device"));

    CliProcess toNobody({"records", file, "--json"});
    toNobody.closeOutput();
    const CliResult result = toNobody.finish();
    EXPECT_EQ(result.status, 0) << "a reader that saw enough is not a failure";
    EXPECT_THAT(result.err, IsEmpty());
}

} // namespace
} // namespace mirovane::test
