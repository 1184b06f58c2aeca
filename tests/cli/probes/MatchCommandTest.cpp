#include "tests/cli/CliRunner.h"

#include <cerrno>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// Runs it with a file as its standard input.
CliResult matchFile(const std::string& pattern, const std::string& path) {
    return cli(
        {"match", pattern}, [&path] { dup2(open(path.c_str(), O_RDONLY), STDIN_FILENO); });
}

TEST(MatchCommandTest, ATextWhateverItsCase) {
    const CliResult hit = cli({"match", "^HP \\w+Jet \\d+\\D$", "hp DESKJET 840c"});
    EXPECT_EQ(hit.status, 0);
    EXPECT_EQ(hit.out, "match\n");
    const CliResult miss = cli({"match", "^deskjet", "HP DeskJet 840C"});
    EXPECT_EQ(miss.status, 1);
    EXPECT_EQ(miss.out, "no match\n");
    EXPECT_THAT(miss.err, IsEmpty());
    EXPECT_EQ(cli({"match", "", ""}).status, 0);
    EXPECT_EQ(cli({"match", "--", "-1$", "x-1"}).status, 0);
}

TEST(MatchCommandTest, ABadPatternSaysWhatAndWhere) {
    const CliResult result = cli({"match", "ab(cd", "x"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.err, "mirovanectl: bad pattern ab(cd: mismatched parenthesis, at byte 3\n");
}

TEST(MatchCommandTest, AnUndecidedTextIsNoMatch) {
    const CliResult result = cli({"match", "(a+)+$", std::string(40, 'a') + "!"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.out, "no match\n");
    EXPECT_THAT(result.err, HasSubstr("cannot decide: the pattern takes too many steps"));
}

TEST(MatchCommandTest, LinesOfStandardInput) {
    const CliFolder folder;
    writeBytes(folder.path("log"), "Port 1 UP\r\nport 2 down\nPort 3 caf\xe9 up\n\nport 4\tUp");
    const CliResult some = matchFile("port \\d.* ?up$", folder.path("log"));
    EXPECT_EQ(some.status, 0);
    EXPECT_EQ(some.out, "Port 1 UP\nPort 3 caf\xc3\xa9 up\nport 4\tUp\n");
    EXPECT_EQ(matchFile("^port 5", folder.path("log")).status, 1);
    EXPECT_EQ(matchFile("x", "/").status, 3) << "a folder cannot be read";
}

} // namespace
} // namespace mirovane::test
