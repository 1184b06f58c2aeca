#include "cli/SweepRunner.h"

#include <QCoreApplication>
#include <QTimer>

#include <chrono>
#include <map>

namespace mirovane {

namespace {

constexpr std::chrono::milliseconds pollPeriod{100};

} // namespace

Interrupt::Interrupt()
    : signals_([this](int) {
          arrived_ = true;
          if (action_)
              action_();
      }) {}

void Interrupt::setAction(std::function<void()> action) {
    action_ = std::move(action);
    if (arrived_ && action_)
        action_();
}

std::string describeProgress(const SweepProgress& progress) {
    std::string found = groupedNumber(progress.found) + " found";
    switch (progress.phase) {
    case SweepPhase::Sending:
        return groupedNumber(progress.sent) + "/" + groupedNumber(progress.total) + ", " + found + ", " +
               describeDuration(progress.left) + " left";
    case SweepPhase::Waiting:
        return found + ", last replies, " + describeDuration(progress.left) + " left";
    case SweepPhase::Naming:
        return found + ", " + groupedNumber(progress.lookedUp) + " names looked up";
    case SweepPhase::Over:
        break;
    }
    return found;
}

SweepResult runDrySweep(Output& out, CSweep& sweep, Interrupt& interrupt) {
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

SweepResult runSweepOn(Output& out, CDiscoverNow& discoverNow, Interrupt& interrupt) {
    discoverNow.onProgress = [&](const std::vector<std::size_t>&) {
        out.showProgress(describeProgress(discoverNow.progress()));
    };
    discoverNow.onRunning = [&discoverNow] {
        if (!discoverNow.running())
            QCoreApplication::quit();
    };
    interrupt.setAction([&discoverNow] { discoverNow.end(CDiscoverNow::Found::Keep); });
    if (discoverNow.running())
        QCoreApplication::exec();
    interrupt.setAction({});
    discoverNow.onProgress = {};
    discoverNow.onRunning = {};
    out.showProgress({});
    return discoverNow.result().value();
}

} // namespace mirovane
