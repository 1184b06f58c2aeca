#pragma once

#include "platform/SettingsStore.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace mirovane {

/// A value that every start writes when it is absent. Reading yields `absent` for a value that is not there;
/// a value that equals it counts as not there (which is why a Live Stat period of 0 heals itself at the next
/// start).
struct SettingDefinition {
    std::string_view name;
    std::int32_t absent;
    std::int32_t initial;
};

/// In the order in which a start writes them.
std::span<const SettingDefinition> startupSettings();

/// Names of the 13 hide values by floor code: "HideJacks" for 1.
std::string_view hideSettingName(std::int32_t type);

/// The user's settings by name. Written the moment a command changes them. Main thread only.
class CSettings {
public:
    explicit CSettings(SettingsStore& store) : store_(store) {}

    /// Before any window opens: writes the default of every start-up value that is absent.
    void initialise();

    std::int32_t read(std::string_view name, std::int32_t fallback) const;
    void write(std::string_view name, std::int32_t value);

    SettingsStore& store() { return store_; }

private:
    SettingsStore& store_;
};

/// Base names of the values that each datafile has of its own.
namespace ExportSetting {
constexpr std::string_view Tab = "ExportTab";
constexpr std::string_view QuoteAll = "ExportQuoteAll";
constexpr std::string_view QuoteComment = "ExportQuoteComment";
constexpr std::string_view IncludeHeader = "ExportIncludeHeader";
constexpr std::string_view Auto = "ExportAuto";
constexpr std::string_view Filename = "ExportFilename";
constexpr std::string_view CustomText = "ExportCustomText";
} // namespace ExportSetting

/// "ExportTab/srv/site/floor.mv": a datafile that moves loses its export settings.
std::string exportSettingName(std::string_view base, std::string_view datafile);

/// "Auto export on changes" of one datafile; writes the default (off) when it is absent.
bool readExportAuto(CSettings& settings, const std::string& datafile);

/// What the floor shows and how large: read from the settings by name, so the fields carry the settings'
/// spelling.
struct DisplaySettings {
    bool LSStatusDeviceShow = true;
    bool ReminderDeviceShow = true;
    bool ReminderTitlebarShow = true;
    bool PropertiesComputer = false;
    bool PropertiesIPAddress = false;
    bool PropertiesUsername = true;
    bool PropertiesMACAddress = false;
    bool PropertiesJack = false;
    bool PropertiesComment = false;
    bool PropertiesSlash = false;
    bool PropertiesBackslash = false;
    bool PropertiesHorz = false;
    bool PropertiesVert = false;
    bool PropertiesSlashDraw = true;
    bool PropertiesBackslashDraw = true;
    bool PropertiesHorzDraw = true;
    bool PropertiesVertDraw = true;
    bool ZoomDevices = true;
    bool ZoomFloormap = true;
    std::int32_t ZoomPercent = 100;
    std::int32_t ZoomDevicesPercent = 100;
    std::int32_t ZoomFontScale = 0;
    std::int32_t PhotoScale = 100;
    std::int32_t VisibleTypes = -1; ///< bit (Type - 1) set = that type is shown
    bool FloorMapHidden = false;    ///< for this run only; the datafile keeps the map's path

    /// As the station reads them at its start.
    void readAll(const CSettings& settings);
    static DisplaySettings of(const CSettings& settings) {
        DisplaySettings display;
        display.readAll(settings);
        return display;
    }

    /// At every open and reload: hide values and the six labels from PropertiesComputer to PropertiesComment.
    void readAtOpen(const CSettings& settings);

    bool typeVisible(std::int32_t type) const;

    bool operator==(const DisplaySettings&) const = default;
};

/// A toggle of DisplaySettings by its settings name; null for any other name.
bool DisplaySettings::*displayToggle(std::string_view name);

struct LiveStatSettings {
    /// A slip of the keys, or a settings file edited by hand, must not bring the computer down.
    static constexpr std::int32_t mostRunSec = 24 * 60 * 60;
    static constexpr std::int32_t mostNumPerRun = 10'000;
    static constexpr std::int32_t mostConfirmOff = 5;

    std::int32_t LSRunSec = 3;
    std::int32_t LSNumPerRun = 50;
    bool LSAutoStart = true;
    bool LSAutoPerform = true;
    bool LSIncludeMisc = true;
    std::int32_t LSConfirmOff = 1; ///< so often the test of a device that is On is repeated before it is Off

    void readAll(const CSettings& settings);
    static LiveStatSettings of(const CSettings& settings) {
        LiveStatSettings liveStat;
        liveStat.readAll(settings);
        return liveStat;
    }
    void writeAll(CSettings& settings) const;
};

} // namespace mirovane
