#pragma once

#include "platform/Workers.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace mirovane {

/// One question that another thread answers with a value, while the main thread goes on or waits, as it
/// likes. An answer that nobody waits for any more goes nowhere. Main thread.
template <typename Answer>
class CBackgroundCall {
public:
    /// Asks, and forgets what was asked before. `call` owns all that it touches. Without workers, and where
    /// the system gives them no thread, it is answered at once, by the caller.
    void start(Workers* workers, std::function<Answer()> call) {
        const auto box = std::make_shared<Box>();
        box_ = box;
        const auto shared = std::make_shared<std::function<Answer()>>(std::move(call));
        const auto work = [box, shared] {
            auto answer = std::make_unique<Answer>((*shared)());
            const std::lock_guard lock(box->mutex);
            box->answer = std::move(answer);
            box->changed.notify_all();
        };
        if (!workers || !workers->start(work))
            work();
    }

    /// Asked, and the answer was not taken yet.
    bool underWay() const { return box_ != nullptr; }

    /// True when the answer is there.
    bool wait(std::chrono::milliseconds patience) const {
        std::unique_lock lock(box_->mutex);
        return box_->changed.wait_for(lock, patience, [this] { return box_->answer != nullptr; });
    }

    /// Once there is one.
    Answer take() {
        const auto box = std::exchange(box_, nullptr);
        const std::lock_guard lock(box->mutex);
        return std::move(*box->answer);
    }

    void drop() { box_.reset(); }

private:
    struct Box {
        std::mutex mutex;
        std::condition_variable changed;
        std::unique_ptr<Answer> answer;
    };

    std::shared_ptr<Box> box_;
};

} // namespace mirovane
