#include "ui/floor/LiveStatRings.h"

namespace mirovane {

std::function<bool(std::int32_t)> CLiveStatRings::holds() {
    if (!liveStat_.enabled() && !liveStat_.nowActive())
        return nullptr;
    return [this](std::int32_t recID) {
        const auto [entry, added] = looked_.try_emplace(recID, false);
        if (added)
            entry->second = liveStat_.holdsDevice(recID);
        return entry->second;
    };
}

} // namespace mirovane
