#include "livestat/search/FieldText.h"

namespace mirovane {

namespace {

std::string withTabs(std::string_view delimiter) {
    std::string result;
    for (std::size_t i = 0; i < delimiter.size(); ++i) {
        const bool tab = delimiter.substr(i, 2) == "\\t";
        result += tab ? '\t' : delimiter[i];
        i += tab ? 1 : 0;
    }
    return result;
}

} // namespace

std::string delimitedField(std::string_view line, std::string_view delimiter, std::int32_t position) {
    const std::string between = withTabs(delimiter);
    bool quoted = false;
    std::size_t begin = 0;
    std::int32_t field = 1;
    for (std::size_t i = 0; i < line.size();) {
        if (!quoted && !between.empty() && line.substr(i).starts_with(between)) {
            if (field == position)
                return std::string(line.substr(begin, i - begin));
            ++field;
            i += between.size();
            begin = i;
            continue;
        }
        if (line[i] == '"') // one without a partner protects nothing: a 19" monitor
            quoted = !quoted && line.find('"', i + 1) != std::string_view::npos;
        ++i;
    }
    return field == position ? std::string(line.substr(begin)) : std::string();
}

} // namespace mirovane
