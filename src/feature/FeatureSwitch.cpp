#include "feature/FeatureSwitch.h"

#include <string>

namespace mirovane {

namespace {

std::string goingOffLine(Feature feature) {
    return std::string(feature == Feature::LiveStat ? "Live Stat" : "Live Discover") +
           " is being disabled, please wait...";
}

std::string_view offLine(Feature feature) {
    return feature == Feature::LiveStat ? "Live Stat disabled" : "Live Discover disabled.";
}

} // namespace

std::optional<StartRefusal> CFeatureSwitch::turnOn(std::chrono::milliseconds period) {
    // Proves before anything is written that the timer can be had; a datafile that names a station which then
    // does nothing would keep the others from running the feature.
    const bool wasActive = timer_.active();
    if (!wasActive && !timer_.start(period)) {
        host_.failUser(std::string(outOfTimersText));
        return StartRefusal{StartRefusal::Kind::NoTimer, std::string(outOfTimersText)};
    }
    if (auto refusal = claim_.take()) {
        if (!wasActive)
            timer_.stop();
        if (!refusal->text.empty())
            log_.LogTrouble(refusal->text, true);
        return refusal;
    }
    state_ = State::On;
    arm(period); // anew: the question may have taken its time
    return std::nullopt;
}

void CFeatureSwitch::turnOff() {
    state_ = State::GoingOff;
    log_.LogMessage(goingOffLine(claim_.ownership().feature()), true);
}

void CFeatureSwitch::finish() {
    release();
    timer_.stop();
    state_ = State::Off;
    log_.LogMessage(offLine(claim_.ownership().feature()), true);
}

bool CFeatureSwitch::keep() {
    if (claim_.keep())
        return true;
    const State before = state_;
    cut();
    if (before == State::On)
        log_.LogMessage(offLine(claim_.ownership().feature()), true);
    return false;
}

void CFeatureSwitch::cut() {
    timer_.stop();
    claim_.drop();
    state_ = State::Off;
}

void CFeatureSwitch::arm(std::chrono::milliseconds period) {
    if (!timer_.start(period))
        log_.LogTrouble(outOfTimersText, true);
}

} // namespace mirovane
