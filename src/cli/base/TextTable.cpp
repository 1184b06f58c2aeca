#include "cli/base/TextTable.h"

#include <algorithm>
#include <cwchar>
#include <numeric>

namespace mirovane {

namespace {

constexpr std::size_t gap = 2;
constexpr std::size_t mostOnTerminal = 30; ///< cells of one column
constexpr std::string_view ellipsis = "…";

struct Glyph {
    std::size_t bytes = 1;
    std::size_t cells = 1;
};

/// The text is valid UTF-8.
Glyph glyphAt(std::string_view text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    if (lead < 0x80)
        return {1, 1};
    const std::size_t bytes = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
    char32_t code = lead & (0xFFU >> (bytes + 1));
    for (std::size_t next = 1; next < bytes && at + next < text.size(); ++next)
        code = (code << 6) | (static_cast<unsigned char>(text[at + next]) & 0x3FU);
    const int cells = wcwidth(static_cast<wchar_t>(code));
    return {bytes, cells < 0 ? 1 : static_cast<std::size_t>(cells)};
}

/// Which columns stay at a terminal's width, and how wide each is; 0 for those that go.
std::vector<std::size_t> fitted(const std::vector<TableColumn>& columns, std::vector<std::size_t> content,
                                std::size_t terminal) {
    std::vector<std::size_t> byRank(columns.size());
    std::iota(byRank.begin(), byRank.end(), std::size_t{0});
    std::stable_sort(byRank.begin(), byRank.end(),
                     [&](std::size_t a, std::size_t b) { return columns[a].rank < columns[b].rank; });
    std::vector<std::size_t> widths(columns.size(), 0);
    std::size_t used = 0;
    for (const std::size_t column : byRank) {
        if (content[column] == 0)
            continue;
        const std::size_t wish =
            std::min(std::max(content[column], displayWidth(columns[column].title)), mostOnTerminal);
        const std::size_t room = used == 0 ? terminal : terminal - used;
        const std::size_t needed = used == 0 ? std::min(wish, room) : wish + gap;
        if (needed > room)
            continue;
        widths[column] = used == 0 ? needed : wish;
        used += needed;
    }
    return widths;
}

} // namespace

std::size_t displayWidth(std::string_view text) {
    std::size_t cells = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Glyph glyph = glyphAt(text, at);
        at += glyph.bytes;
        cells += glyph.cells;
    }
    return cells;
}

std::string clipped(std::string_view text, std::size_t width) {
    if (displayWidth(text) <= width)
        return std::string(text);
    if (width == 0)
        return {};
    std::size_t cells = 0;
    std::size_t at = 0;
    while (at < text.size()) {
        const Glyph glyph = glyphAt(text, at);
        if (cells + glyph.cells > width - 1)
            break;
        cells += glyph.cells;
        at += glyph.bytes;
    }
    return std::string(text.substr(0, at)).append(ellipsis);
}

std::vector<std::size_t> CTextTable::contentWidths() const {
    std::vector<std::size_t> widths(columns_.size(), 0);
    for (const auto& row : rows_)
        for (std::size_t column = 0; column < widths.size(); ++column)
            widths[column] = std::max(widths[column], displayWidth(row[column]));
    return widths;
}

std::string CTextTable::line(const std::vector<std::string>& cells,
                             const std::vector<std::size_t>& widths) const {
    std::string text;
    std::size_t owed = 0; ///< blanks before the next cell that is not empty
    for (std::size_t column = 0; column < widths.size(); ++column) {
        if (widths[column] == 0)
            continue;
        const std::string cell = clipped(cells[column], widths[column]);
        const std::size_t padding = widths[column] - displayWidth(cell);
        if (columns_[column].rightAlign)
            owed += padding;
        if (!cell.empty())
            text.append(owed, ' ').append(cell);
        owed = (cell.empty() ? owed : 0) + (columns_[column].rightAlign ? 0 : padding) + gap;
    }
    return text + "\n";
}

void CTextTable::print(COutput& out) const {
    std::vector<std::size_t> widths = contentWidths();
    if (const int terminal = out.terminalWidth(); terminal > 0 && !rows_.empty())
        widths = fitted(columns_, std::move(widths), static_cast<std::size_t>(terminal));
    else
        for (std::size_t column = 0; column < widths.size(); ++column)
            widths[column] = std::max(widths[column], displayWidth(columns_[column].title));
    std::vector<std::string> titles;
    for (const TableColumn& column : columns_)
        titles.push_back(column.title);
    out.print(line(titles, widths));
    for (const auto& row : rows_)
        out.print(line(row, widths));
}

} // namespace mirovane
