#pragma once

#include <cstdint>
#include <string>

namespace mirovane {

// Outline; the scheduler's own header fills it in.
class CLiveStatScheduler {
public:
    bool enabled() const;
    bool disabling() const;
    bool nowActive() const;

    /// True while a job slot holds this device: the floor draws the Live Stat ring around it.
    bool holdsDevice(std::int32_t recID) const;

    /// "LIVE!:%d"; empty while Live Stat is off.
    const std::string& statusText() const;

    bool anyJobInProgress() const;
};

} // namespace mirovane
