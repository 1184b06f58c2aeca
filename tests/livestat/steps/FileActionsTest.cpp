#include "livestat/steps/Outcome.h"
#include "tests/livestat/steps/ActionFixture.h"
#include "tests/support/TestFolder.h"

#include <atomic>
#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mirovane {

namespace {

class FileActionsTest : public test::ActionFixture {
protected:
    FileActionsTest() {
        input.device.Modified = input.device.StampsModified = 1000;
        write("pc1,\"Room 7, East\",carla\nPC2,Room 8,eve\n", 500);
    }
    void write(const std::string& bytes, time_t changed) {
        test::writeBytes(path, bytes);
        const timespec times[2] = {{changed, 0}, {changed, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
    }
    void field(const std::string& delimiter, std::int32_t position) {
        input.criteria.Delimiter = delimiter;
        input.criteria.FieldPos = position;
    }
    std::string inText(const std::string& searchFor) {
        outcome = run(Action::SearchInTextFile, path, searchFor);
        return shown(outcome);
    }
    std::string inNames(const std::string& wildcards, const std::string& searchFor) {
        outcome = run(Action::SearchForFile, folder.file(wildcards), searchFor);
        return shown(outcome);
    }
    void apply() { applyOutcome(input.device, input, outcome, now); }

    static constexpr TimeStamp now = 5000;
    test::TestFolder folder;
    std::string path = folder.file("hosts.csv");
    StepOutcome outcome;
};

TEST_F(FileActionsTest, ALineOrOneOfItsFieldsIsTheResult) {
    input.device.Name = "pc2";
    EXPECT_EQ(inText("^$mvN,"), "done:PC2,Room 8,eve");
    field(",", 2);
    EXPECT_EQ(inText("pc1"), "done:\"Room 7, East\"");
    field(",", 9);
    EXPECT_EQ(inText("pc1"), "done:");
    field("", 2);
    EXPECT_EQ(inText("pc1"), "done:kept"); // a number without a delimiter takes nothing over
    field(",", -1);
    EXPECT_EQ(inText("carla"), "done:pc1,\"Room 7, East\",carla");
    EXPECT_EQ(inText("nobody"), "failed:");
    EXPECT_NE(answer.find("no match in 2 lines"), std::string::npos) << answer;
    write(std::string(60, 'a') + "!\n", 510);
    EXPECT_EQ(inText("^(a+)+$"), "failed:");
    EXPECT_EQ(answer, "no match in 1 lines; 1 took the pattern too many steps");
}

TEST_F(FileActionsTest, AnEmptySearchTakesTheFirstAndOneThatExpandsToNothingFails) {
    EXPECT_EQ(inText(""), "done:pc1,\"Room 7, East\",carla");
    EXPECT_EQ(inNames("*", ""), "done:hosts.csv");
    for (const char* nothing : {"$mvN", "^$mvN", "$MVU"}) {
        EXPECT_EQ(inText(nothing), "failed:") << nothing;
        EXPECT_EQ(inNames("*", nothing), "failed:") << nothing;
    }
    EXPECT_EQ(inText("pc1)"), "failed:");
    EXPECT_EQ(outcome.brokenPattern, "mismatched parenthesis");
    EXPECT_EQ(inNames("*", "pc1)"), "failed:");
}

TEST_F(FileActionsTest, WhereNothingCanBeSearchedTheFieldKeepsItsText) {
    for (const char* argument : {"", "$mvN", "/missing/file", "/dev/null", "C:\\Temp\\Text.txt"}) {
        outcome = run(Action::SearchInTextFile, argument);
        EXPECT_EQ(shown(outcome), "failed:kept") << argument;
        EXPECT_EQ(outcome.fileStamp.value_or(0), 0) << argument;
    }
    for (const char* argument : {"", "$mvN", "/missing/file", "/missing/*", "C:\\Temp\\*"})
        EXPECT_EQ(shown(run(Action::SearchForFile, argument)), "failed:kept") << argument;
    EXPECT_EQ(inNames("*.doc", ""), "failed:kept");
    EXPECT_EQ(inNames("*.csv", "other"), "failed:"); // there are files, and none matches
    input.row = 0;
    EXPECT_TRUE(run(Action::SearchInTextFile, "").failed);
}

TEST_F(FileActionsTest, AFileThatCameBackUnchangedIsSearchedAgain) {
    input.device.RuleStamps[6] = 500;
    EXPECT_EQ(inText("pc1"), "nothing");
    ASSERT_EQ(rename(path.c_str(), folder.file("away").c_str()), 0);
    EXPECT_EQ(inText("pc1"), "failed:kept");
    apply();
    ASSERT_EQ(rename(folder.file("away").c_str(), path.c_str()), 0);
    EXPECT_EQ(inText("pc1"), "done:pc1,\"Room 7, East\",carla");
}

TEST_F(FileActionsTest, AFileThatIsThereAndCannotBeReadIsNoAnswer) {
    input.row = 0;
    const std::string unreadable = "/proc/self/mem"; // a regular file; its first bytes are an I/O error
    outcome = run(Action::SearchInTextFile, unreadable, "pc1");
    EXPECT_EQ(shown(outcome), "nothing");
    ASSERT_TRUE(outcome.notAsked) << answer;
    EXPECT_EQ(outcome.notAsked->through, AskedThrough::File);
    EXPECT_EQ(outcome.notAsked->about, unreadable);
    apply();
    EXPECT_EQ(input.device.State, DeviceState::On);
    EXPECT_EQ(input.device.RuleStamps[0], 0);
}

TEST_F(FileActionsTest, AnUnchangedFileIsSearchedOncePerRowAndDevice) {
    EXPECT_EQ(inText("pc1"), "done:pc1,\"Room 7, East\",carla");
    EXPECT_EQ(outcome.fileStamp, 500);
    input.criteria.Delimiter.clear();
    apply(); // the field changed: Modified moves past the stamps, which are true for the old fields only
    EXPECT_EQ(input.device.RuleStamps[6], 500);
    EXPECT_EQ(input.device.Modified, now);

    EXPECT_NE(inText("pc1"), "nothing"); // so it is searched once more
    apply();
    EXPECT_EQ(input.device.StampsModified, now);
    EXPECT_EQ(inText("pc1"), "nothing");
    EXPECT_EQ(inText("nobody"), "nothing");
    input.row = 5; // another row remembers for itself
    EXPECT_EQ(inText("nobody"), "failed:");
    input.row = 6;
    write("pc1 moved\n", 400); // changed, be it to an older one
    EXPECT_EQ(inText("pc1"), "done:pc1 moved");
}

TEST_F(FileActionsTest, AnEditedDeviceIsSearchedAgainInAllItsRows) {
    input.device.RuleStamps.fill(500);
    EXPECT_EQ(inText("pc1"), "nothing");
    input.device.Modified = 2000;
    EXPECT_NE(inText("pc1"), "nothing");
    input.device.Comment = outcome.result;
    apply();
    EXPECT_EQ(input.device.StampsModified, 2000);
    EXPECT_EQ(input.device.RuleStamps[6], 500);
    EXPECT_EQ(input.device.RuleStamps[0], 0);

    input.device.RuleStamps[0] = 500;
    input.device.Modified = 1990; // on a station whose clock is slow
    EXPECT_NE(inText("pc1"), "nothing");
    apply();
    EXPECT_EQ(input.device.StampsModified, 1990);
    EXPECT_EQ(input.device.RuleStamps[0], 0);
    EXPECT_EQ(inText("pc1"), "nothing");

    input.device.Modified = 3000; // even where there is no file to search
    outcome = run(Action::SearchInTextFile, "/missing/file");
    apply();
    EXPECT_EQ(input.device.StampsModified, 3000);
    EXPECT_EQ(input.device.RuleStamps[6], 0);
}

TEST_F(FileActionsTest, AStateFromAFileIsNotSearchedForAgain) {
    input.row = 0;
    input.device.State = DeviceState::Def;
    EXPECT_FALSE(run(Action::SearchInTextFile, path, "pc1").failed);
    inText("pc1");
    apply();
    EXPECT_EQ(input.device.State, DeviceState::On);
    EXPECT_EQ(input.device.Modified, now);
    EXPECT_EQ(inText("pc1"), "nothing");
}

TEST_F(FileActionsTest, ALineTooLongForAFieldIsCut) {
    std::string accents = "x";
    for (int i = 0; i < 40'000; ++i)
        accents += "\xC3\xA9";
    write(accents + "\n", 700);
    inText("^x");
    EXPECT_TRUE(outcome.result == accents.substr(0, 59'999)) << "cut within a character";

    write(std::string(200'000, 'x') + "\n", 600);
    inText("xxx");
    EXPECT_EQ(outcome.result.size(), 60'000U);

    // A position without a delimiter leaves the field as it is, however long the user made it.
    input.device.Comment = std::string(70'000, 'c');
    input.criteria.FieldPos = 1;
    inText("xxx");
    EXPECT_EQ(outcome.result, input.device.Comment);
}

TEST_F(FileActionsTest, AFileThatIsBeingWrittenIsSearchedAgain) {
    ASSERT_EQ(truncate(path.c_str(), off_t{256} << 20), 0);
    std::atomic<bool> searched = false;
    std::thread writer([&] {
        while (!searched)
            std::ofstream(path, std::ios::app) << "more\n";
    });
    EXPECT_EQ(inText("never"), "failed:");
    searched = true;
    writer.join();
    EXPECT_EQ(outcome.fileStamp, std::nullopt);
    EXPECT_EQ(inText("never"), "failed:");
    EXPECT_NE(outcome.fileStamp, std::nullopt) << "now nobody writes";
}

TEST_F(FileActionsTest, AStoppedSearchLeavesTheStampsAlone) {
    std::stop_source stop;
    input.stop = stop.get_token();
    input.device.Modified = 2000;
    ASSERT_EQ(truncate(path.c_str(), off_t{10} << 30), 0);
    std::thread user([&] { stop.request_stop(); });
    EXPECT_EQ(inText("never"), "cancelled");
    user.join();
    const CHardware before = input.device;
    apply();
    EXPECT_EQ(input.device, before);
}

} // namespace

} // namespace mirovane
