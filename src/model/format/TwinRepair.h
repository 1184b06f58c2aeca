#pragma once

#include "model/format/Datafile.h"

#include <cstdint>
#include <string>
#include <vector>

namespace mirovane {

/// A device that got a new record ID, and the name that people know it by (a jack's number for a jack).
struct TwinRenumbering {
    std::int32_t from = 0;
    std::int32_t to = 0;
    std::string name;

    bool operator==(const TwinRenumbering&) const = default;
};

/// In a damaged datafile, several devices may have one record ID. The first in list order keeps it; each
/// later one gets the smallest number from 1 up that no device has. Returns what was changed, in list order:
/// empty when every device has a number of its own. Changes RecID only; whoever saves the list stamps it.
std::vector<TwinRenumbering> renumberTwins(Datafile::RecordList& records);

} // namespace mirovane
