#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(FindCommandTest, FindsByAnythingAndSaysWhere) {
    const CliFolder folder;
    const std::string file = folder.datafile({
        {"Computer", "Name=pc-7", "Comment=printer of Ada", "Position=10,10"},
        {"Printer", "Name=ada-prn", "MACAddress=02:1b:5e:00:01:02", "Position=900,10"},
        {"Location Marker", "Comment=Hall 1", "Position=0,0"},
        {"Location Marker", "Comment=Hall 2", "Position=950,0"},
    });
    const auto found = [&](const Words& text) {
        Words words{"find", file, "--json"};
        words.insert(words.end(), text.begin(), text.end());
        std::vector<std::string> lines;
        for (const QJsonValue& row : jsonArray(cli(words).out))
            lines.push_back(textOf(row, "Name") + " in " + textOf(row, "Place"));
        return lines;
    };
    EXPECT_THAT(found({"ada"}), ElementsAre("ada-prn in Hall 2", "pc-7 in Hall 1"));
    EXPECT_THAT(found({"ada", "COMPUTER"}), ElementsAre("pc-7 in Hall 1"));
    EXPECT_THAT(found({"021b.5e00"}), ElementsAre("ada-prn in Hall 2"));
    EXPECT_THAT(cli({"find", file, "ada-prn"}).out, HasSubstr("Hall 2"));
}

TEST(FindCommandTest, SaysWhenThereIsNothingToFindOrToRead) {
    const CliFolder folder;
    const std::string file = folder.datafile({{"Computer", "Name=pc"}});
    EXPECT_EQ(cli({"find", file, "nobody"}).status, 1);
    EXPECT_EQ(cli({"find", file, "nobody", "--json"}).status, 1);
    EXPECT_EQ(cli({"find", file, " "}).status, 2);
    EXPECT_EQ(cli({"find", folder.path("none.mv"), "pc"}).status, 3);
}

} // namespace
} // namespace mirovane::test
