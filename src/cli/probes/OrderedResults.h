#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

namespace mirovane {

/// Results that come in any order, from any thread, and are wanted in the order of their questions.
template <typename Value>
class COrderedResults {
public:
    explicit COrderedResults(std::size_t count) : values_(count) {}

    void set(std::size_t index, Value value) {
        const std::lock_guard lock(mutex_);
        values_[index] = std::move(value);
        arrived_.notify_all();
    }

    /// Waits for it.
    Value take(std::size_t index) {
        std::unique_lock lock(mutex_);
        arrived_.wait(lock, [&] { return values_[index].has_value(); });
        return std::move(*values_[index]);
    }

private:
    std::mutex mutex_;
    std::condition_variable arrived_;
    std::vector<std::optional<Value>> values_;
};

/// Runs work(0) to work(count - 1) on up to `most` threads; its end waits for them all.
class CParallelWork {
public:
    CParallelWork(std::size_t count, std::size_t most, std::function<void(std::size_t)> work)
        : count_(count), work_(std::move(work)) {
        for (std::size_t thread = 0; thread < count && thread < most; ++thread) {
            try {
                threads_.emplace_back([this] { run(); });
            } catch (const std::system_error&) {
                break; // fewer threads take longer, that is all
            }
        }
        if (threads_.empty())
            run();
    }

private:
    void run() {
        for (std::size_t index = next_++; index < count_; index = next_++)
            work_(index);
    }

    std::size_t count_;
    std::function<void(std::size_t)> work_;
    std::atomic<std::size_t> next_{0};
    std::vector<std::jthread> threads_;
};

} // namespace mirovane
