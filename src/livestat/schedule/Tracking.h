#pragma once

#include "model/MessageLog.h"

namespace mirovane {

/// Track Live Stat: each device comes into view when its check begins.
class CTracking {
public:
    explicit CTracking(CMessageLog& log) : log_(log) {}

    bool on() const { return on_; }
    void begin() {
        on_ = true;
        log_.LogMessage("Track Live stat Enabled");
    }
    void end() {
        if (on_)
            log_.LogMessage("Track Live stat Disabled");
        on_ = false;
    }

    /// Without a word: another document.
    void reset() { on_ = false; }

private:
    CMessageLog& log_;
    bool on_ = false;
};

} // namespace mirovane
