#pragma once

#include "station/Station.h"
#include "ui/frame/bars/StatusPanes.h"
#include "ui/frame/table/CommandNeeds.h"

namespace mirovane {

// What the main window shows of its station, asked whenever it is idle: each is a handful of look-ups.

CommandState commandState(const CStation& station);

/// All but the keyboard's locks, of which the station knows nothing.
IndicatorState indicatorState(const CStation& station);

} // namespace mirovane
