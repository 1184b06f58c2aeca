#include "tests/cli/CliRunner.h"
#include "tests/support/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;

class SetCommandTest : public testing::Test {
protected:
    CliFolder folder;
    const std::string file = folder.datafile({{"Printer", "Name=prn-1", "ToJack=J1"},
                                              {"Printer", "Name=prn-2"},
                                              {"Computer", "Name=pc-1", "IPAddress=10.0.0.1"},
                                              {"Jack", "ToJack=A1"},
                                              {"Jack", "ToJack=A2"}});

    CliResult set(Words words) const {
        words.insert(words.begin(), {"set", file});
        return cli(words);
    }

    std::string records() const { return cli({"records", file, "--json"}).out; }
};

TEST_F(SetCommandTest, ChangesTheDevicesThatAreNamedOrFit) {
    EXPECT_EQ(set({"1", "3", "Priority=2", "Comment=both"}).out, "1\n3\n");
    EXPECT_EQ(set({"--where", "type=printer", "--where", "Name~^PRN-\\d$", "ToDo=toner"}).out, "1\n2\n");
    EXPECT_EQ(set({"--where", "Comment=BOTH", "--where", "IPAddress=", "State=On"}).out, "1\n");
    EXPECT_EQ(set({"--where", "RecID=3", "Name=prn-9"}).out, "3\n");
    const std::string before = records();
    EXPECT_EQ(set({"--dry-run", "--where", "ToDo~.", "Comment=", "Priority=2"}).out,
              "1 Comment: \"both\" -> \"\"\n"
              "2 Priority: \"4\" -> \"2\"\n");
    EXPECT_EQ(records(), before);
}

TEST_F(SetCommandTest, RefusesWhatNobodyWants) {
    const std::string before = records();
    const struct {
        Words words;
        int status;
        const char* why;
    } cases[] = {
        {{"Name=x"}, 2, "name the devices by RECID, or say with --where"},
        {{"1", "--where", "Type=Printer", "Name=x"}, 2, "not both"},
        {{"1", "2"}, 2, "say what to change"},
        {{"--where", "Printer", "Name=x"}, 2, "not a condition"},
        {{"--where", "Colour=red", "Name=x"}, 2, "RecID, Modified"},
        {{"--where", "Type=Toaster", "Name=x"}, 2, "Type cannot be \"Toaster\""},
        {{"--where", "Name~(", "Name=x"}, 2, "bad pattern \"(\""},
        {{"--where", "Name=nobody", "Name=x"}, 1, "no device fits"},
        {{"--where", "Priority~.", "Name=x"}, 2, "a Jack has no Name (RecID 4)"},
        {{"1", "Name=PC-1", "IPAddress=10.0.0.1"},
         1,
         "Computer \"pc-1\" (RecID 3) has the same \"Name\" \"IP Address\""},
        {{"5", "ToJack=a1", "--dry-run"}, 1, "Jack \"A1\" (RecID 4) has the same \"Jack#\""},
    };
    for (const auto& wrong : cases) {
        const CliResult result = set(wrong.words);
        EXPECT_EQ(result.status, wrong.status) << wrong.why;
        EXPECT_THAT(result.err, HasSubstr(wrong.why));
    }
    EXPECT_EQ(records(), before);
    EXPECT_EQ(set({"1", "Name=PC-1", "--no-duplicate-check"}).out, "1\n");
}

} // namespace

} // namespace mirovane::test
