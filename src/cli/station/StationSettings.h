#pragma once

#include "cli/base/OverlaySettings.h"
#include "cli/station/StationOptions.h"
#include "model/Settings.h"
#include "platform/qt/IniSettingsStore.h"

#include <string>

namespace mirovane {

/// The user's settings as one headless station shall see them. What its options say holds for this process
/// only. Main thread.
class CStationSettings {
public:
    explicit CStationSettings(const std::string& configFolder);

    /// What the options say, and no more of what was said before. Live Stat starts with the datafile exactly
    /// when it was asked for, and may then also replace an owner that fell silent.
    void take(const StationOptions& options);

    CSettings& settings() { return settings_; }
    LiveStatSettings liveStat() const { return LiveStatSettings::of(settings_); }

private:
    CIniSettingsStore user_;
    COverlaySettingsStore store_;
    CSettings settings_;
};

} // namespace mirovane
