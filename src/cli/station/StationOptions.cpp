#include "cli/station/StationOptions.h"

#include "cli/station/StationOptionTable.h"
#include "model/Settings.h"
#include "platform/files/FilePaths.h"

#include <algorithm>
#include <array>
#include <utility>

namespace mirovane {

namespace {

constexpr std::int32_t mostSeconds = 2'000'000; ///< 23 days; a timer's milliseconds end soon after
constexpr std::int32_t mostLoops = 1'000'000'000;
constexpr std::int32_t highestPort = 65535;

constexpr std::array<std::pair<std::string_view, LogWeight>, 4> logWeights{{
    {"debug", LogWeight::Debug},
    {"info", LogWeight::Info},
    {"notice", LogWeight::Notice},
    {"err", LogWeight::Error},
}};

/// Reads the options one by one; the first that is wrong ends it.
class COptionReader {
public:
    COptionReader(const Arguments& arguments, const SettingsLines& file)
        : arguments_(arguments), places_(file.places) {}

    StationOptions read() {
        StationOptions options;
        options.request.liveStat = arguments_.has("--live-stat");
        options.request.discover = arguments_.has("--discover");
        options.request.takeOver = arguments_.has("--take-over");
        options.json = arguments_.has("--json");
        options.request.loops = number("--loops", mostLoops);
        options.request.seconds = number("--for", mostSeconds);
        options.runSec = number("--run-sec", LiveStatSettings::mostRunSec);
        options.perRun = number("--per-run", LiveStatSettings::mostNumPerRun);
        options.confirmOff = number("--confirm-off", LiveStatSettings::mostConfirmOff, 0);
        options.log = logWeight();
        options.request.metrics = absolutePath(pathOf("--metrics").value_or(""));
        number("--smb-port", highestPort);
        options.registry = {pathOf("--credentials").value_or(""),
                            arguments_.value("--smb-port").value_or("")};
        options.textExport = textExport();
        takeDatafile(options.request);
        takeDevices(options.request);
        return options;
    }

    const std::optional<SettingsTrouble>& trouble() const { return trouble_; }

private:
    void refuse(std::string_view option, const std::string& why) {
        if (trouble_)
            return;
        const auto place = places_.find(option);
        trouble_ = SettingsTrouble{
            (place == places_.end() ? "option " + std::string(option) : place->second) + ": " + why};
    }

    std::optional<std::int32_t> number(std::string_view option, std::int32_t most, std::int32_t least = 1) {
        const auto text = arguments_.value(option);
        const auto value = text ? numberArgument(*text, least, most) : std::nullopt;
        if (text && !value)
            refuse(option, "\"" + *text + "\" is not a number from " + std::to_string(least) + " to " +
                               std::to_string(most));
        return value;
    }

    /// A service's current folder is nobody's business, so a settings file names whole paths.
    std::optional<std::string> pathOf(std::string_view option) {
        auto path = arguments_.value(option);
        if (path && path->empty())
            refuse(option, "it needs a file");
        else if (path && places_.contains(option) && !path->starts_with('/'))
            refuse(option, "\"" + *path + "\" does not begin at the root: write it with a / in front");
        return path;
    }

    LogWeight logWeight() {
        const auto text = arguments_.value("--log");
        if (!text)
            return LogWeight::Debug;
        const auto found = std::ranges::find(logWeights, *text, &decltype(logWeights)::value_type::first);
        if (found != logWeights.end())
            return found->second;
        refuse("--log", "\"" + *text + "\" is none of debug, info, notice, err");
        return LogWeight::Debug;
    }

    std::optional<ExportSettings> textExport() {
        const auto target = arguments_.value("--export");
        for (const OptionDefinition& option : exportFormatOptions)
            if (!target && arguments_.has(option.name))
                refuse(option.name, "there is no export without --export");
        if (!target)
            return std::nullopt;
        if (target->empty() || target->size() > ExportSettings::longestText)
            refuse("--export", "give a file name of at most 255 bytes");
        ExportSettings settings;
        settings.ExportAuto = true;
        settings.ExportFilename = *target;
        settings.ExportTab = !arguments_.has("--delimiter");
        settings.ExportCustomText = arguments_.value("--delimiter").value_or("");
        settings.ExportQuoteAll = arguments_.has("--quote-all");
        settings.ExportQuoteComment = arguments_.has("--quote-comment");
        settings.ExportIncludeHeader = arguments_.has("--header");
        return settings;
    }

    void takeDatafile(StationRequest& request) {
        if (!arguments_.positionals.empty())
            request.path = arguments_.positionals[0];
        else
            request.path = pathOf("--datafile").value_or("");
        if (!request.path.empty() || trouble_)
            return;
        trouble_ = SettingsTrouble{arguments_.has("--settings")
                                       ? *arguments_.value("--settings") +
                                             ": no datafile is named: write datafile=/srv/site/floor.mv"
                                       : "too few arguments: name the datafile, or settings that name it"};
    }

    void takeDevices(StationRequest& request) {
        const auto recIDs = recordIDArguments(arguments_.values("--now"));
        if (!recIDs)
            refuse("--now", recIDs.error().sentence);
        else
            request.now = recIDs.value();
        if (request.loops && !request.liveStat && request.now.empty())
            refuse("--loops", "without --live-stat or --now there are no loops to count");
    }

    const Arguments& arguments_;
    const std::map<std::string, std::string, std::less<>>& places_;
    std::optional<SettingsTrouble> trouble_;
};

} // namespace

Result<CStationConfiguration::Read, SettingsTrouble> CStationConfiguration::read() const {
    Result<SettingsLines, SettingsTrouble> file = SettingsLines();
    if (const auto path = commandLine_.value("--settings"))
        file = readSettings(*path, stationSettingsKeys);
    if (!file)
        return file.error();
    Arguments merged = commandLine_;
    SettingsLines& lines = file.value();
    for (const auto& [name, values] : lines.arguments.options)
        if (!merged.options.emplace(name, values).second)
            lines.places.erase(name); // the command line says otherwise
    COptionReader reader(merged, lines);
    StationOptions options = reader.read();
    if (reader.trouble())
        return *reader.trouble();
    return Read{std::move(merged), std::move(options)};
}

} // namespace mirovane
