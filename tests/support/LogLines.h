#pragma once

#include "model/MessageLog.h"

#include <string>
#include <vector>

namespace mirovane::test {

/// Reads a log from where it stopped the last time.
class LogLines {
public:
    explicit LogLines(const CMessageLog& log) : log_(log) {}

    /// The texts since the last call.
    std::vector<std::string> next() {
        std::vector<std::string> lines;
        for (; seen_ < log_.lines().size(); ++seen_)
            lines.push_back(log_.lines()[seen_].text);
        return lines;
    }

private:
    const CMessageLog& log_;
    std::size_t seen_ = 0;
};

} // namespace mirovane::test
