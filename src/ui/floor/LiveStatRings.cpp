#include "ui/floor/LiveStatRings.h"

#include <algorithm>
#include <iterator>

namespace mirovane {

std::vector<std::int32_t> CLiveStatRings::refresh() {
    std::vector<std::int32_t> now;
    if (liveStat_.enabled() || liveStat_.nowActive())
        now = liveStat_.heldDevices();
    std::ranges::sort(now);
    std::vector<std::int32_t> changed;
    std::ranges::set_symmetric_difference(held_, now, std::back_inserter(changed));
    held_ = std::move(now);
    return changed;
}

} // namespace mirovane
