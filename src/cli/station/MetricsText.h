#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

namespace mirovane {

/// Builds the text in which monitoring engines read values: what OpenMetrics and the older form of the
/// textfile collector have in common, so only gauges, no time stamps and no units of their own.
class CMetricsText {
public:
    using Label = std::pair<std::string_view, std::string_view>;

    /// The samples that follow belong to this name. `help` is one line.
    void family(std::string_view name, std::string_view help);

    /// Values are bytes of a record; they are written as UTF-8 with what would end them escaped.
    void sample(std::initializer_list<Label> labels, std::int64_t value);

    /// The same with labels that labelsText() made.
    void sample(std::string_view labels, std::int64_t value);

    static std::string labelsText(std::initializer_list<Label> labels);

    /// Families that another text holds.
    void append(const CMetricsText& other) { text_ += other.text_; }

    /// `# EOF` tells a whole text from the beginning of one.
    std::string take();

private:
    std::string text_;
    std::string family_;
};

} // namespace mirovane
