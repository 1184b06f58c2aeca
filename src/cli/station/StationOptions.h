#pragma once

#include "cli/station/SettingsFile.h"
#include "model/rows/TextExport.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace mirovane {

/// What `station` was asked for, on the command line or in its settings file.
struct StationRequest {
    std::string path;
    bool liveStat = false;
    bool discover = false;
    bool takeOver = false;
    std::vector<std::int32_t> now;       ///< devices to check at the start
    std::optional<std::int32_t> loops;   ///< end after so many
    std::optional<std::int32_t> seconds; ///< end after so long
    std::string metrics;                 ///< file for a monitoring engine; empty: none
};

/// From which weight on the lines of the message log are printed.
enum class LogWeight { Debug, Info, Notice, Error };

/// All of it, with what is set for this run in place of the user's own settings.
struct StationOptions {
    StationRequest request;
    std::optional<std::int32_t> runSec;
    std::optional<std::int32_t> perRun;
    std::optional<std::int32_t> confirmOff;
    std::optional<ExportSettings> textExport;
    std::array<std::string, 2> registry; ///< credentials file and port, as they were given
    LogWeight log = LogWeight::Debug;
    bool json = false;
};

/// The command line of a station and the settings file that it names, which is read again whenever the
/// service manager says so. What the command line says counts.
class CStationConfiguration {
public:
    struct Read {
        Arguments arguments; ///< of the command line and the file together
        StationOptions options;
    };

    explicit CStationConfiguration(Arguments commandLine) : commandLine_(std::move(commandLine)) {}

    bool hasFile() const { return commandLine_.has("--settings"); }

    Result<Read, SettingsTrouble> read() const;

private:
    Arguments commandLine_;
};

} // namespace mirovane
