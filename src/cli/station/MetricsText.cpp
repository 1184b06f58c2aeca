#include "cli/station/MetricsText.h"

#include "cli/base/Output.h"

namespace mirovane {

namespace {

void appendEscaped(std::string& text, std::string_view value) {
    for (const char c : printable(value)) { // no line ends left
        if (c == '\\' || c == '"')
            text += '\\';
        text += c;
    }
}

} // namespace

void CMetricsText::family(std::string_view name, std::string_view help) {
    family_ = name;
    text_.append("# HELP ").append(name).append(" ").append(help);
    text_.append("\n# TYPE ").append(name).append(" gauge\n");
}

void CMetricsText::sample(std::initializer_list<Label> labels, std::int64_t value) {
    sample(labelsText(labels), value);
}

void CMetricsText::sample(std::string_view labels, std::int64_t value) {
    text_.append(family_).append(labels).append(" ").append(std::to_string(value)).append("\n");
}

std::string CMetricsText::labelsText(std::initializer_list<Label> labels) {
    std::string text = "{";
    for (const auto& [name, value] : labels) {
        text.append(text.size() > 1 ? "," : "").append(name).append("=\"");
        appendEscaped(text, value);
        text += '"';
    }
    return text + "}";
}

std::string CMetricsText::take() {
    text_ += "# EOF\n";
    family_.clear();
    return std::move(text_);
}

} // namespace mirovane
