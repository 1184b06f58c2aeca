#pragma once

#include "discover/sweep/SweepPlan.h"
#include "feature/StartRefusal.h"
#include "model/Document.h"
#include "model/Settings.h"
#include "platform/Result.h"
#include "probes/icmp/EchoTypes.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mirovane {

/// The user's own setting, probes a second; kept within its bounds.
constexpr std::string_view sweepRateSetting = "DiscoverNowPerSec";
int readSweepRate(const CSettings& settings);

/// What a sweep of this document's ranges would ask, or why there can be none.
Result<CSweepPlan, StartRefusal> planSweep(const CMirovaneDoc& document);

/// How long a sweep takes at most, without the names.
std::chrono::milliseconds sweepDuration(std::uint64_t probes, int perSecond, const EchoOptions& echo = {});

/// For a sweep that would take many minutes, most likely because a range was mistyped: how large it is and
/// how long it takes, as a sentence. Nothing for all others.
std::optional<std::string> sweepWarning(const CSweepPlan& plan, int perSecond);

} // namespace mirovane
