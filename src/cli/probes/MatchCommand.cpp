#include "cli/probes/ProbeCommands.h"
#include "model/records/Text.h"
#include "pattern/LineSearch.h"
#include "pattern/Pattern.h"

#include <cerrno>
#include <cstring>
#include <optional>
#include <unistd.h>
#include <vector>

namespace mirovane {

namespace {

constexpr std::size_t blockSize = std::size_t{128} * 1024;

constexpr std::string_view tooManySteps =
    "the pattern takes too many steps; Live Stat counts that as no match (repeats within repeats do it)";

std::optional<CompiledPattern> compiled(const std::string& pattern, PatternUse use, COutput& out) {
    try {
        return CompilePattern(lowerCasedPattern(pattern), use);
    } catch (const bad_regexpr& error) {
        std::string why = error.what();
        if (error.offset() != bad_regexpr::npos)
            why += ", at byte " + std::to_string(error.offset() + 1);
        out.diagnose("bad pattern " + printable(pattern.substr(0, 300)), why);
        return std::nullopt;
    }
}

// A terminal obeys control characters; into a pipe or a file the line goes as it is.
void printMatch(std::string_view line, COutput& out) {
    out.printLine(out.terminalWidth() > 0 ? printable(line) : displayText(line));
}

/// Says whether the text matches.
ExitStatus matchText(const CompiledPattern& pattern, std::string_view text, COutput& out) {
    const PatternOutcome outcome = SearchPattern(pattern, lowerCased(text));
    const bool match = outcome == PatternOutcome::Match;
    out.printLine(match ? "match" : "no match");
    if (outcome == PatternOutcome::LimitReached)
        out.diagnose("cannot decide", tooManySteps);
    return match ? ExitStatus::Done : ExitStatus::No;
}

/// Prints the lines that match of what can be read from the descriptor `input`, as they are read.
ExitStatus matchLines(const CompiledPattern& pattern, int input, COutput& out) {
    bool any = false;
    CLineSearch search(pattern, [&any, &out](std::string_view line) {
        any = true;
        printMatch(line, out);
        return !out.failed();
    });
    std::vector<char> block(blockSize);
    for (;;) {
        const ssize_t size = read(input, block.data(), block.size());
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0) {
            out.diagnose("cannot read standard input", std::strerror(errno));
            return ExitStatus::FileFailed;
        }
        if (size == 0)
            break;
        search.feed({block.data(), static_cast<std::size_t>(size)});
        if (!out.flush())
            break;
    }
    search.finish();
    if (search.undecidedLines() > 0)
        out.diagnose("cannot decide " + std::to_string(search.undecidedLines()) + " of " +
                         std::to_string(search.lineNumber()) + " lines",
                     tooManySteps);
    return any ? ExitStatus::Done : ExitStatus::No;
}

constexpr std::string_view matchDetails =
    "Without TEXT each line of standard input is tested, and those that match are printed.\n"
    "Letters match whatever their case. The pattern is searched for anywhere in the text; ^ and $ tie it to\n"
    "the beginning and the end. Write -- before a pattern that begins with -.\n"
    "Exit status 1 when nothing matches, 2 when the pattern is not valid.\n";

ExitStatus runMatch(CommandContext& context) {
    const std::vector<std::string>& words = context.arguments.positionals;
    const bool oneText = words.size() > 1;
    const auto pattern =
        compiled(words[0], oneText ? PatternUse::OneText : PatternUse::ManyTexts, context.out);
    if (!pattern)
        return ExitStatus::Usage;
    return oneText ? matchText(*pattern, words[1], context.out)
                   : matchLines(*pattern, STDIN_FILENO, context.out);
}

} // namespace

constinit const Command matchCommand{
    .name = "match",
    .help = "test a criteria pattern against a text or lines",
    .usage = "PATTERN [TEXT]",
    .least = 1,
    .most = 2,
    .details = matchDetails,
    .run = runMatch,
};

} // namespace mirovane
