#include "probes/PatternScanner.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace mirovane;

namespace {

using State = PatternScanner::State;

/// Scans a text in blocks of `size` bytes.
State scan(PatternScanner& scanner, std::string_view text, std::size_t size) {
    for (; !text.empty() && scanner.state() == State::More; text.remove_prefix(std::min(size, text.size()))) {
        scanner.feed(text.substr(0, size));
    }
    return scanner.finish();
}

TEST(PatternScanner, FindsTheFirstLineWhateverTheBlocks) {
    const std::string text = "Name,Port\r\n\nPRINTER-1,Gi0/1\r\nprinter-2,gi0/2\nLast Line";
    for (std::size_t size = 1; size <= text.size(); ++size) {
        const CompiledPattern printer = CompilePattern("^printer-\\d,.*[12]$");
        PatternScanner scanner(printer);
        ASSERT_EQ(scan(scanner, text, size), State::Hit) << size;
        EXPECT_EQ(scanner.line(), "PRINTER-1,Gi0/1") << size;
        EXPECT_EQ(scanner.lineNumber(), 3u);

        const CompiledPattern last = CompilePattern("line$");
        PatternScanner toTheEnd(last);
        ASSERT_EQ(scan(toTheEnd, text, size), State::Hit) << size;
        EXPECT_EQ(toTheEnd.line(), "Last Line");

        const CompiledPattern across = CompilePattern("port.*\\s.*printer");
        PatternScanner nothing(across);
        ASSERT_EQ(scan(nothing, text, size), State::Ended) << "no match runs over a line's end";
        EXPECT_EQ(nothing.lineNumber(), 5u);
    }
}

TEST(PatternScanner, EmptyLinesAreLines) {
    const auto lines = [](std::string_view text) {
        const CompiledPattern nothing = CompilePattern("[^\\d\\D]");
        PatternScanner scanner(nothing);
        EXPECT_EQ(scan(scanner, text, 3), State::Ended);
        return scanner.lineNumber();
    };
    EXPECT_EQ(lines(""), 0u);
    EXPECT_EQ(lines("\n"), 1u);
    EXPECT_EQ(lines("\n\n\r\na"), 4u);

    const CompiledPattern empty = CompilePattern("^$");
    PatternScanner scanner(empty);
    EXPECT_EQ(scan(scanner, "a\n\r\nb", 100), State::Hit);
    EXPECT_EQ(scanner.lineNumber(), 2u);
    PatternScanner none(empty);
    EXPECT_EQ(scan(none, "", 100), State::Ended) << "an empty text has no line that could match";
}

TEST(PatternScanner, AHandlerMayAskForMore) {
    const CompiledPattern pattern = CompilePattern("^b");
    std::string seen;
    PatternScanner scanner(pattern, [&seen](std::string_view line) {
        seen += std::string(line) + ';';
        return line != "B3";
    });
    EXPECT_EQ(scan(scanner, "B1\na\nb2\r\nB3\nb4\n", 4), State::Hit);
    EXPECT_EQ(seen, "B1;b2;B3;");
    EXPECT_EQ(scanner.lineNumber(), 4u);
}

TEST(PatternScanner, UndecidedLinesDoNotHideLaterOnes) {
    const CompiledPattern pattern = CompilePattern("(a+)+$");
    PatternScanner scanner(pattern);
    EXPECT_EQ(scan(scanner, std::string(40, 'a') + "!\nxa\n", 1000), State::Hit);
    EXPECT_EQ(scanner.line(), "xa");
    EXPECT_EQ(scanner.undecidedLines(), 1u);
}

TEST(PatternScanner, StopsWithinABlock) {
    const CompiledPattern pattern = CompilePattern("a");
    std::stop_source source;
    PatternScanner scanner(pattern);
    EXPECT_EQ(scanner.feed("x\ny", source.get_token()), State::More);
    source.request_stop();
    EXPECT_EQ(scanner.feed("\na\n", source.get_token()), State::Stopped);
    EXPECT_EQ(scanner.finish(), State::Stopped) << "a stopped scan never turns into an answer";
}

TEST(PatternScanner, ALineWithoutEndTakesBoundedMemory) {
    const CompiledPattern pattern = CompilePattern("needle");
    PatternScanner scanner(pattern);
    const std::string block(4 * 1024 * 1024, 'X');
    for (int i = 0; i < 10; ++i) {
        ASSERT_EQ(scanner.feed(block), State::More);
    }
    EXPECT_EQ(scanner.lineNumber(), 2u) << "searched in parts as they fill up";
    EXPECT_EQ(scanner.feed("NEEDLE\n"), State::Hit);
    EXPECT_LE(scanner.line().size(), PatternScanner::longestLine);
}

} // namespace
