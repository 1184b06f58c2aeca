#include "ui/livestat/TrialRun.h"

#include "platform/AbandonableCalls.h"
#include "ui/widgets/DialogText.h"

#include <QStringList>

#include <chrono>
#include <memory>
#include <system_error>
#include <utility>

namespace mirovane {

namespace {

QString quoted(const std::string& bytes) {
    return u'"' + shownText(bytes) + u'"';
}

QString indented(const std::string& lines) {
    const QString text = shownText(lines).trimmed();
    return QStringLiteral("    ") + QString(text).replace(u'\n', QStringLiteral("\n    "));
}

/// Whoever closes the window waits for no share that hangs.
RowTrial trialOf(const StepInput& input, const StepProbes& probes, const Clock& clock) {
    constexpr std::chrono::hours patience{1};
    const auto trial = std::make_shared<RowTrial>();
    const auto call = [trial, input, probes, &clock] {
        *trial = tryRow(input, probes, clock);
    };
    if (CAbandonableCalls().run({}, call, patience, input.stop) == CAbandonableCalls::End::Done)
        return std::move(*trial);
    RowTrial none;
    none.row = input.row;
    none.command = input.criteria.Command;
    none.cancelled = true;
    return none;
}

} // namespace

CTrialRun::CTrialRun(const StepProbes& probes, const Clock& clock, QObject* parent)
    : QObject(parent), probes_(probes), clock_(clock) {}

CTrialRun::~CTrialRun() {
    stop();
}

void CTrialRun::start(const CMirovaneDoc& document, const CHardware& device, int row) {
    if (running_)
        return;
    running_ = true;
    stop_ = std::stop_source();
    // The trial gets copies: the record may change or go while the probe waits for its answer.
    try {
        thread_ = std::jthread([this, input = trialInput(document, device, row, stop_.get_token())] {
            const RowTrial trial = trialOf(input, probes_, clock_);
            QMetaObject::invokeMethod(
                this, [this, trial] { report(trial); }, Qt::QueuedConnection);
        });
    } catch (const std::system_error& error) {
        RowTrial trial;
        trial.row = row;
        trial.answer = std::string("the system has no thread for it: ") + error.what();
        report(trial);
    }
}

void CTrialRun::report(const RowTrial& trial) {
    running_ = false;
    Q_EMIT finished(trial);
}

QString trialText(const RowTrial& trial) {
    QStringList lines;
    lines << qText(criteriaRowLabel(trial.row)) + QStringLiteral(": ") +
                 (trial.command.empty() ? QObject::tr("no action") : shownText(trial.command));
    if (!trial.expandedArgument.empty())
        lines << QObject::tr("Argument: ") + quoted(trial.expandedArgument);
    if (!trial.expandedPattern.empty())
        lines << QObject::tr("Search for: ") + quoted(trial.expandedPattern);
    if (!trial.answer.empty())
        lines << QObject::tr("Answer:") << indented(trial.answer);
    lines << QObject::tr("Outcome: ") + qText(outcomeText(trial));
    lines << (trial.changes.empty() ? QObject::tr("Live Stat would write nothing.")
                                    : QObject::tr("Live Stat would write:"));
    for (const RowTrial::Change& change : trial.changes)
        lines << QObject::tr("    %1: %2, which was %3")
                     .arg(shownText(change.field), quoted(change.after), quoted(change.before));
    return lines.join(u'\n');
}

} // namespace mirovane
