#pragma once

#include "model/MessageLog.h"

#include <string>
#include <vector>

namespace mirovane::test {

inline std::string withoutDate(const std::string& line) {
    return line.substr(line.find(" - ") + 3);
}

/// Reads a log from where it stopped the last time.
class LogLines {
public:
    explicit LogLines(const CMessageLog& log) : log_(log) {}

    /// The lines since the last call, without their dates.
    std::vector<std::string> next() {
        std::vector<std::string> lines;
        for (; seen_ < log_.lines().size(); ++seen_)
            lines.push_back(withoutDate(log_.lines()[seen_]));
        return lines;
    }

private:
    const CMessageLog& log_;
    std::size_t seen_ = 0;
};

} // namespace mirovane::test
