#include "cli/station/StationRun.h"

#include "cli/base/Datafiles.h"
#include "feature/FeatureOwner.h"

#include <QCoreApplication>

#include <chrono>
#include <csignal>

namespace mirovane {

namespace {

/// How late a limit, a broken pipe or a device that was added to an empty datafile may be noticed.
constexpr std::chrono::milliseconds pollPeriod{200};

} // namespace

bool CHeadlessDialogs::ask(const Question& question) {
    const bool aboutDiscover = question.kind == Question::Kind::TakeOverLiveDiscover;
    const bool taken = runsHere(aboutDiscover);
    if (!taken && (takeOver_ || (!aboutDiscover && ownerIsSilent())))
        return true;
    (aboutDiscover ? refusedDiscover_ : refusedLiveStat_) = true;
    out_.diagnose(std::string(aboutDiscover ? "Live Discover" : "Live Stat") +
                      (taken ? " is left to another station" : " is not run here"),
                  "answered No to \"" + question.text + "\"" + (taken ? "" : " (--take-over answers Yes)"));
    return false;
}

bool CHeadlessDialogs::runsHere(bool discover) const {
    return station_ && (discover ? station_->liveDiscover().enabled() : station_->liveStat().enabled());
}

bool CHeadlessDialogs::ownerIsSilent() const {
    return station_ && station_->ownerSilentHours() >= LiveStatHeartbeat::takeOverHours;
}

CStationRun::CStationRun(COutput& out, CStation& station, CMessageLog& log, CHeadlessDialogs& dialogs,
                         StationRequest request)
    : out_(out),
      station_(station),
      dialogs_(dialogs),
      request_(std::move(request)),
      stateLines_(station.document(), log) {
    dialogs_.answerFor(station_);
    QObject::connect(&poll_, &QTimer::timeout, this, [this] { poll(); });
    limit_.setSingleShot(true);
    QObject::connect(&limit_, &QTimer::timeout, this, [this] { finish(); });
}

ExitStatus CStationRun::run() {
    if (const auto failed = start())
        return *failed;
    poll_.start(pollPeriod);
    if (request_.seconds)
        limit_.start(std::chrono::seconds(*request_.seconds));
    QCoreApplication::exec();
    return status_;
}

std::optional<ExitStatus> CStationRun::start() {
    if (const auto error = station_.openDatafile(request_.path)) {
        diagnoseUnreadable(out_, request_.path, *error);
        return ExitStatus::FileFailed;
    }
    if (!dialogs_.refused())
        startDiscover();
    if (dialogs_.refused())
        return ExitStatus::Refused;
    stateLines_.begin();
    stateLines_.takeReplaced();
    if (request_.liveStat && !station_.liveStat().enabled())
        out_.diagnose("Live Stat waits", "the datafile holds no device yet");
    if (request_.discover && !station_.liveDiscover().enabled())
        out_.diagnose("Live Discover waits", "the datafile holds no address range yet");
    startNow();
    return std::nullopt;
}

void CStationRun::startNow() {
    if (request_.now.empty())
        return;
    for (const std::int32_t recID : request_.now)
        if (const CHardware* device = station_.document().findDevice(recID))
            station_.selection().add(*device);
    station_.liveStatNow();
}

/// The log says nothing of it, and nobody else would.
void CStationRun::tellExportFailure() {
    const auto error = station_.listExport().error();
    const std::string sentence = error ? error->sentence : std::string();
    if (sentence != exportFailure_ && !sentence.empty())
        out_.diagnose(sentence);
    exportFailure_ = sentence;
}

void CStationRun::poll() {
    tellExportFailure();
    if (out_.failed() || loopsOver())
        finish();
    else if (stateLines_.takeReplaced()) {
        startLiveStatLater();
        startDiscover();
    }
}

/// Another station may have put the first devices into the datafile. One that was left alone by our No keeps
/// Live Stat.
void CStationRun::startLiveStatLater() {
    const CLiveStatScheduler& liveStat = station_.liveStat();
    if (request_.liveStat && !dialogs_.refusedLiveStat() && !liveStat.enabled() && !liveStat.disabling() &&
        station_.document().deviceCount() > 0)
        station_.toggleLiveStat();
}

/// At the start, and when another station may have put the first range into the datafile.
void CStationRun::startDiscover() {
    const CLiveDiscover& discover = station_.liveDiscover();
    if (request_.discover && !dialogs_.refusedDiscover() && !discover.enabled() && !discover.disabling())
        station_.toggleLiveDiscover(); // does nothing without a range
}

bool CStationRun::loopsOver() const {
    if (!request_.loops)
        return false;
    if (!request_.liveStat)
        return !request_.now.empty() && !station_.liveStat().nowActive();
    return station_.liveStat().loops() >= *request_.loops;
}

void CStationRun::finish() {
    if (finished_)
        return;
    finished_ = true;
    poll_.stop();
    limit_.stop();
    if (const auto error = station_.shutDown()) {
        out_.diagnose(error->sentence);
        status_ = ExitStatus::FileFailed;
    }
    QCoreApplication::quit();
}

void CStationRun::signalled(int signal) {
    if (signal == SIGHUP)
        reopen();
    else
        finish();
}

void CStationRun::reopen() {
    if (finished_)
        return;
    if (const auto error = station_.openDatafile(request_.path))
        diagnoseUnreadable(out_, request_.path, *error);
    else
        startDiscover();
}

} // namespace mirovane
