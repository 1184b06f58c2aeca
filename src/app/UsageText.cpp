#include "app/UsageText.h"

#include <algorithm>
#include <string>

namespace mirovane {

namespace {

constexpr std::size_t helpColumn = 26;
constexpr std::size_t lastColumn = 100;

void appendFolded(std::string& text, std::string_view help) {
    std::size_t column = helpColumn;
    while (!help.empty()) {
        const std::string_view word = help.substr(0, help.find(' '));
        help.remove_prefix(std::min(word.size() + 1, help.size()));
        if (column > helpColumn && column + 1 + word.size() > lastColumn) {
            text.append("\n").append(helpColumn, ' ');
            column = helpColumn;
        } else if (column > helpColumn) {
            text += ' ';
            ++column;
        }
        text += word;
        column += word.size();
    }
}

} // namespace

QString optionLines(std::span<const DesktopOption> options) {
    std::string text;
    for (const DesktopOption& option : options) {
        std::string left = "  --" + std::string(option.name);
        if (!option.value.empty())
            left.append(" ").append(option.value);
        left.append(left.size() < helpColumn - 1 ? helpColumn - left.size() : 2, ' ');
        text += left;
        appendFolded(text, option.help);
        text += '\n';
    }
    return QString::fromStdString(text);
}

} // namespace mirovane
