#include "cli/base/FoldedText.h"
#include "cli/base/TextTable.h"
#include "tests/cli/CliRunner.h"

#include <array>
#include <clocale>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

namespace mirovane::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// What a command shows on a terminal of this width.
std::string onTerminal(const Words& words, unsigned short columns) {
    int terminal = -1;
    int program = -1;
    winsize size{24, columns, 0, 0};
    if (::openpty(&terminal, &program, nullptr, nullptr, &size) != 0)
        return "no terminal";
    const CliResult result = cli(words, [program] { ::dup2(program, STDOUT_FILENO); });
    EXPECT_EQ(result.status, 0) << result.err;
    ::close(program);
    std::array<char, 65536> buffer{};
    const ssize_t count = ::read(terminal, buffer.data(), buffer.size());
    ::close(terminal);
    return {buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

std::size_t widestLine(const std::string& text) {
    std::size_t widest = 0;
    for (std::size_t at = 0, end = 0; (end = text.find("\r\n", at)) != std::string::npos; at = end + 2)
        widest = std::max(widest, displayWidth(text.substr(at, end - at)));
    return widest;
}

TEST(TerminalTest, ATableFitsAndKeepsWhatMattersMost) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    const CliFolder folder;
    const std::string file = folder.datafile(
        {{"Computer", "Name=reception", "IPAddress=127.0.0.1", "State=On",
          "Comment=" + std::string(300, 'x')},
         {"Printer", "Name=\xC3\xA9tage \xE6\x9D\xB1\xE4\xBA\xAC", "IPAddress=127.0.0.2", "State=Off"}});
    const std::string narrow = onTerminal({"list", file, "--sort", "ID"}, 40);
    EXPECT_LE(widestLine(narrow), 40U) << narrow;
    EXPECT_THAT(narrow, AllOf(HasSubstr("reception"), HasSubstr("Inactive"), HasSubstr("127.0.0.2"),
                              HasSubstr("\xC3\xA9tage"), Not(HasSubstr("Comment")), Not(HasSubstr("\x1B"))));
    const std::string wide = onTerminal({"list", file, "--sort", "ID"}, 160);
    EXPECT_LE(widestLine(wide), 160U);
    EXPECT_THAT(wide, AllOf(HasSubstr("Modified"), HasSubstr("xxx\u2026"), Not(HasSubstr("Username"))));
    EXPECT_LE(widestLine(onTerminal({"criteria", file, "--type", "Computer"}, 40)), 40U);
    EXPECT_THAT(cli({"list", file}).out, HasSubstr(std::string(300, 'x'))) << "a pipe gets it all";
}

TEST(TerminalTest, HelpBreaksBetweenWords) {
    for (const char* command : {"export", "list", "registry", "station", "import"}) {
        for (const unsigned short columns : std::array<unsigned short, 2>{40, 80}) {
            const std::string help = onTerminal({command, "--help"}, columns);
            EXPECT_LE(widestLine(help), columns) << help;
        }
    }
    EXPECT_EQ(
        folded("  --sort COLUMN           by this title or another one of them all\n\nOne\ntwo.\nThree.\n",
               60),
        "  --sort COLUMN           by this title or another one of\n"
        "                          them all\n\nOne two.\nThree.\n");
    EXPECT_EQ(folded("usage: x\nabcdefghijkl abc\n", 8), "usage: x\nabcdefghijkl\nabc\n");
    EXPECT_EQ(folded("", 8), "");
}

TEST(TerminalTest, ClippingNeverCutsACharacter) {
    std::setlocale(LC_CTYPE, "C.UTF-8");
    EXPECT_EQ(clipped("caf\u00E9", 4), "caf\u00E9");
    EXPECT_EQ(clipped("caf\u00E9s", 4), "caf\u2026");
    EXPECT_EQ(clipped("\u6771\u4EAC\u90FD", 4), "\u6771\u2026") << "each takes two cells";
    EXPECT_EQ(clipped("abc", 1), "\u2026");
    EXPECT_EQ(clipped("abc", 0), "");
}

} // namespace
} // namespace mirovane::test
