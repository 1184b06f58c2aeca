#include "cli/station/StationRun.h"

#include "cli/base/Datafiles.h"
#include "feature/FeatureOwner.h"
#include "platform/files/FilePaths.h"

#include <QCoreApplication>

#include <chrono>
#include <csignal>

namespace mirovane {

namespace {

/// How late a limit, a broken pipe or a device that was added to an empty datafile may be noticed.
constexpr std::chrono::milliseconds pollPeriod{200};

/// What a feature does, in a few words.
std::string featureStatus(const CStation& station, Feature feature, bool here) {
    const std::string name = feature == Feature::LiveStat ? "Live Stat" : "Live Discover";
    if (here)
        return name + " runs";
    if (!FeatureOwner::isElsewhere(station.document(), feature))
        return name + " is off";
    const auto owner = FeatureOwner::stations(station.document())[feature == Feature::LiveStat ? 0 : 1];
    return name + " runs at " + (owner ? owner->computerName + "\\" + owner->userName : "another station");
}

} // namespace

bool CHeadlessDialogs::ask(const Question& question) {
    const bool aboutDiscover = question.kind == Question::Kind::TakeOverLiveDiscover;
    const bool taken = runsHere(aboutDiscover);
    if (!taken && (takeOver_ || (!aboutDiscover && ownerIsSilent())))
        return true;
    (aboutDiscover ? refusedDiscover_ : refusedLiveStat_) = true;
    out_.warn(std::string(aboutDiscover ? "Live Discover" : "Live Stat") +
                  (taken ? " is left to another station" : " is not run here"),
              "answered No to \"" + question.text + "\"" + (taken ? "" : " (--take-over answers Yes)"));
    return false;
}

void CHeadlessDialogs::begin(bool takeOver) {
    takeOver_ = takeOver;
    refusedLiveStat_ = refusedDiscover_ = false;
}

bool CHeadlessDialogs::runsHere(bool discover) const {
    return station_ && (discover ? station_->features().liveDiscover().enabled()
                                 : station_->features().liveStat().enabled());
}

bool CHeadlessDialogs::ownerIsSilent() const {
    return station_ && station_->features().liveStat().ownerSilentHours() >= LiveStatHeartbeat::takeOverHours;
}

CStationRun::CStationRun(const StationRunParts& parts, StationOptions options)
    : parts_(parts),
      station_(parts.station),
      options_(std::move(options)),
      stateLines_(parts.station.document(), parts.log) {
    parts_.dialogs.answerFor(station_);
    QObject::connect(&poll_, &QTimer::timeout, this, [this] { poll(); });
    limit_.setSingleShot(true);
    QObject::connect(&limit_, &QTimer::timeout, this, [this] { finish(); });
}

ExitStatus CStationRun::run() {
    if (const auto failed = start())
        return *failed;
    parts_.report.ready();
    parts_.report.status(statusLine());
    poll_.start(pollPeriod);
    if (request().seconds)
        limit_.start(std::chrono::seconds(*request().seconds));
    QCoreApplication::exec();
    return status_;
}

std::optional<ExitStatus> CStationRun::start() {
    if (const auto error = station_.openDatafile(request().path)) {
        diagnoseUnreadable(parts_.out, request().path, *error);
        return ExitStatus::FileFailed;
    }
    if (!parts_.dialogs.refused())
        startDiscover();
    if (parts_.dialogs.refused())
        return ExitStatus::Refused;
    parts_.metrics.writeTo(request().metrics);
    stateLines_.begin();
    stateLines_.takeReplaced();
    if (request().liveStat && !station_.features().liveStat().enabled())
        parts_.out.warn("Live Stat waits", "the datafile holds no device yet");
    if (request().discover && !station_.features().liveDiscover().enabled())
        parts_.out.warn("Live Discover waits", "the datafile holds no address range yet");
    startNow();
    return std::nullopt;
}

void CStationRun::startNow() {
    if (request().now.empty())
        return;
    for (const std::int32_t recID : request().now)
        if (const CHardware* device = station_.document().findDevice(recID))
            station_.selection().add(*device);
    station_.features().liveStat().performNow();
}

/// The log says nothing of them, and nobody else would.
void CStationRun::tellFileFailures() {
    const auto tell = [this](const std::optional<FileError>& error, std::string& told) {
        const std::string sentence = error ? error->sentence : std::string();
        if (sentence != told && !sentence.empty())
            parts_.out.diagnose(sentence);
        told = sentence;
    };
    tell(station_.listExport().error(), exportFailure_);
    tell(parts_.metrics.error(), metricsFailure_);
}

void CStationRun::poll() {
    tellFileFailures();
    parts_.report.status(statusLine());
    if (parts_.out.failed() || loopsOver())
        finish();
    else if (stateLines_.takeReplaced()) {
        startLiveStatLater();
        startDiscover();
    }
}

/// For whoever asks the service manager what this station does.
std::string CStationRun::statusLine() const {
    if (const auto& error = station_.watch().lastError())
        return printable(error->sentence);
    std::string line = featureStatus(station_, Feature::LiveStat, station_.features().liveStat().enabled());
    if (station_.features().liveStat().enabled())
        line += ", loop " + std::to_string(station_.features().liveStat().loops() + 1);
    line +=
        "; " + featureStatus(station_, Feature::LiveDiscover, station_.features().liveDiscover().enabled());
    const std::size_t devices = station_.document().deviceCount();
    line += "; " + std::to_string(devices) + (devices == 1 ? " device, " : " devices, ") +
            std::to_string(stateLines_.off()) + " Off; " + station_.datafile().path();
    return printable(line);
}

/// Another station may have put the first devices into the datafile. One that was left alone by our No keeps
/// Live Stat.
void CStationRun::startLiveStatLater() {
    const CLiveStatScheduler& liveStat = station_.features().liveStat();
    if (request().liveStat && !parts_.dialogs.refusedLiveStat() && !liveStat.enabled() &&
        !liveStat.disabling() && station_.document().deviceCount() > 0)
        station_.features().liveStat().toggle();
}

/// At the start, and when another station may have put the first range into the datafile.
void CStationRun::startDiscover() {
    const CLiveDiscover& discover = station_.features().liveDiscover();
    if (request().discover && !parts_.dialogs.refusedDiscover() && !discover.enabled() &&
        !discover.disabling())
        station_.features().liveDiscover().toggle(); // does nothing without a range
}

bool CStationRun::loopsOver() const {
    if (!request().loops)
        return false;
    if (!request().liveStat)
        return !request().now.empty() && !station_.features().liveStat().nowActive();
    return station_.features().liveStat().loops() >= *request().loops;
}

void CStationRun::finish() {
    if (finished_)
        return;
    finished_ = true;
    parts_.report.stopping();
    poll_.stop();
    limit_.stop();
    if (const auto error = station_.shutDown()) {
        parts_.out.diagnose(error->sentence);
        status_ = ExitStatus::FileFailed;
    }
    QCoreApplication::quit();
}

void CStationRun::signalled(int signal) {
    if (signal != SIGHUP)
        finish();
    else if (!finished_)
        reload();
}

// ---- again, with other settings

void CStationRun::reload() {
    parts_.report.reloading();
    if (parts_.configuration.hasFile())
        takeSettings();
    else
        reopen();
    parts_.report.reloaded();
    parts_.report.status(statusLine());
}

void CStationRun::reopen() {
    if (const auto error = station_.openDatafile(request().path))
        diagnoseUnreadable(parts_.out, request().path, *error);
    else
        startDiscover();
}

/// A mistake in the file, or a datafile that cannot be opened, must not end what runs: then everything stays
/// as it was. The datafile is left only for another one.
void CStationRun::takeSettings() {
    const auto read = parts_.configuration.read();
    if (!read) {
        parts_.out.diagnose("the settings stay as they were: " + read.error().sentence);
        return;
    }
    const StationOptions before = options_;
    use(read.value().options);
    if (!moveTo(request().path)) {
        use(before);
        return;
    }
    if (before.registry != options_.registry)
        parts_.out.warn("the settings are read", "other credentials count from the next start on");
    parts_.metrics.writeTo(request().metrics);
    switchFeatures();
    parts_.log.LogMessage("Settings read again");
}

void CStationRun::use(const StationOptions& options) {
    options_ = options;
    parts_.settings.take(options_);
    parts_.dialogs.begin(request().takeOver);
    parts_.printer.take(options_);
    station_.features().liveStat().setSettings(parts_.settings.liveStat());
}

/// False: it cannot be opened, and the station stays where it is.
bool CStationRun::moveTo(const std::string& path) {
    if (absolutePath(path) != station_.datafile().path()) {
        const auto error = station_.openDatafile(path);
        if (error) // the log has told why
            parts_.out.warn("the settings stay as they were",
                            "the station stays with " + station_.datafile().path());
        return !error;
    }
    station_.listExport().takeDatafile();
    station_.settleList();
    return true;
}

void CStationRun::switchFeatures() {
    const CLiveStatScheduler& liveStat = station_.features().liveStat();
    if (!request().liveStat && liveStat.enabled())
        station_.features().liveStat().toggle();
    const CLiveDiscover& discover = station_.features().liveDiscover();
    if (!request().discover && discover.enabled())
        station_.features().liveDiscover().toggle();
    startLiveStatLater();
    startDiscover();
}

} // namespace mirovane
