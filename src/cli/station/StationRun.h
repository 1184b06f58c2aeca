#pragma once

#include "cli/base/Output.h"
#include "cli/station/LogPrinter.h"
#include "cli/station/ServiceReport.h"
#include "cli/station/StateLines.h"
#include "cli/station/StationMetrics.h"
#include "cli/station/StationOptions.h"
#include "cli/station/StationSettings.h"
#include "station/Station.h"

#include <QObject>
#include <QTimer>

#include <optional>
#include <string>

namespace mirovane {

/// Answers the station's questions when nobody sits there: No, but for an owner of Live Stat that has fallen
/// silent, or where it was told to take over. What it runs itself it always leaves to the station that takes
/// it: somebody there said Yes, and two that both insist would take it from each other every few seconds.
class CHeadlessDialogs final : public StationDialogs {
public:
    CHeadlessDialogs(COutput& out, bool takeOver) : out_(out), takeOver_(takeOver) {}

    /// Whose questions these are. It outlives this object's last answer.
    void answerFor(CStation& station) { station_ = &station; }

    bool ask(const Question& question) override;
    void fail(const std::string& text) override { out_.diagnose(text); }

    /// New settings: what was refused may be asked again.
    void begin(bool takeOver);

    /// Another station runs Live Stat or Live Discover and was left alone.
    bool refusedLiveStat() const { return refusedLiveStat_; }
    bool refusedDiscover() const { return refusedDiscover_; }
    bool refused() const { return refusedLiveStat_ || refusedDiscover_; }

private:
    bool runsHere(bool discover) const;
    bool ownerIsSilent() const;

    COutput& out_;
    bool takeOver_;
    CStation* station_ = nullptr;
    bool refusedLiveStat_ = false;
    bool refusedDiscover_ = false;
};

/// What a run works with; all of it outlives the run.
struct StationRunParts {
    COutput& out;
    CStation& station;
    CMessageLog& log;
    CLogPrinter& printer;
    CHeadlessDialogs& dialogs;
    const CStationConfiguration& configuration;
    CStationSettings& settings;
    CStationMetrics& metrics;
    CServiceReport& report;
};

/// A headless station from the opening of its datafile to its end, on the event loop of the QCoreApplication.
/// Main thread only.
class CStationRun final : public QObject {
public:
    CStationRun(const StationRunParts& parts, StationOptions options);

    /// Runs until a signal, a limit of the request, or until nobody reads the output any more.
    ExitStatus run();

    /// SIGTERM and SIGINT end the run. SIGHUP reads the settings file again; without one it opens the
    /// datafile again.
    void signalled(int signal);

private:
    const StationRequest& request() const { return options_.request; }
    std::optional<ExitStatus> start();
    void startNow();
    void poll();
    void startLiveStatLater();
    void startDiscover();
    void tellFileFailures();
    bool loopsOver() const;
    void finish();
    void reload();
    void reopen();
    void takeSettings();
    void use(const StationOptions& options);
    bool moveTo(const std::string& path);
    void switchFeatures();
    std::string statusLine() const;

    StationRunParts parts_;
    CStation& station_;
    StationOptions options_;
    CStateLines stateLines_;
    QTimer poll_;
    QTimer limit_;
    std::string exportFailure_;
    std::string metricsFailure_;
    bool finished_ = false;
    ExitStatus status_ = ExitStatus::Done;
};

} // namespace mirovane
