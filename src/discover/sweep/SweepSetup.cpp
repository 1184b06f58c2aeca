#include "discover/sweep/SweepSetup.h"

#include "discover/DiscoveredDevice.h"
#include "discover/sweep/SweepPace.h"
#include "discover/sweep/SweepProgress.h"
#include "discover/sweep/SweepWindow.h"
#include "model/records/SpecialRecords.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace mirovane {

namespace {

/// Longer than anybody waits who did not mean it.
constexpr std::chrono::minutes longSweep{10};

} // namespace

int readSweepRate(const CSettings& settings) {
    const std::int32_t rate = settings.read(sweepRateSetting, usualSweepRate);
    return rate >= leastSweepRate ? std::min(rate, mostSweepRate) : usualSweepRate;
}

namespace {

StartRefusal invalidRange(const RangeText& range) {
    return {StartRefusal::Kind::InvalidRange,
            std::string(invalidRangeText) + " (From \"" + range.From + "\" To \"" + range.To + "\")."};
}

} // namespace

Result<CSweepPlan, StartRefusal> planSweep(const CMirovaneDoc& document) {
    using Kind = StartRefusal::Kind;
    std::vector<AddressRange> ranges;
    for (const CHardware* record : discoverRanges(document)) {
        const auto range = rangeOf(*record);
        if (!range)
            return invalidRange(rangeFromRecord(*record));
        ranges.push_back(*range);
    }
    if (ranges.empty())
        return StartRefusal{Kind::NoRanges, "Live Discover does not have IP range(s) to discover."};
    std::vector<std::uint32_t> known;
    for (std::size_t i = 0; i < document.size(); ++i)
        if (const auto address = deviceAddress(document.at(i)))
            known.push_back(*address);
    CSweepPlan plan(std::move(ranges), std::move(known));
    if (plan.toProbe() == 0)
        return StartRefusal{Kind::NothingToAsk, "Every address of the ranges belongs to a device already."};
    return plan;
}

std::chrono::milliseconds sweepDuration(std::uint64_t probes, int perSecond, const EchoOptions& echo) {
    const double pace = std::min<double>(std::clamp(perSecond, leastSweepRate, mostSweepRate),
                                         CSweepWindow::slowestPerSecond);
    return std::chrono::milliseconds(static_cast<std::int64_t>(static_cast<double>(probes) * 1000 / pace) +
                                     echo.timeoutMs);
}

std::optional<std::string> sweepWarning(const CSweepPlan& plan, int perSecond) {
    const auto takes = sweepDuration(plan.toProbe(), perSecond);
    if (takes < longSweep)
        return std::nullopt;
    return "The ranges hold " + groupedNumber(plan.addresses()) + " addresses. At " +
           groupedNumber(static_cast<std::uint64_t>(perSecond)) +
           " probes a second, fewer where nobody answers, that takes up to " + describeDuration(takes) + ".";
}

} // namespace mirovane
