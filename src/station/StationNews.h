#pragma once

#include "station/StationObserver.h"

#include <algorithm>
#include <vector>

namespace mirovane {

/// Who is told what a station does. Main thread; a part of the station.
class CStationNews {
public:
    void add(StationObserver& observer) { observers_.push_back(&observer); }
    void remove(StationObserver& observer) { std::erase(observers_, &observer); }

    template <typename... Parameters, typename... Arguments>
    void tell(void (StationObserver::*news)(Parameters...), Arguments... arguments) {
        const std::vector<StationObserver*> told = observers_; // whoever is told may go
        for (StationObserver* observer : told)
            if (std::ranges::find(observers_, observer) != observers_.end())
                (observer->*news)(arguments...);
    }

private:
    std::vector<StationObserver*> observers_;
};

} // namespace mirovane
