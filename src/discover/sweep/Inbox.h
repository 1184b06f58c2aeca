#pragma once

#include <mutex>
#include <utility>
#include <vector>

namespace mirovane {

/// Where callbacks of other threads leave what came in, for one thread to take. Once closed it drops what
/// comes late. Shared with the callbacks, which may outlive the one who takes.
template <typename Item>
class CInbox {
public:
    void put(Item item) {
        const std::lock_guard lock(mutex_);
        if (open_)
            items_.push_back(std::move(item));
    }
    std::vector<Item> take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(items_, {});
    }
    void close() {
        const std::lock_guard lock(mutex_);
        open_ = false;
        items_ = {};
    }

private:
    std::mutex mutex_;
    std::vector<Item> items_;
    bool open_ = true;
};

} // namespace mirovane
