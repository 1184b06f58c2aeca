#include "cli/station/StationMetrics.h"

#include "feature/FeatureOwner.h"
#include "platform/files/UnflushedFiles.h"

#include <array>
#include <unordered_set>
#include <utility>
#include <vector>

namespace mirovane {

namespace {

/// The end of a run must not wait for a slow folder; what is late is written by the next one.
constexpr std::chrono::milliseconds patience{0};

/// What they say grows old by itself.
constexpr std::chrono::milliseconds patienceAtEnd{500};

constexpr std::chrono::minutes refreshPeriod{1};

struct DeviceLine {
    const CHardware* device;
    std::string labels;
};

std::string deviceLabels(const CHardware& device, std::string_view place, std::string_view datafile) {
    const bool isJack = floorCode(device.Type) == DeviceType::Jack;
    return CMetricsText::labelsText({{"datafile", datafile},
                                     {"recid", std::to_string(device.RecID)},
                                     {"type", typeName(device.Type)},
                                     {"name", isJack ? device.ToJack : device.Name},
                                     {"address", device.IPAddress},
                                     {"place", place}});
}

/// What has a state. A RecID that a damaged datafile gives twice is told once: an engine refuses a file with
/// two equal series as a whole.
std::vector<DeviceLine> deviceLines(const CMirovaneDoc& document, CQuickFind& places,
                                    const std::string& datafile) {
    std::vector<DeviceLine> lines;
    std::unordered_set<std::int32_t> told;
    for (const auto& record : document.records()) {
        const CHardware& device = *record;
        if (device.isDevice() && floorCode(device.Type) != DeviceType::LocationMarker &&
            told.insert(device.RecID).second)
            lines.push_back({&device, deviceLabels(device, quickFindPlace(places, device), datafile)});
    }
    return lines;
}

} // namespace

CStationMetrics::CStationMetrics(CStation& station, CMessageLog& log, const Clock& clock,
                                 TimerFactory& timers, MakeFiles makeFiles)
    : station_(station),
      log_(log),
      clock_(clock),
      makeFiles_(std::move(makeFiles)),
      places_(station.document()),
      minute_(timers.makeTimer([this] { write(); })) {
    station_.addObserver(*this);
    station_.document().addObserver(*this);
    log_.addListener(*this);
}

CStationMetrics::~CStationMetrics() {
    log_.removeListener(*this);
    station_.document().removeObserver(*this);
    station_.removeObserver(*this);
}

void CStationMetrics::writeTo(const std::string& target) {
    if (target != target_)
        writer_.reset();
    target_ = target;
    if (target_.empty()) {
        minute_->stop();
        return;
    }
    minute_->start(refreshPeriod);
    write();
}

std::optional<FileError> CStationMetrics::error() const {
    return writer_ ? writer_->error() : std::nullopt;
}

void CStationMetrics::indicatorsChanged() {
    if (station_.features().liveStat().enabled())
        lastRun_ = now();
    write();
}

std::int64_t CStationMetrics::now() const {
    return std::chrono::system_clock::to_time_t(clock_.wall());
}

void CStationMetrics::write() {
    const std::string& datafile = station_.datafile().path();
    if (target_.empty() || datafile.empty())
        return;
    if (!writer_)
        writer_ = std::make_unique<CExportWriter>(
            makeFiles_ ? makeFiles_() : std::make_shared<CUnflushedFiles>(), patienceAtEnd);
    CMetricsText text;
    describeStation(text, datafile);
    describeOwners(text, datafile);
    describeDevices(text, datafile);
    writer_->write({target_, datafile, text.take()}, patience);
}

void CStationMetrics::describeDevices(CMetricsText& text, const std::string& datafile) {
    if (!devices_) {
        const std::vector<DeviceLine> lines = deviceLines(station_.document(), places_, datafile);
        CMetricsText devices;
        devices.family("mirovane_device_up", "1 for a device that is On, 0 for one that is Off; those that "
                                             "were never checked are left out.");
        for (const DeviceLine& line : lines)
            if (line.device->State != DeviceState::Def)
                devices.sample(line.labels, line.device->State == DeviceState::On ? 1 : 0);
        devices.family("mirovane_device_last_change_timestamp_seconds",
                       "When the device last changed: its state or any of its fields.");
        for (const DeviceLine& line : lines)
            devices.sample(line.labels, line.device->Modified);
        devices_ = std::move(devices);
    }
    text.append(*devices_);
}

void CStationMetrics::describeStation(CMetricsText& text, const std::string& datafile) const {
    const std::string labels = CMetricsText::labelsText({{"datafile", datafile}});
    const auto& exportError = station_.listExport().error();
    struct Value {
        std::string_view name;
        std::string_view help;
        std::int64_t value;
    };
    const std::array values{
        Value{"mirovane_written_timestamp_seconds", "When this file was written; it is at least each minute.",
              now()},
        Value{"mirovane_live_stat_last_run_timestamp_seconds",
              "When the last run of Live Stat ended at this station; 0 before the first one.", lastRun_},
        Value{"mirovane_live_stat_loops", "Loops over all devices since Live Stat went on at this station.",
              station_.features().liveStat().loops()},
        Value{"mirovane_live_stat_last_loop_seconds", "How long the last complete loop took.",
              station_.features().liveStat().lastLoopSeconds()},
        Value{"mirovane_save_failed", "1 while the datafile could not be saved.",
              station_.watch().lastError() ? 1 : 0},
        Value{"mirovane_export_failed", "1 while the text export could not be written.", exportError ? 1 : 0},
        Value{"mirovane_log_errors",
              "Lines of the message log that told of something that did not work, "
              "since the station started.",
              troubles_},
    };
    for (const Value& value : values) {
        text.family(value.name, value.help);
        text.sample(labels, value.value);
    }
}

/// Who runs what, wherever that is.
void CStationMetrics::describeOwners(CMetricsText& text, const std::string& datafile) const {
    text.family("mirovane_feature_owner",
                "1 for the station that runs Live Stat or Live Discover; left out where nobody does.");
    constexpr std::array features{std::pair{Feature::LiveStat, std::string_view("Live Stat")},
                                  std::pair{Feature::LiveDiscover, std::string_view("Live Discover")}};
    for (const auto& [feature, name] : features) {
        const OwnerValues owner = FeatureOwner::values(station_.document(), feature);
        if (owner.on)
            text.sample({{"datafile", datafile},
                         {"feature", name},
                         {"computer", owner.station.computerName},
                         {"user", owner.station.userName}},
                        1);
    }
    text.family("mirovane_live_stat_sign_of_life_timestamp_seconds",
                "The last sign of life of the station that runs Live Stat, or ran it last.");
    text.sample({{"datafile", datafile}},
                FeatureOwner::values(station_.document(), Feature::LiveStat).modified);
}

} // namespace mirovane
