#include "model/Settings.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace mirovane {

namespace {

constexpr std::int32_t absentFlag = 99;

constexpr std::array<std::string_view, 13> hideNames = {
    "HideJacks",   "HideComputers", "HidePrinters", "HideLaptops",  "HideSwitches",
    "HideRouters", "HidePhones",    "HideCameras",  "HideUnknowns", "HideUPS",
    "HideCards",   "HideWireless",  "HideMarkers",
};

constexpr SettingDefinition startup[] = {
    {"ReminderDeviceShow", absentFlag, 1},
    {"ReminderTitlebarShow", absentFlag, 1},
    {"PhotoScale", absentFlag, 100},
    {"LSRunSec", 0, 3},
    {"LSNumPerRun", 0, 30},
    {"LSAutoStart", absentFlag, 1},
    {"LSAutoPerform", absentFlag, 1},
    {"LSIncludeMisc", absentFlag, 1},
    {"LSConfirmOff", absentFlag, 1},
    {"HideJacks", absentFlag, 0},
    {"HideComputers", absentFlag, 0},
    {"HidePrinters", absentFlag, 0},
    {"HideLaptops", absentFlag, 0},
    {"HideRouters", absentFlag, 0},
    {"HideSwitches", absentFlag, 0},
    {"HidePhones", absentFlag, 0},
    {"HideCameras", absentFlag, 0},
    {"HideUnknowns", absentFlag, 0},
    {"HideUPS", absentFlag, 0},
    {"HideCards", absentFlag, 0},
    {"HideWireless", absentFlag, 0},
    {"HideMarkers", absentFlag, 0},
    {"PropertiesComputer", absentFlag, 0},
    {"PropertiesIPAddress", absentFlag, 0},
    {"PropertiesUsername", absentFlag, 1},
    {"PropertiesMACAddress", absentFlag, 0},
    {"PropertiesJack", absentFlag, 0},
    {"PropertiesComment", absentFlag, 0},
    {"PropertiesSlash", absentFlag, 0},
    {"PropertiesBackslash", absentFlag, 0},
    {"PropertiesHorz", absentFlag, 0},
    {"PropertiesVert", absentFlag, 0},
    {"PropertiesSlashDraw", absentFlag, 1},
    {"PropertiesBackslashDraw", absentFlag, 1},
    {"PropertiesHorzDraw", absentFlag, 1},
    {"PropertiesVertDraw", absentFlag, 1},
    {"ZoomPercent", absentFlag, 100},
    {"ZoomDevicesPercent", absentFlag, 100},
    {"ZoomFontScale", absentFlag, 0},
    {"ZoomDevices", absentFlag, 1},
    {"ZoomFloormap", absentFlag, 1},
};

struct Toggle {
    std::string_view name;
    bool DisplaySettings::*field;
};

/// The first six are read again at every open.
constexpr Toggle toggles[] = {
    {"PropertiesComputer", &DisplaySettings::PropertiesComputer},
    {"PropertiesIPAddress", &DisplaySettings::PropertiesIPAddress},
    {"PropertiesUsername", &DisplaySettings::PropertiesUsername},
    {"PropertiesMACAddress", &DisplaySettings::PropertiesMACAddress},
    {"PropertiesJack", &DisplaySettings::PropertiesJack},
    {"PropertiesComment", &DisplaySettings::PropertiesComment},
    {"PropertiesSlash", &DisplaySettings::PropertiesSlash},
    {"PropertiesBackslash", &DisplaySettings::PropertiesBackslash},
    {"PropertiesHorz", &DisplaySettings::PropertiesHorz},
    {"PropertiesVert", &DisplaySettings::PropertiesVert},
    {"PropertiesSlashDraw", &DisplaySettings::PropertiesSlashDraw},
    {"PropertiesBackslashDraw", &DisplaySettings::PropertiesBackslashDraw},
    {"PropertiesHorzDraw", &DisplaySettings::PropertiesHorzDraw},
    {"PropertiesVertDraw", &DisplaySettings::PropertiesVertDraw},
    {"LSStatusDeviceShow", &DisplaySettings::LSStatusDeviceShow},
    {"ReminderDeviceShow", &DisplaySettings::ReminderDeviceShow},
    {"ReminderTitlebarShow", &DisplaySettings::ReminderTitlebarShow},
    {"ZoomDevices", &DisplaySettings::ZoomDevices},
    {"ZoomFloormap", &DisplaySettings::ZoomFloormap},
};
constexpr std::size_t labelsReadAtOpen = 6;

/// What counts when the value is not there: the start-up default, or shown for what has none.
std::int32_t fallbackFor(std::string_view name) {
    for (const SettingDefinition& definition : startup)
        if (definition.name == name)
            return definition.initial;
    return absentFlag;
}

bool readFlag(const CSettings& settings, std::string_view name) {
    return settings.read(name, fallbackFor(name)) != 0;
}

/// A percentage of 0 or less would divide by nothing.
std::int32_t readPercent(const CSettings& settings, std::string_view name) {
    const std::int32_t percent = settings.read(name, 100);
    return percent > 0 ? percent : 100;
}

std::int32_t readPositive(const CSettings& settings, std::string_view name, std::int32_t fallback) {
    const std::int32_t value = settings.read(name, fallback);
    return value > 0 ? value : fallback;
}

} // namespace

std::span<const SettingDefinition> startupSettings() {
    return startup;
}

std::string_view hideSettingName(std::int32_t type) {
    const bool known = type >= 1 && type <= static_cast<std::int32_t>(hideNames.size());
    return known ? hideNames[static_cast<std::size_t>(type - 1)] : std::string_view{};
}

void CSettings::initialise() {
    for (const SettingDefinition& definition : startup)
        if (read(definition.name, definition.absent) == definition.absent)
            write(definition.name, definition.initial);
}

std::int32_t CSettings::read(std::string_view name, std::int32_t fallback) const {
    return store_.readInteger(std::string(name)).value_or(fallback);
}

void CSettings::write(std::string_view name, std::int32_t value) {
    store_.writeInteger(std::string(name), value);
}

std::string exportSettingName(std::string_view base, std::string_view datafile) {
    return std::string(base) + std::string(datafile);
}

bool readExportAuto(CSettings& settings, const std::string& datafile) {
    const std::string name = exportSettingName(ExportSetting::Auto, datafile);
    const std::int32_t value = settings.read(name, absentFlag);
    if (value == absentFlag)
        settings.write(name, 0);
    return value == 1;
}

void DisplaySettings::readAll(const CSettings& settings) {
    for (const Toggle& toggle : toggles)
        this->*toggle.field = readFlag(settings, toggle.name);
    ZoomPercent = readPercent(settings, "ZoomPercent");
    ZoomDevicesPercent = readPercent(settings, "ZoomDevicesPercent");
    ZoomFontScale = settings.read("ZoomFontScale", 0);
    PhotoScale = readPercent(settings, "PhotoScale");
    readAtOpen(settings);
}

void DisplaySettings::readAtOpen(const CSettings& settings) {
    for (const Toggle& toggle : std::span(toggles).first(labelsReadAtOpen))
        this->*toggle.field = readFlag(settings, toggle.name);
    std::uint32_t visible = ~std::uint32_t{0};
    for (std::size_t i = 0; i < hideNames.size(); ++i)
        if (readFlag(settings, hideNames[i]))
            visible &= ~(std::uint32_t{1} << i);
    VisibleTypes = static_cast<std::int32_t>(visible);
}

bool DisplaySettings::typeVisible(std::int32_t type) const {
    if (type < 1 || type > 32)
        return true;
    return (static_cast<std::uint32_t>(VisibleTypes) >> (type - 1) & 1U) != 0;
}

bool DisplaySettings::*displayToggle(std::string_view name) {
    for (const Toggle& toggle : toggles)
        if (toggle.name == name)
            return toggle.field;
    return nullptr;
}

void LiveStatSettings::readAll(const CSettings& settings) {
    LSRunSec = readPositive(settings, "LSRunSec", 3);
    LSNumPerRun = readPositive(settings, "LSNumPerRun", 50);
    LSAutoStart = settings.read("LSAutoStart", 1) != 0;
    LSAutoPerform = settings.read("LSAutoPerform", 1) != 0;
    LSIncludeMisc = settings.read("LSIncludeMisc", 1) != 0;
    LSConfirmOff = std::clamp(settings.read("LSConfirmOff", 1), 0, mostConfirmOff);
}

void LiveStatSettings::writeAll(CSettings& settings) const {
    settings.write("LSRunSec", LSRunSec);
    settings.write("LSNumPerRun", LSNumPerRun);
    settings.write("LSAutoStart", LSAutoStart ? 1 : 0);
    settings.write("LSAutoPerform", LSAutoPerform ? 1 : 0);
    settings.write("LSIncludeMisc", LSIncludeMisc ? 1 : 0);
    settings.write("LSConfirmOff", LSConfirmOff);
}

} // namespace mirovane
