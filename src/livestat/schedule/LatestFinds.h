#pragma once

#include "model/records/Hardware.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>

namespace mirovane {

/// What a field rule found when it last ran for a device at this station.
struct LatestFind {
    TimeStamp at = 0;
    bool found = false;
    std::string text; ///< bytes, as they were written to the field
};

/// Of every rule that ran since the datafile was opened; nothing of it is saved. Costs some hundred bytes for
/// each rule of each device. Main thread.
class CLatestFinds {
public:
    void note(std::int32_t recID, int row, LatestFind find) { finds_[{recID, row}] = std::move(find); }

    /// Null when the rule has not run for this device.
    const LatestFind* of(std::int32_t recID, int row) const {
        const auto found = finds_.find({recID, row});
        return found == finds_.end() ? nullptr : &found->second;
    }

    void clear() { finds_.clear(); }

private:
    std::map<std::pair<std::int32_t, int>, LatestFind> finds_;
};

} // namespace mirovane
