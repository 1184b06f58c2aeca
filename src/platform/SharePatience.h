#pragma once

#include <chrono>
#include <string>

namespace mirovane {

/// The longest that the main thread sleeps for a share. A disk that is well has saved a floor by then, and
/// whoever edits learns at once when it could not.
constexpr std::chrono::milliseconds oneFrame{25};

/// Told every few milliseconds that the main thread waits for the share that `path` is on. Main thread.
class SharePatience {
public:
    virtual ~SharePatience() = default;

    /// Lets the window repaint. False: nobody wants to wait any longer.
    virtual bool keepWaiting(const std::string& path) = 0;
};

} // namespace mirovane
