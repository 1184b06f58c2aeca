#pragma once

#include "livestat/steps/RowTrial.h"

#include <QObject>

#include <stop_token>
#include <thread>

namespace mirovane {

/// Tries one criteria row at a time on a thread of its own. Main thread; probes and clock outlive it. The
/// destructor stops the trial and waits for it, which takes milliseconds.
class CTrialRun : public QObject {
    Q_OBJECT

public:
    CTrialRun(const StepProbes& probes, const Clock& clock, QObject* parent = nullptr);
    ~CTrialRun() override;

    /// Does nothing while one is running.
    void start(const CMirovaneDoc& document, const CHardware& device, int row);
    void stop() { stop_.request_stop(); }
    bool running() const { return running_; }

Q_SIGNALS:
    /// Also after stop(); the trial is then marked as cancelled.
    void finished(const RowTrial& trial);

private:
    void report(const RowTrial& trial);

    const StepProbes probes_;
    const Clock& clock_;
    bool running_ = false;
    std::stop_source stop_;
    std::jthread thread_;
};

/// The trial as people read it: what was asked, what came back, what would be written.
QString trialText(const RowTrial& trial);

} // namespace mirovane
