#include "pattern/LineSearch.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace mirovane;

namespace {

using State = CLineSearch::State;

/// Scans a text in blocks of `size` bytes.
State scan(CLineSearch& search, std::string_view text, std::size_t size) {
    for (; !text.empty() && search.state() == State::More; text.remove_prefix(std::min(size, text.size())))
        search.feed(text.substr(0, size));
    return search.finish();
}

TEST(LineSearchTest, FindsTheFirstLineWhateverTheBlocks) {
    const std::string text = "Name,Port\r\n\nPRINTER-1,Gi0/1\r\nprinter-2,gi0/2\nLast Line";
    for (std::size_t size = 1; size <= text.size(); ++size) {
        const CompiledPattern printer = CompilePattern("^printer-\\d,.*[12]$");
        CLineSearch search(printer);
        ASSERT_EQ(scan(search, text, size), State::Hit) << size;
        EXPECT_EQ(search.line(), "PRINTER-1,Gi0/1") << size;
        EXPECT_EQ(search.lineNumber(), 3u);

        const CompiledPattern last = CompilePattern("line$");
        CLineSearch toTheEnd(last);
        ASSERT_EQ(scan(toTheEnd, text, size), State::Hit) << size;
        EXPECT_EQ(toTheEnd.line(), "Last Line");

        const CompiledPattern across = CompilePattern("port.*\\s.*printer");
        CLineSearch nothing(across);
        ASSERT_EQ(scan(nothing, text, size), State::Ended) << "no match runs over a line's end";
        EXPECT_EQ(nothing.lineNumber(), 5u);
    }
}

TEST(LineSearchTest, EmptyLinesAreLines) {
    const auto lines = [](std::string_view text) {
        const CompiledPattern nothing = CompilePattern("[^\\d\\D]");
        CLineSearch search(nothing);
        EXPECT_EQ(scan(search, text, 3), State::Ended);
        return search.lineNumber();
    };
    EXPECT_EQ(lines(""), 0u);
    EXPECT_EQ(lines("\n"), 1u);
    EXPECT_EQ(lines("\n\n\r\na"), 4u);

    const CompiledPattern empty = CompilePattern("^$");
    CLineSearch search(empty);
    EXPECT_EQ(scan(search, "a\n\r\nb", 100), State::Hit);
    EXPECT_EQ(search.lineNumber(), 2u);
    CLineSearch none(empty);
    EXPECT_EQ(scan(none, "", 100), State::Ended) << "an empty text has no line that could match";
}

TEST(LineSearchTest, AHandlerMayAskForMore) {
    const CompiledPattern pattern = CompilePattern("^b");
    std::string seen;
    CLineSearch search(pattern, [&seen](std::string_view line) {
        seen += std::string(line) + ';';
        return line != "B3";
    });
    EXPECT_EQ(scan(search, "B1\na\nb2\r\nB3\nb4\n", 4), State::Hit);
    EXPECT_EQ(seen, "B1;b2;B3;");
    EXPECT_EQ(search.lineNumber(), 4u);
}

TEST(LineSearchTest, UndecidedLinesDoNotHideLaterOnes) {
    const CompiledPattern pattern = CompilePattern("(a+)+$");
    CLineSearch search(pattern);
    EXPECT_EQ(scan(search, std::string(40, 'a') + "!\nxa\n", 1000), State::Hit);
    EXPECT_EQ(search.line(), "xa");
    EXPECT_EQ(search.undecidedLines(), 1u);
}

TEST(LineSearchTest, StopsWithinABlock) {
    const CompiledPattern pattern = CompilePattern("a");
    std::stop_source source;
    CLineSearch search(pattern);
    EXPECT_EQ(search.feed("x\ny", source.get_token()), State::More);
    source.request_stop();
    EXPECT_EQ(search.feed("\na\n", source.get_token()), State::Stopped);
    EXPECT_EQ(search.finish(), State::Stopped) << "a stopped scan never turns into an answer";
}

TEST(LineSearchTest, ALineWithoutEndTakesBoundedMemory) {
    const CompiledPattern pattern = CompilePattern("needle");
    CLineSearch search(pattern);
    const std::string block(4 * 1024 * 1024, 'X');
    for (int i = 0; i < 10; ++i)
        ASSERT_EQ(search.feed(block), State::More);
    EXPECT_EQ(search.lineNumber(), 2u) << "searched in parts as they fill up";
    EXPECT_EQ(search.feed("NEEDLE\n"), State::Hit);
    EXPECT_LE(search.line().size(), CLineSearch::longestLine);
}

} // namespace
