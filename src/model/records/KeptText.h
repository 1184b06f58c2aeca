#pragma once

#include "model/records/Hardware.h"

#include <string_view>

namespace mirovane {

/// The value of a field that may be kept by the user: its mark, with the blanks before it, says something to
/// Live Stat and is not part of the value. Nobody's host is called "localhost >>".
inline std::string_view withoutKeptMark(std::string_view text) {
    if (!text.ends_with(keptByUser))
        return text;
    text.remove_suffix(keptByUser.size());
    const auto last = text.find_last_not_of(" \t");
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

} // namespace mirovane
