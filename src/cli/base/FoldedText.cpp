#include "cli/base/FoldedText.h"

#include <algorithm>

namespace mirovane {

namespace {

constexpr std::string_view usageWord = "usage:";

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

bool isPlain(std::string_view line) {
    return !line.empty() && line[0] != ' ' && line[0] != '\n' && !line.starts_with(usageWord);
}

/// Where the rest of a line that is too long begins.
std::size_t hangingIndent(std::string_view line, std::size_t width) {
    constexpr std::size_t wide = 60;
    constexpr std::size_t underHelp = 26;
    constexpr std::size_t little = 4;
    if (line.starts_with("  "))
        return width >= wide ? underHelp : little;
    return line.starts_with(usageWord) ? little : 0;
}

void appendFolded(std::string& result, std::string line, std::size_t width) {
    const std::string indent(hangingIndent(line, width), ' ');
    while (line.size() > width) {
        std::size_t at = line.rfind(' ', width);
        if (at == std::string::npos || at <= line.find_first_not_of(' '))
            at = line.find(' ', width);
        const std::size_t rest = line.find_first_not_of(' ', at);
        if (at == std::string::npos || rest == std::string::npos)
            break;
        result.append(line, 0, line.find_last_not_of(' ', at) + 1).append("\n");
        line = indent + line.substr(rest);
    }
    result.append(line).append("\n");
}

} // namespace

std::string folded(std::string_view text, std::size_t width) {
    std::string result;
    while (!text.empty()) {
        std::string line(takeLine(text));
        while (isPlain(line) && !line.ends_with('.') && isPlain(text))
            line.append(" ").append(takeLine(text));
        appendFolded(result, std::move(line), width);
    }
    return result;
}

} // namespace mirovane
