#pragma once

#include "cli/base/Arguments.h"
#include "cli/base/Output.h"

#include <map>
#include <span>
#include <string>
#include <string_view>

namespace mirovane {

/// Why a station's settings cannot be taken, and how the command ends for it.
struct SettingsTrouble {
    std::string sentence;
    ExitStatus status = ExitStatus::Usage;
};

/// The lines of a settings file as the options that they stand for.
struct SettingsLines {
    Arguments arguments;

    /// By the option's name, for messages: "site.conf line 3, key run-sec".
    std::map<std::string, std::string, std::less<>> places;
};

/// Reads NAME=VALUE lines, where NAME is an option without its dashes; an option without a value is set by
/// "yes". Blanks around both do not count, double quotes around a value keep its own. Lines that begin with #
/// are comments. An unknown name and one that is set twice are refused: a setting that is silently ignored is
/// found weeks later. `path` is for messages.
Result<SettingsLines, SettingsTrouble> parseSettings(std::string_view text, const std::string& path,
                                                     std::span<const OptionDefinition> keys);

/// The same for the file at the path.
Result<SettingsLines, SettingsTrouble> readSettings(const std::string& path,
                                                    std::span<const OptionDefinition> keys);

} // namespace mirovane
