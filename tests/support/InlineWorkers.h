#pragma once

#include "platform/Workers.h"

namespace mirovane::test {

/// Runs each step where it is started, so that simulated time decides everything.
class InlineWorkers final : public Workers {
public:
    bool start(std::function<void()> job) override {
        if (exhausted)
            return false;
        job();
        return true;
    }
    void setLimit(std::size_t) override {}
    bool waitUntilIdle(std::chrono::milliseconds) override { return true; }

    bool exhausted = false; ///< the system gives no thread any more
};

} // namespace mirovane::test
