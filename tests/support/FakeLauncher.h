#pragma once

#include "platform/process/ProgramLauncher.h"

#include <string>
#include <system_error>
#include <vector>

namespace mirovane::test {

/// Starts nothing and remembers what it was to start.
class FakeLauncher final : public ProgramLauncher {
public:
    std::vector<std::vector<std::string>> started;
    std::error_code answer; ///< what every start returns

    std::error_code start(const std::vector<std::string>& words) override {
        started.push_back(words);
        return answer;
    }
};

} // namespace mirovane::test
