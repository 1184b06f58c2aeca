#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class RangesCommandTest : public testing::Test {
protected:
    CliResult ranges(const Words& options) const {
        Words words{"ranges", file_};
        words.insert(words.end(), options.begin(), options.end());
        return cli(words);
    }
    Words listed() const {
        Words lines;
        for (const QJsonValue& row : jsonArray(ranges({"--json"}).out))
            lines.push_back(std::to_string(numberOf(row, "N")) + " " + textOf(row, "From") + "-" +
                            textOf(row, "To"));
        return lines;
    }

    const CliFolder folder_;
    const std::string file_ = folder_.datafile();
};

TEST_F(RangesCommandTest, AddsListsAndDeletesInOrder) {
    EXPECT_THAT(listed(), IsEmpty());
    EXPECT_EQ(ranges({"--add", "10.0.0.9", "10.0.0.10", "--add", "10.0.1.1", "10.0.1.1"}).status, 0);
    EXPECT_EQ(ranges({"--add", "10.0.2.0", "10.0.3.255"}).status, 0);
    EXPECT_EQ(listed(), (Words{"1 10.0.0.9-10.0.0.10", "2 10.0.1.1-10.0.1.1", "3 10.0.2.0-10.0.3.255"}));
    const CliResult table = ranges({});
    EXPECT_THAT(table.out, HasSubstr("512"));
    EXPECT_EQ(ranges({"--delete", "2", "--delete", "1", "--add", "10.0.4.1", "10.0.4.2"}).status, 0);
    EXPECT_EQ(listed(), (Words{"1 10.0.2.0-10.0.3.255", "2 10.0.4.1-10.0.4.2"}));
}

TEST_F(RangesCommandTest, AnInvalidRangeLeavesTheFileAsItWas) {
    ASSERT_EQ(ranges({"--add", "10.0.0.1", "10.0.0.9"}).status, 0);
    const std::string before = readBytes(file_);
    const CliResult result =
        ranges({"--add", "10.0.5.1", "10.0.5.2", "--add", "10.0.0.9", "10.0.0.8", "--delete", "1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("\"10.0.0.9\" to \"10.0.0.8\": Invalid IP Address/Range"));
    EXPECT_EQ(ranges({"--delete", "2"}).status, 1);
    EXPECT_EQ(ranges({"--delete", "0"}).status, 2);
    EXPECT_EQ(readBytes(file_), before);
}

} // namespace
} // namespace mirovane::test
