#include "livestat/search/TextFileSearch.h"

#include "tests/support/TestFolder.h"

#include <algorithm>
#include <atomic>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace mirovane {

namespace {

using End = SearchResult::End;

class TextFileSearchTest : public testing::Test {
protected:
    SearchResult search(const std::string& pattern) {
        return searchTextFile(path, CompilePattern(pattern), stop.get_token());
    }
    SearchResult searchIn(const std::string& bytes, const std::string& pattern) {
        test::writeBytes(path, bytes);
        return search(pattern);
    }

    test::TestFolder folder;
    std::string path = folder.file("hosts.txt");
    std::stop_source stop;
};

TEST_F(TextFileSearchTest, LinesOfEveryKind) {
    const std::string zero(1, '\0');
    const std::string longLine(300'000, 'x'); // longer than two blocks
    struct Case {
        std::string bytes;
        const char* pattern;
        std::string line;
        std::uint64_t number;
    };
    const Case cases[] = {
        {"One\nTWO\nthree\n", "two", "TWO", 2},
        {"One\r\nTWO\r\nthree", "^two$", "TWO", 2},
        {"one\rtwo\nthree\n", "two", "one\rtwo", 1}, // a carriage return alone ends no line
        {"one\ntwo", "o$", "two", 2},                // no line end behind the last line
        {"one\n\ntwo\n", "^$", "", 2},
        {"\n", "", "", 1},
        {"a" + zero + "B\nc\n", "b$", "a" + zero + "B", 1},
        {"\xEF\xBB\xBFName\n", "^name$", "Name", 1},
        {"\n\xEF\xBB\xBFName\n", "name$", "\xEF\xBB\xBFName", 2},
        {longLine + "END\nnext\n", "^x+end$", longLine + "END", 1},
        {longLine + "\n" + longLine + "\nlast", "^last", "last", 3},
    };
    for (const Case& c : cases) {
        const SearchResult found = searchIn(c.bytes, c.pattern);
        EXPECT_EQ(found.end, End::Hit) << c.pattern;
        EXPECT_EQ(found.text, c.line) << c.pattern;
        EXPECT_EQ(found.number, c.number) << c.pattern;
    }
}

TEST_F(TextFileSearchTest, NoLineNoHit) {
    EXPECT_EQ(searchIn("", "").end, End::NoHit);
    const SearchResult none = searchIn("a\nb\nc", "x");
    EXPECT_EQ(none.end, End::NoHit);
    EXPECT_EQ(none.number, 3U);
}

TEST_F(TextFileSearchTest, OnlyTextFilesAreOpenedAndWaitedFor) {
    const std::string pipe = folder.file("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& other :
         {pipe, folder.path(), std::string("/dev/zero"), std::string("/dev/tty"), folder.file("missing"),
          std::string(R"(C:\Temp\Text.txt)"), std::string()}) {
        const TextFileStatus status = textFileStatus(other);
        EXPECT_EQ(status.kind, TextFileStatus::Kind::Missing) << other;
        EXPECT_FALSE(status.trouble.empty()) << other;
        path = other;
        EXPECT_EQ(search("").end, End::Missing) << other;
    }
}

TEST_F(TextFileSearchTest, StampIsTheChangeTimeAndNeverZero) {
    test::writeBytes(path, "x");
    for (const auto& [seconds, stamp] : {std::pair<time_t, TimeStamp>{1'700'000'000, 1'700'000'000},
                                         {0, 1},
                                         {time_t{1} << 33, 2147483647}}) {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
        EXPECT_EQ(textFileStatus(path).stamp, stamp);
    }
}

TEST_F(TextFileSearchTest, BackslashesPartFoldersUnlessTheNameHasThem) {
    test::writeBytes(path, "x");
    std::string windows = path;
    std::replace(windows.begin(), windows.end(), '/', '\\');
    EXPECT_EQ(nativePath(windows), path);
    const std::string odd = folder.file("odd\\name");
    test::writeBytes(odd, "x");
    EXPECT_EQ(nativePath(odd), odd);
}

TEST_F(TextFileSearchTest, AFileThatIsBeingWrittenCanBeReadAndWritten) {
    test::writeBytes(path, "first\n");
    const int writer = open(path.c_str(), O_WRONLY | O_APPEND);
    struct flock lock {};
    lock.l_type = F_WRLCK;
    ASSERT_EQ(fcntl(writer, F_SETLK, &lock), 0);
    EXPECT_EQ(search("first").end, End::Hit);
    ASSERT_EQ(write(writer, "second\n", 7), 7);
    EXPECT_EQ(search("second").number, 2U);
    close(writer);
}

TEST_F(TextFileSearchTest, AFileThatGrowsAsItIsReadComesToAnEnd) {
    const std::string block(1 << 20, '\n');
    test::writeBytes(path, block);
    std::atomic<bool> over = false;
    std::jthread writer([&](const std::stop_token& end) {
        const int file = open(path.c_str(), O_WRONLY | O_APPEND);
        // Bounded, so that a search that never ends fills no disk.
        for (int i = 0; i < 400 && !end.stop_requested() && write(file, block.data(), block.size()) > 0; ++i)
            std::this_thread::yield();
        close(file);
        over = true;
    });
    const SearchResult found = search("x");
    EXPECT_EQ(found.end, End::NoHit);
    EXPECT_LE(found.number, std::uint64_t{70} << 20);
}

/// Searches on another thread until `mayStop`, then asks it to stop.
SearchResult searchUntilStopped(const std::string& path, const std::string& pattern) {
    std::stop_source stop;
    SearchResult found;
    std::atomic<bool> begun = false;
    std::thread worker([&] {
        const CompiledPattern compiled = CompilePattern(pattern);
        begun = true;
        found = searchTextFile(path, compiled, stop.get_token());
    });
    while (!begun)
        std::this_thread::yield();
    stop.request_stop();
    worker.join();
    return found;
}

TEST_F(TextFileSearchTest, EndlessSearchesStopAtTheToken) {
    test::writeBytes(path, "");
    ASSERT_EQ(truncate(path.c_str(), off_t{10} << 30), 0); // ten sparse gigabytes without a line end
    EXPECT_EQ(searchUntilStopped(path, "x").end, End::Stopped);

    std::string lines;
    for (int i = 0; i < 200'000; ++i)
        lines += std::string(60, 'a') + "!\n";
    test::writeBytes(path, lines); // five milliseconds a line: a quarter of an hour
    EXPECT_EQ(searchUntilStopped(path, "(a+)+$").end, End::Stopped);
}

} // namespace

} // namespace mirovane
