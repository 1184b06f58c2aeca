#pragma once

#include "feature/FeatureClaim.h"
#include "feature/StartRefusal.h"
#include "model/MessageLog.h"
#include "platform/Timers.h"

#include <chrono>
#include <optional>

namespace mirovane {

/// On and off of a feature that ticks: the claim on the datafile, the timer, and the lines in the log that
/// go with it. What the feature itself does about it, it does around these calls. Main thread.
///
///     Off -> turnOn() -> On -> turnOff() -> GoingOff -> finish() -> Off
///
/// A feature that is going off has told its work to stop and calls finish() when that has come to its end; it
/// may be turned on again before. The user may leave a feature to another station: Off at once.
class CFeatureSwitch {
public:
    enum class State { Off, On, GoingOff };

    /// All of it outlives the switch.
    CFeatureSwitch(CFeatureOwnership& ownership, Timer& timer, FeatureHost& host, CMessageLog& log)
        : claim_(ownership), timer_(timer), host_(host), log_(log) {}

    State state() const { return state_; }
    bool on() const { return state_ == State::On; }
    bool isHere() const { return claim_.ownership().isHere(); }
    bool goingOff() const { return state_ == State::GoingOff; }

    /// On, with the first tick after `period`. Nothing: it is on.
    std::optional<StartRefusal> turnOn(std::chrono::milliseconds period);

    /// Going off. Nothing is released yet.
    void turnOff();

    /// Releases the datafile and saves it, unless another station is the owner by now or another part of this
    /// one still is. Called by finish() where nobody did it before.
    void release() { claim_.letGo(); }

    /// Off, and no more ticks.
    void finish();

    /// The records were read again: is it still this station's? Asks where it is not. False: it is Off now,
    /// and nothing was released, because the record names the other station.
    bool keep();

    /// Off without a word: another document.
    void cut();

    /// Ticks after `period`.
    void arm(std::chrono::milliseconds period);

private:
    CFeatureClaim claim_;
    Timer& timer_;
    FeatureHost& host_;
    CMessageLog& log_;
    State state_ = State::Off;
};

} // namespace mirovane
