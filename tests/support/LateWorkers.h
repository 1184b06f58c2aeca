#pragma once

#include "platform/Workers.h"

#include <chrono>
#include <functional>
#include <utility>
#include <vector>

namespace mirovane::test {

/// Steps that take until the test lets them end, or somebody waits for them.
class LateWorkers final : public Workers {
public:
    bool start(std::function<void()> work) override {
        waiting_.push_back(std::move(work));
        return true;
    }
    bool waitUntilIdle(std::chrono::milliseconds) override {
        finish();
        return true;
    }
    void setLimit(std::size_t) override {}

    void finish() {
        for (const auto& work : std::exchange(waiting_, {}))
            work();
    }
    bool busy() const { return !waiting_.empty(); }

private:
    std::vector<std::function<void()>> waiting_;
};

} // namespace mirovane::test
