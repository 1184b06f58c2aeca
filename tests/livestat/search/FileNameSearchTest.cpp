#include "livestat/search/FileNameSearch.h"

#include "tests/support/TestFolder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace mirovane {

namespace {

TEST(WildcardTest, MeansWhatUsersOfWindowsKnow) {
    struct Case {
        const char* wildcards;
        std::vector<const char*> fit;
        std::vector<const char*> miss;
    };
    const Case cases[] = {
        {"*", {"a", "a.txt", ".hidden", "a b"}, {}},
        {"*.*", {"README", "a.txt", "a.b.c", "x."}, {}},
        {"*.txt", {"a.txt", "A.TXT", "a.b.txt", ".txt"}, {"a.txt2", "txt", "a.txt.bak"}},
        {"*.t*", {"a.txt", "a.tar.gz", "b.c.t"}, {"a.gz", "t"}},
        {"*.", {"README", "a b"}, {"a.txt", "a."}},
        {"report.*", {"report", "report.txt", "REPORT.a.b"}, {"report2", "reports.txt"}},
        {"jsmith*", {"JSmith", "jsmith.dat"}, {"xjsmith"}},
        {"file?.txt", {"file1.txt", "file.txt"}, {"file12.txt", "file..txt"}},
        {"???", {"abc", "ab", "a"}, {"abcd"}},
        {"a?c", {"abc"}, {"ac", "a.c"}},
        {"*a*b*c*", {"abc", "xaybzc1", "aabbcc"}, {"acb", "ab"}},
        {"[ab].txt", {"[ab].txt", "[AB].txt"}, {"a.txt"}},
        {"name", {"name", "NAME"}, {"name.txt", "nam", ""}},
        {"", {}, {"a"}},
        {"*\xC3\xA4*", {"K\xC3\xA4se"}, {"Kaese"}},
    };
    for (const Case& c : cases) {
        for (const char* name : c.fit)
            EXPECT_TRUE(wildcardMatches(name, c.wildcards)) << name << " and " << c.wildcards;
        for (const char* name : c.miss)
            EXPECT_FALSE(wildcardMatches(name, c.wildcards)) << name << " and " << c.wildcards;
    }
}

TEST(WildcardTest, ManyStarsOnALongNameTakeNoTime) {
    std::string stars;
    for (int i = 0; i < 100; ++i)
        stars += "*a";
    EXPECT_FALSE(wildcardMatches(std::string(255, 'a') + "b", stars));
}

class FileNameSearchTest : public testing::Test {
protected:
    FileNameSearchTest() {
        for (const char* name : {"b.txt", "A.TXT", "c.dat", "noext", ".hidden.txt"})
            test::writeBytes(folder.file(name), "x");
        mkdir(folder.file("a-folder.txt").c_str(), 0700);
        test::writeBytes(folder.file("a-folder.txt/0.txt"), "x");
        symlink(folder.file("b.txt").c_str(), folder.file("link.txt").c_str());
        symlink(folder.file("a-folder.txt").c_str(), folder.file("folderlink.txt").c_str());
    }
    FileNameSearchResult find(const std::string& path, const std::string& pattern) {
        const CompiledPattern compiled = CompilePattern(pattern);
        return searchFileNames(path, &compiled, stop.get_token());
    }
    std::string first(const std::string& wildcards, const std::string& pattern) {
        const auto found = find(folder.file(wildcards), pattern);
        return found.search.end == SearchResult::End::Hit ? found.search.text
               : found.anyFile                            ? "no hit"
                                                          : "no file";
    }

    test::TestFolder folder;
    std::stop_source stop;
};

TEST_F(FileNameSearchTest, TheFirstNameInOrderThatMatches) {
    EXPECT_EQ(first("*", ""), ".hidden.txt");
    EXPECT_EQ(first("*.txt", "^[a-z]"), "A.TXT"); // in its own spelling
    EXPECT_EQ(first("*.txt", "^[b-z]"), "b.txt");
    EXPECT_EQ(first("*.txt", "^link"), "link.txt");
    EXPECT_EQ(first("*", "folder"), "no hit"); // neither the folder, nor the link to it, nor what is in it
    EXPECT_EQ(first("*.doc", ""), "no file");
    EXPECT_EQ(first("NOEXT", ""), "noext");
    EXPECT_EQ(first("missing/*", ""), "no file");
    EXPECT_EQ(first("*/0.txt", ""), "no file"); // only the last part has wildcards
    EXPECT_EQ(first("b.txt/*", ""), "no file");
}

TEST_F(FileNameSearchTest, BackslashesPartFoldersToo) {
    std::string path = folder.file("a-folder.txt/*.TXT");
    std::replace(path.begin(), path.end(), '/', '\\');
    EXPECT_EQ(find(path, "").search.text, "0.txt");
    EXPECT_FALSE(find(R"(C:\Temp\*)", "").anyFile);
    EXPECT_EQ(find(R"(\\server\share\*)", "").search.end, SearchResult::End::Missing);
}

TEST_F(FileNameSearchTest, WithoutAPatternThereAreFilesAndNoHit) {
    const auto found = searchFileNames(folder.file("*"), nullptr, {});
    EXPECT_TRUE(found.anyFile);
    EXPECT_EQ(found.search.end, SearchResult::End::NoHit);
}

TEST_F(FileNameSearchTest, StopsAtTheToken) {
    stop.request_stop();
    EXPECT_EQ(find(folder.file("*"), "").search.end, SearchResult::End::Stopped);
}

} // namespace

} // namespace mirovane
