#include "model/LogFile.h"

#include "tests/support/FakeTime.h"
#include "tests/support/TestFolder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace mirovane {
namespace {

namespace fs = std::filesystem;
using namespace test;

TEST(LogFileTest, LastingLinesOfAllProgramsAreThereUntilFourFilesAreFull) {
    const TestFolder folder;
    const std::string state = folder.file("deep/state");
    const FakeClock clock;
    CFileCalls calls;
    CMessageLog first(clock);
    CMessageLog second(clock);
    const CLogFile firstFile(first, calls, state);
    const CLogFile secondFile(second, calls, state);
    first.LogMessage("Saved changes to data file", true);
    EXPECT_FALSE(fs::exists(state)) << "there is nothing to keep yet";
    const std::string filler(990, '.');
    for (int line = 0; line < 5000; ++line)
        (line % 2 == 0 ? first : second).LogLasting("value " + std::to_string(line) + filler + "end");

    const std::string path = CLogFile::pathIn(state);
    std::string all;
    for (const char* number : {".3", ".2", ".1", ""}) {
        const std::string part = readBytes(path + number);
        EXPECT_TRUE(!part.empty() && part.size() <= CLogFile::fullSize) << number << ": " << part.size();
        all += part;
    }
    EXPECT_FALSE(fs::exists(path + ".4"));
    EXPECT_GT(all.size(), 3'000'000U);
    int next = -1;
    for (std::size_t at = 0; at < all.size(); at = all.find('\n', at) + 1) {
        const std::size_t value = all.find("value ", at) + 6;
        const int number = std::stoi(all.substr(value, 5));
        EXPECT_TRUE(next < 0 || number == next) << "a line is missing or out of order";
        EXPECT_EQ(all.substr(all.find('\n', at) - 3, 3), "end");
        next = number + 1;
    }
    EXPECT_EQ(next, 5000);
}

/// Whoever relies on the lines must hear that there are none.
TEST(LogFileTest, AFolderThatTakesNoFileIsToldOnce) {
    const TestFolder folder;
    writeBytes(folder.file("state"), "a file");
    const FakeClock clock;
    CFileCalls calls;
    CMessageLog log(clock);
    const CLogFile file(log, calls, folder.file("state"));
    log.LogLasting("one");
    log.LogLasting("two");
    ASSERT_EQ(log.lines().size(), 3U);
    EXPECT_NE(log.lines()[1].text.find("cannot write " + CLogFile::pathIn(folder.file("state"))),
              std::string::npos);
}

} // namespace
} // namespace mirovane
