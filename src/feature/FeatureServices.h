#pragma once

#include "model/Document.h"
#include "model/MessageLog.h"
#include "platform/Clock.h"
#include "platform/Timers.h"
#include "platform/files/ProgramClaims.h"

namespace mirovane {

/// What every feature of a station works with. All of it outlives the feature.
struct FeatureServices {
    CMirovaneDoc& document;
    TimerFactory& timers;
    CMessageLog& log;
    const Clock& clock;

    /// Tells this program from others of its user on this computer; null: it is the only one.
    CProgramClaims* programs = nullptr;
};

} // namespace mirovane
