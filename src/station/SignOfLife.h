#pragma once

#include "livestat/schedule/Scheduler.h"
#include "model/Document.h"

namespace mirovane {

/// Keeps the sign of life in the owner record fresh while Live Stat runs here, and has Live Stat take the
/// place of an owner that has been silent for hours, where `autoStart` wants it. True when the owner record
/// changed and is to be saved. Main thread.
bool keepOwnerAlive(CMirovaneDoc& document, CLiveStatScheduler& liveStat, bool autoStart);

} // namespace mirovane
