#pragma once

#include "platform/Timers.h"

namespace mirovane {

/// Timers of the Qt event loop of the thread that made them.
class CQtTimerFactory final : public TimerFactory {
public:
    std::unique_ptr<Timer> makeTimer(std::function<void()> onTick) override;
};

} // namespace mirovane
