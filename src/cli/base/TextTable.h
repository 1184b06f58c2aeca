#pragma once

#include "cli/base/Output.h"

#include <string>
#include <string_view>
#include <vector>

namespace mirovane {

struct TableColumn {
    std::string title;
    int rank = 0;            ///< on a narrow terminal the lowest ranks stay
    bool rightAlign = false; ///< numbers
};

/// Rows under titles. Into a file or a pipe every column goes at its full width, so that nothing is lost to a
/// script. On a terminal no line is longer than the terminal is wide: columns without any content are left
/// out, then those of the highest rank until the rest fits; long cells are clipped.
class CTextTable {
public:
    explicit CTextTable(std::vector<TableColumn> columns) : columns_(std::move(columns)) {}

    /// One cell per column, printable UTF-8.
    void addRow(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

    void print(COutput& out) const;

private:
    std::vector<std::size_t> contentWidths() const;
    std::string line(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) const;

    std::vector<TableColumn> columns_;
    std::vector<std::vector<std::string>> rows_;
};

/// Cells of a terminal that a text takes.
std::size_t displayWidth(std::string_view text);

/// At most `width` cells of it, with "…" for what was cut.
std::string clipped(std::string_view text, std::size_t width);

} // namespace mirovane
