#pragma once

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <utility>

namespace mirovane {

/// A fixed number of places for what costs too much to be done any number of times at once. Any thread.
class CPlaces {
public:
    explicit CPlaces(int places) : free_(places) {}
    CPlaces(const CPlaces&) = delete;
    CPlaces& operator=(const CPlaces&) = delete;

    /// A place until the end of its life; nothing where the wait for it was stopped.
    class CHold {
    public:
        CHold() = default;
        explicit CHold(CPlaces& places) : places_(&places) {}
        CHold(CHold&& other) noexcept : places_(std::exchange(other.places_, nullptr)) {}
        CHold& operator=(CHold&&) = delete;
        ~CHold() {
            if (places_)
                places_->giveBack();
        }
        explicit operator bool() const { return places_ != nullptr; }

    private:
        CPlaces* places_ = nullptr;
    };

    /// Waits for a free place.
    CHold take(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        if (!changed_.wait(lock, stop, [this] { return free_ > 0; }))
            return CHold();
        --free_;
        return CHold(*this);
    }

private:
    void giveBack() {
        const std::lock_guard lock(mutex_);
        ++free_;
        changed_.notify_one();
    }

    std::mutex mutex_;
    std::condition_variable_any changed_;
    int free_;
};

} // namespace mirovane
