#pragma once

#include <string>
#include <string_view>

namespace mirovane::reference {

/// The text of a manual page in the man macros.
class CRoff {
public:
    /// `title` in capitals, `section` "1", `volume` what the page's head says.
    CRoff(std::string_view title, std::string_view section, std::string_view date, std::string_view source);

    void section(std::string_view title);
    void subsection(std::string_view title);
    void paragraph(std::string_view text);

    /// Paragraphs with blank lines between them; lines that begin with two blanks stay as they are.
    void paragraphs(std::string_view text);

    /// "--name VALUE" and what it does.
    void option(std::string_view name, std::string_view value, std::string_view help);

    /// A word and what it means.
    void term(std::string_view word, std::string_view meaning);

    /// Lines that stay as they are.
    void example(std::string_view lines);

    /// A paragraph with macros and escapes as they are.
    void rawParagraph(std::string_view text) {
        beginParagraph();
        text_ += text;
    }

    /// Macros and escapes as they are.
    void raw(std::string_view text) { text_ += text; }

    const std::string& text() const { return text_; }

    /// As text within a line, without meaning to the formatter.
    static std::string escaped(std::string_view text);

    /// Text that goes on in the paragraph, on lines of its own in the source.
    void line(std::string_view text);

private:
    void keptLine(std::string_view safe);
    void beginParagraph();

    std::string text_;
};

} // namespace mirovane::reference
