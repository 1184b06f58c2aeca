#include "docs/man/Roff.h"

#include <algorithm>

namespace mirovane::reference {

namespace {

constexpr std::size_t longestLine = 78;

} // namespace

CRoff::CRoff(std::string_view title, std::string_view section, std::string_view date,
             std::string_view source) {
    text_.append(".TH ").append(title).append(" ").append(section).append(" ").append(date);
    text_.append(" \"").append(source).append("\"\n");
}

std::string CRoff::escaped(std::string_view text) {
    std::string safe;
    for (const char c : text)
        if (c == '\\')
            safe += "\\e";
        else if (c == '-' || c == '\'' || c == '`' || c == '^' || c == '~')
            safe.append(c == '-'    ? "\\-"
                        : c == '\'' ? "\\(aq"
                        : c == '`'  ? "\\(ga"
                        : c == '^'  ? "\\(ha"
                                    : "\\(ti");
        else
            safe += c;
    return safe;
}

/// Folded where the formatter does not care: its readers have narrow editors.
void CRoff::line(std::string_view text) {
    std::string folded;
    while (!text.empty()) {
        const std::string_view next = text.substr(0, text.find(' '));
        text.remove_prefix(std::min(next.size() + 1, text.size()));
        const std::string word = escaped(next);
        if (!folded.empty() && folded.size() + 1 + word.size() > longestLine) {
            keptLine(folded);
            folded.clear();
        }
        folded.append(folded.empty() ? "" : " ").append(word);
    }
    if (!folded.empty())
        keptLine(folded);
}

/// A line that begins with a dot would be a macro.
void CRoff::keptLine(std::string_view safe) {
    text_.append(safe.starts_with('.') ? "\\&" : "").append(safe).append("\n");
}

void CRoff::beginParagraph() {
    const std::size_t last = text_.rfind('\n', text_.size() - 2);
    const std::string_view before = std::string_view(text_).substr(last + 1);
    if (!before.starts_with(".SH") && !before.starts_with(".SS")) // these begin one
        text_ += ".PP\n";
}

void CRoff::section(std::string_view title) {
    text_.append(".SH ").append(title).append("\n");
}

void CRoff::subsection(std::string_view title) {
    text_.append(".SS ").append(escaped(title)).append("\n");
}

void CRoff::paragraph(std::string_view text) {
    beginParagraph();
    line(text);
}

void CRoff::paragraphs(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = std::min(text.find("\n\n"), text.size());
        std::string_view block = text.substr(0, end);
        text.remove_prefix(std::min(end + 2, text.size()));
        beginParagraph();
        while (!block.empty()) {
            const std::size_t lineEnd = std::min(block.find('\n'), block.size());
            const std::string_view one = block.substr(0, lineEnd);
            if (one.starts_with("  "))
                text_ += ".br\n";
            line(one.substr(std::min(one.find_first_not_of(' '), one.size())));
            block.remove_prefix(std::min(lineEnd + 1, block.size()));
        }
    }
}

void CRoff::option(std::string_view name, std::string_view value, std::string_view help) {
    text_.append(".TP\n\\fB").append(escaped(name)).append("\\fR");
    if (!value.empty())
        text_.append(" \\fI").append(escaped(value)).append("\\fR");
    text_ += "\n";
    line(help);
}

void CRoff::term(std::string_view word, std::string_view meaning) {
    text_.append(".TP\n\\fB").append(escaped(word)).append("\\fR\n");
    line(meaning);
}

void CRoff::example(std::string_view lines) {
    beginParagraph();
    text_ += ".nf\n.RS 4\n";
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        keptLine(escaped(lines.substr(0, end)));
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
    text_ += ".RE\n.fi\n";
}

} // namespace mirovane::reference
