#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace mirovane {

/// Things that are known outside by a number. A number is never given twice, so an old one finds nothing
/// rather than something else. Any thread.
template <typename Handle, typename Value>
class SnmpHandles {
public:
    Handle add(std::shared_ptr<Value> value) {
        const std::lock_guard lock(mutex_);
        values_.emplace(++last_, std::move(value));
        return Handle{last_};
    }

    /// Null when there is no such thing (any more).
    std::shared_ptr<Value> find(Handle handle) const {
        const std::lock_guard lock(mutex_);
        const auto found = values_.find(static_cast<std::uint64_t>(handle));
        return found == values_.end() ? nullptr : found->second;
    }

    /// Puts another thing in its place.
    bool replace(Handle handle, std::shared_ptr<Value> value) {
        const std::lock_guard lock(mutex_);
        const auto found = values_.find(static_cast<std::uint64_t>(handle));
        if (found == values_.end()) {
            return false;
        }
        found->second.swap(value);
        return true;
    }

    /// The thing that was taken out, null when there was none.
    std::shared_ptr<Value> remove(Handle handle) {
        const std::lock_guard lock(mutex_);
        const auto node = values_.extract(static_cast<std::uint64_t>(handle));
        return node.empty() ? nullptr : std::move(node.mapped());
    }

    /// Takes everything out.
    std::unordered_map<std::uint64_t, std::shared_ptr<Value>> removeAll() {
        const std::lock_guard lock(mutex_);
        return std::exchange(values_, {});
    }

    std::size_t size() const {
        const std::lock_guard lock(mutex_);
        return values_.size();
    }

private:
    mutable std::mutex mutex_;
    std::unordered_map<std::uint64_t, std::shared_ptr<Value>> values_;
    std::uint64_t last_ = 0;
};

} // namespace mirovane
