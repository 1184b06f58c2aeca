#include "station/SignOfLife.h"

#include "feature/FeatureOwner.h"

#include <cstdint>

namespace mirovane {

namespace {

constexpr std::int64_t heartbeatHours = 3;

} // namespace

bool keepOwnerAlive(CMirovaneDoc& document, CLiveStatScheduler& liveStat, bool autoStart) {
    const std::int64_t silent = LiveStatHeartbeat::silentHours(document);
    const bool takesOver = liveStat.ownerSilentHours() >= LiveStatHeartbeat::takeOverHours &&
                           !liveStat.enabled() && document.deviceCount() > 0 && autoStart;
    if (takesOver) // first: who answers its question may look how long the owner has been silent
        liveStat.toggle();
    const bool refused = takesOver && !liveStat.enabled();
    // A sign from the future was given by a clock that went wrong: it would look fresh for too long.
    const bool due = !takesOver && (silent >= heartbeatHours || silent < 0) && liveStat.enabled();
    if (refused || due)
        LiveStatHeartbeat::signOfLife(document);
    return refused || due;
}

} // namespace mirovane
