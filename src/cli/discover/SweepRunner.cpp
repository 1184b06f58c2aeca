#include "cli/discover/SweepRunner.h"

#include "discover/sweep/SweepWindow.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <map>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds pollPeriod{100};

/// Shows how far a station's sweep is, and ends the event loop with it.
class CProgressLine final : public DiscoverNowObserver {
public:
    CProgressLine(COutput& out, const CDiscoverNow& discoverNow) : out_(out), discoverNow_(discoverNow) {}

    void sweepProgressed(const std::vector<std::size_t>&) override {
        out_.showProgress(describeProgress(discoverNow_.progress()));
    }
    void sweepBegan() override {}
    void sweepEnded() override { QCoreApplication::quit(); }

private:
    COutput& out_;
    const CDiscoverNow& discoverNow_;
};

} // namespace

CInterrupt::CInterrupt()
    : signals_([this](int) {
          arrived_ = true;
          if (action_)
              action_();
      }) {}

void CInterrupt::setAction(std::function<void()> action) {
    action_ = std::move(action);
    if (arrived_ && action_)
        action_();
}

std::string describeProgress(const SweepProgress& progress) {
    std::string found = groupedNumber(progress.found) + " found";
    switch (progress.phase) {
    case SweepPhase::Sending:
        return groupedNumber(progress.sent) + "/" + groupedNumber(progress.total) + ", " + found + ", " +
               groupedNumber(progress.unanswered) + " of at most " + groupedNumber(CSweepWindow::most) +
               " unanswered, " + describeDuration(progress.left) + " left";
    case SweepPhase::Waiting:
        return found + ", last replies, " + describeDuration(progress.left) + " left";
    case SweepPhase::Naming:
        return found + ", " + groupedNumber(progress.lookedUp) + " names looked up";
    case SweepPhase::Over:
        break;
    }
    return found;
}

SweepResult runDrySweep(COutput& out, CSweep& sweep, CInterrupt& interrupt) {
    std::map<std::uint32_t, std::string> found;
    SweepResult result;
    result.complete = true;
    const auto look = [&] {
        for (const FoundHost& host : sweep.takeNews())
            found[host.address] = host.name;
        out.showProgress(describeProgress(sweep.progress()));
        if (sweep.over())
            QCoreApplication::quit();
    };
    interrupt.setAction([&] {
        result.complete = false;
        sweep.stop();
    });
    QTimer poll;
    QObject::connect(&poll, &QTimer::timeout, &poll, look);
    poll.start(pollPeriod);
    if (!sweep.over())
        QCoreApplication::exec();
    interrupt.setAction({});
    look();
    out.showProgress({});
    result.progress = sweep.progress();
    result.progress.found = found.size();
    result.complete = result.complete && !result.progress.full;
    for (const auto& [address, name] : found)
        result.added.push_back({0, {address, name}});
    return result;
}

SweepResult runSweepOn(COutput& out, CDiscoverNow& discoverNow, CInterrupt& interrupt) {
    CProgressLine progress(out, discoverNow);
    discoverNow.addObserver(progress);
    interrupt.setAction([&discoverNow] { discoverNow.end(CDiscoverNow::Found::Keep); });
    if (discoverNow.running())
        QCoreApplication::exec();
    interrupt.setAction({});
    discoverNow.removeObserver(progress);
    out.showProgress({});
    return discoverNow.result().value();
}

} // namespace mirovane
