#include "tests/cli/CliJson.h"
#include "tests/cli/CliRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace mirovane::test {
namespace {

using testing::HasSubstr;

class ApplicationsCommandTest : public testing::Test {
protected:
    CliResult applications(const Words& options) const {
        Words words{"applications", file_};
        words.insert(words.end(), options.begin(), options.end());
        return cli(words);
    }
    /// "+" before what is on the menu.
    Words listed() const {
        Words lines;
        for (const QJsonValue& row : jsonArray(applications({"--json"}).out))
            lines.push_back((row[QStringLiteral("OnMenu")].toBool() ? "+" : "-") + textOf(row, "Name"));
        return lines;
    }

    const CliFolder folder_;
    const std::string file_ = folder_.datafile();
};

TEST_F(ApplicationsCommandTest, AddsMovesAndRemovesByTheNumbersThatItPrints) {
    ASSERT_EQ(applications({"--add", "ping", "ping $mvI", "--add", "ssh", "ssh $mvN"}).status, 0);
    ASSERT_EQ(applications({"--add", "web", "http://$mvI"}).status, 0);
    EXPECT_THAT(applications({}).out, HasSubstr("ping $mvI"));
    EXPECT_EQ(applications({"--off-menu", "2", "--move", "3", "1"}).status, 0);
    EXPECT_EQ(listed(), (Words{"+web", "+ping", "-ssh"}));
    EXPECT_EQ(applications({"--move", "1", "3"}).status, 0);
    EXPECT_EQ(listed(), (Words{"+ping", "-ssh", "+web"}));
    EXPECT_EQ(applications({"--remove", "3", "--remove", "1", "--on-menu", "2"}).status, 0);
    EXPECT_EQ(listed(), Words{"+ssh"});
}

TEST_F(ApplicationsCommandTest, WhatItRefusesLeavesTheFileAsItWas) {
    ASSERT_EQ(applications({"--add", "ping", "ping $mvI"}).status, 0);
    const std::string before = readBytes(file_);
    EXPECT_EQ(applications({"--remove", "2"}).status, 1);
    EXPECT_EQ(applications({"--move", "1", "2", "--add", "a", "b"}).status, 1);
    EXPECT_EQ(applications({"--move", "1", "1", "--remove", "1"}).status, 2);
    EXPECT_EQ(applications({"--add", "empty", " "}).status, 2);
    EXPECT_EQ(readBytes(file_), before);
}

} // namespace
} // namespace mirovane::test
